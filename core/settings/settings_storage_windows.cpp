#include "core/settings/settings_storage.h"

#include <windows.h>

namespace core {

void removeNativeSettings(const QString& path)
{
    const QString root = QStringLiteral("\\HKEY_CURRENT_USER\\");
    RegDeleteKeyW(HKEY_CURRENT_USER, path.mid(root.size()).toStdWString().c_str());
}

} // namespace core
