#pragma once

class QSettings;

namespace core {

// Removes the emptied file or registry key behind the settings.
void removeSettingsStorage(const QSettings& settings);

} // namespace core
