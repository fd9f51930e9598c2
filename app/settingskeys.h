#pragma once

#include <cstddef>

#include <QLatin1String>

// Every key of the settings, with its type and the value that readers use when
// it is absent. Bools are the integers 0 and 1; a first-run default is told from
// a stored value by asking with the default -1.
namespace SettingsKeys {

namespace detail {
// Not every compiler takes the length of a text at compile time by itself.
template <std::size_t size> constexpr QLatin1String key(const char (&text)[size])
{
    return QLatin1String(text, static_cast<int>(size - 1));
}
} // namespace detail

// int, -1; 0 once the program has run on this account
inline constexpr QLatin1String appFirstRun = detail::key("AppFirstRun");
// bool, 0; show degrees Fahrenheit
inline constexpr QLatin1String fahrenheit = detail::key("Fahrenheit");
// bool, 0; show one decimal digit
inline constexpr QLatin1String preciseTemperature = detail::key("PreciseTemperature");
// bool, by model; read SMART temperatures of drives
inline constexpr QLatin1String showSmartDrives = detail::key("ShowSmartDrives");
// bool, 1; read NVMe drives too
inline constexpr QLatin1String showNvmeDrives = detail::key("ShowNVMeDrives");
// bool, by model; read an external GPU
inline constexpr QLatin1String showEGpuTemp = detail::key("ShowEGpuTemp");
// string, empty; language file name, with or without ".xml"
inline constexpr QLatin1String interfaceLanguage = detail::key("InterfaceLanguage");
// string, empty; key of the sensor shown in the tray
inline constexpr QLatin1String traySensor = detail::key("traySensor");
// int, -1; reserved
inline constexpr QLatin1String trayFan = detail::key("trayFan");
// string list, empty; one preset string each
inline constexpr QLatin1String customPresets = detail::key("CustomPresets");
// string list, empty; preset strings that could not be read now
inline constexpr QLatin1String customPresetsKept = detail::key("CustomPresetsKept");
// string, empty; the active preset
inline constexpr QLatin1String activePreset = detail::key("ActivePreset");
// string, empty; an active preset that could not be resolved now
inline constexpr QLatin1String activePresetKept = detail::key("ActivePresetKept");
// string per fan number, none; a fan's mode as earlier releases kept it
inline constexpr QLatin1String legacyFan = detail::key("Fan_%1");
// int, -1; 1 hides the message about virtual machines
inline constexpr QLatin1String noVmWarning = detail::key("NoVmWarning");
// bool, -1; state of a box on the diagnostics page
inline constexpr QLatin1String enableLog = detail::key("EnableLog");
// byte array, empty; geometry and state of the main window
inline constexpr QLatin1String windowGeometry = detail::key("WindowGeometry");
inline constexpr QLatin1String windowState = detail::key("WindowState");
// string list, empty; the two pane sizes, decimal
inline constexpr QLatin1String windowSplitterPosition = detail::key("WindowSplitterPosition");
// date and time, invalid; when to ask for a rating next
inline constexpr QLatin1String rateNextDate = detail::key("RateOnMacupdateNextDate");
// int, -1; 1 ends the requests for a rating
inline constexpr QLatin1String rateSkip = detail::key("RateOnMacupdateSkip");
// bool; automatic checks for updates
inline constexpr QLatin1String updateAuto = detail::key("UpdateChecker_Auto");
// date and time, invalid; when to check next
inline constexpr QLatin1String updateNextCheck = detail::key("UpdateChecker_NextCheck");
// string, empty; a version the user does not want
inline constexpr QLatin1String updateSkipVersion = detail::key("UpdateChecker_SkipVersion");

} // namespace SettingsKeys
