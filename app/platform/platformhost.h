#pragma once

#include <functional>

#include <QString>
#include <QStringList>

class MachineIdentity;
class QSettingsCache;
class SystemInfo;

// What a platform asks of the application around it. The references must outlive
// the platform; the functions are called on the GUI thread.
struct PlatformHost {
    MachineIdentity& identity;
    const SystemInfo& systemInfo;
    QSettingsCache& settings;
    QStringList arguments; // of the command line, the program's name first
    QString executablePath; // with the system's own separators
    QString productTitle;
    std::function<bool()> isStartMinimized;
    // Makes the window, and shows it unless it is to start hidden.
    std::function<void()> createMainWindow;
};
