#include "app/settingsdefaults.h"

#include "app/settingskeys.h"
#include "app/sysinfo/sysinfo.h"
#include "core/settings/qsettingscache.h"

namespace {

constexpr int absent = -1;

void setIfAbsent(QSettingsCache& settings, const QString& key, bool value)
{
    if (settings.getInt(key, absent) == absent) {
        settings.setInt(key, value ? 1 : 0);
    }
}

} // namespace

void applySettingsDefaults(QSettingsCache& settings, const SystemInfo& systemInfo)
{
    setIfAbsent(settings, SettingsKeys::fahrenheit, false);
    setIfAbsent(settings, SettingsKeys::preciseTemperature, false);

    const bool hasOwnDrivesOnly
        = systemInfo.family() == ModelFamily::iMacPro || systemInfo.family() == ModelFamily::ADP;
    setIfAbsent(settings, SettingsKeys::showSmartDrives, !hasOwnDrivesOnly);
    setIfAbsent(settings, SettingsKeys::showNvmeDrives, true);

    // Settings may have come from another machine, so this is looked at each time.
    const bool egpuCapable = systemInfo.isEGpuCapable();
    setIfAbsent(settings, SettingsKeys::showEGpuTemp, egpuCapable);
    if (!egpuCapable) {
        settings.setInt(SettingsKeys::showEGpuTemp, 0);
    }

    for (const char* key : { "Fans", "Machine", "CPU", "TempSensors", "ShowGpuTemp" }) {
        settings.remove(QLatin1String(key));
    }
}
