#pragma once

// Process-wide flags: dynamic properties of the application object. A flag is
// set when the property holds any valid value; what this program writes is
// always the string "yes".
//
// Flags are written on the GUI thread before the engine's threads start and
// only read afterwards, from any thread. Without an application object no flag
// is set, and setting one has no effect.
namespace core::flags {

// The first run on this user account.
inline constexpr char firstStart[] = "first-start";
// The log lies beside the executable.
inline constexpr char logFile[] = "log-file";
// Reserved for a dump of the controller's keys.
inline constexpr char smcDump[] = "smc-dump";
// No access to the controller is attempted, and fan control stays off.
// Nothing in this program sets it.
inline constexpr char noSupport[] = "win-no-support";
// The tray's menu offers no presets, as a build for monitoring only wants it.
// Nothing in this program sets it.
inline constexpr char noSmcWrite[] = "no-smc-write";
// Write access was ensured after the start.
inline constexpr char smcWriteInstalled[] = "smc-write-installed";

[[nodiscard]] bool isSet(const char* name);
void set(const char* name);
void clear(const char* name);

} // namespace core::flags
