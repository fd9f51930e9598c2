#pragma once

#include <QString>

#include "app/platform/platformhost.h"

class QWidget;

// The seam between the application and its operating system: whether the program
// may run on this machine, its window, autostart and removal. Used on the GUI
// thread, but for hasWriteAccess, which any thread may call.
class AppPlatformSpecific {
public:
    explicit AppPlatformSpecific(PlatformHost host);
    AppPlatformSpecific(const AppPlatformSpecific&) = delete;
    AppPlatformSpecific& operator=(const AppPlatformSpecific&) = delete;
    virtual ~AppPlatformSpecific() = default;

    // Whether the program may run here; if not, the user has been told why.
    [[nodiscard]] virtual bool startCheck() = 0;
    // Makes the main window, and shows it unless it is to start hidden.
    virtual void createMainWindow() = 0;
    // The start of the program, minimised, when the user logs on. What fails is told
    // to the user, or in the log; isAutostart() tells what came of it.
    virtual void setAutostart(bool enable) = 0;
    [[nodiscard]] virtual bool isAutostart() const = 0;
    // Removes everything that the program keeps on this account.
    virtual bool uninstall() = 0;
    // The log's path beside the executable.
    [[nodiscard]] virtual QString logFilePath() const = 0;
    // Called once the settings are ready.
    virtual void afterSettings() { }
    [[nodiscard]] virtual bool hasWriteAccess() const = 0;
    virtual bool installWriteAccess(QString& error);
    virtual void showWriteAccessError(const QString& error, QWidget* parent);

protected:
    [[nodiscard]] const PlatformHost& host() const { return m_host; }

private:
    const PlatformHost m_host;
};
