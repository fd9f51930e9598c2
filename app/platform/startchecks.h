#pragma once

#include <functional>

#include <QString>
#include <QStringList>

class MachineIdentity;
class QSettingsCache;
class SystemInfo;
struct PlatformHost;

// The steps of the start check that all systems share.
namespace StartChecks {

// Shows a modal box with a warning.
using ShowWarning = std::function<void(const QString& title, const QString& text)>;

// Whether the program runs on this kind of machine; if not, the user has been
// told why. Foreign hardware is told by the given function.
[[nodiscard]] bool isMachineAccepted(const PlatformHost& host, const ShowWarning& showWarning);

// The manufacturer as the system tells it, or the model, gives a virtual machine
// away.
[[nodiscard]] bool isVirtualMachine(MachineIdentity& identity, const SystemInfo& systemInfo);

// Tells the user why the program doesn't start in a virtual machine, unless the
// user has asked not to be told again.
void warnOfVirtualMachine(QSettingsCache& settings);

// Sets the options that the command line asks for.
void applyCommandLineOptions(const QStringList& arguments, bool startMinimized);

// Sets the options of a machine that needs this program's own driver.
void applyDriverOptions(const SystemInfo& systemInfo);

// The driver of these machines is not a plug-and-play one.
[[nodiscard]] bool needsAlternativeDriver(const SystemInfo& systemInfo);

} // namespace StartChecks
