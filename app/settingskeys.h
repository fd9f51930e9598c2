#pragma once

#include <QLatin1String>

#include "core/latin1.h"

// Every key of the settings, with its type and the value that readers use when
// it is absent. Bools are the integers 0 and 1; a first-run default is told from
// a stored value by asking with the default -1.
namespace SettingsKeys {

// int, -1; 0 once the program has run on this account
inline constexpr QLatin1String appFirstRun = core::latin1("AppFirstRun");
// bool, 0; show degrees Fahrenheit
inline constexpr QLatin1String fahrenheit = core::latin1("Fahrenheit");
// bool, 0; show one decimal digit
inline constexpr QLatin1String preciseTemperature = core::latin1("PreciseTemperature");
// bool, by model; read SMART temperatures of drives
inline constexpr QLatin1String showSmartDrives = core::latin1("ShowSmartDrives");
// bool, 1; read NVMe drives too
inline constexpr QLatin1String showNvmeDrives = core::latin1("ShowNVMeDrives");
// bool, by model; read an external GPU
inline constexpr QLatin1String showEGpuTemp = core::latin1("ShowEGpuTemp");
// string, empty; language file name, with or without ".xml"
inline constexpr QLatin1String interfaceLanguage = core::latin1("InterfaceLanguage");
// string, empty; key of the sensor shown in the tray
inline constexpr QLatin1String traySensor = core::latin1("traySensor");
// int, -1; reserved
inline constexpr QLatin1String trayFan = core::latin1("trayFan");
// string list, empty; one preset string each
inline constexpr QLatin1String customPresets = core::latin1("CustomPresets");
// string list, empty; preset strings that could not be read now
inline constexpr QLatin1String customPresetsKept = core::latin1("CustomPresetsKept");
// string, empty; the active preset
inline constexpr QLatin1String activePreset = core::latin1("ActivePreset");
// string, empty; an active preset that could not be resolved now
inline constexpr QLatin1String activePresetKept = core::latin1("ActivePresetKept");
// string per fan number, none; a fan's mode as earlier releases kept it
inline constexpr QLatin1String legacyFan = core::latin1("Fan_%1");
// int, -1; 1 hides the message about virtual machines
inline constexpr QLatin1String noVmWarning = core::latin1("NoVmWarning");
// bool, -1; state of a box on the diagnostics page
inline constexpr QLatin1String enableLog = core::latin1("EnableLog");
// byte array, empty; geometry and state of the main window
inline constexpr QLatin1String windowGeometry = core::latin1("WindowGeometry");
inline constexpr QLatin1String windowState = core::latin1("WindowState");
// string list, empty; the two pane sizes, decimal
inline constexpr QLatin1String windowSplitterPosition = core::latin1("WindowSplitterPosition");
// date and time, invalid; when to ask for a rating next
inline constexpr QLatin1String rateNextDate = core::latin1("RateOnMacupdateNextDate");
// int, -1; 1 ends the requests for a rating
inline constexpr QLatin1String rateSkip = core::latin1("RateOnMacupdateSkip");
// bool; automatic checks for updates
inline constexpr QLatin1String updateAuto = core::latin1("UpdateChecker_Auto");
// date and time, invalid; when to check next
inline constexpr QLatin1String updateNextCheck = core::latin1("UpdateChecker_NextCheck");
// string, empty; a version the user does not want
inline constexpr QLatin1String updateSkipVersion = core::latin1("UpdateChecker_SkipVersion");

} // namespace SettingsKeys
