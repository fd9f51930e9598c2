#include "core/settings/settings_storage.h"

#include <QFile>
#include <QSettings>

namespace core {

void removeSettingsStorage(const QSettings& settings) { QFile::remove(settings.fileName()); }

} // namespace core
