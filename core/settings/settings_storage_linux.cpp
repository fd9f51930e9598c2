#include "core/settings/settings_storage.h"

#include <QFile>

namespace core {

void removeNativeSettings(const QString& path) { QFile::remove(path); }

} // namespace core
