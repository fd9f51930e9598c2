#pragma once

#include <memory>

#include <QString>

#include "app/sysinfo/sysinfo.h"
#include "core/application/qapplicationexsingle.h"

class AppPlatformSpecific;
class MachineIdentity;
struct MainWindowHost;
struct PlatformHost;
class QFanControl;
class QFanControlMainWindow;
class QSystemNotification;
class TerminationSignals;

namespace SMC {
class Service;
}

// The one application object: owns the parts of the program and wires them. It
// lives on the stack of main and is used on the GUI thread.
class QBrisoraApp : public QApplicationExSingle {
    Q_OBJECT

public:
    // What initialize() and main() give back to the system.
    enum ExitCode {
        Success = 0,
        Uninstalled = 1,
        Restart = 2, // nothing in this version asks for it
        Refused = 3,
        NoController = 4,
        AnotherInstance = 5,
    };

    QBrisoraApp(int& argc, char** argv);
    ~QBrisoraApp() override;

    static QBrisoraApp* instance();

    // The start-up, up to the open controller.
    [[nodiscard]] ExitCode initialize();
    // Through the platform; initialize() must have succeeded.
    void showMainWindow();
    // The box that tells that the controller can't be reached; modal.
    void showControllerError();

    [[nodiscard]] const SystemInfo& systemInfo() const { return m_systemInfo; }
    [[nodiscard]] QFanControl* fanControl() const { return m_fanControl.get(); }
    [[nodiscard]] AppPlatformSpecific* platform() const { return m_platform.get(); }
    // Null until the platform has created it.
    [[nodiscard]] QFanControlMainWindow* mainWindow() const { return m_mainWindow.get(); }

    // Product name and version, as titles show them.
    [[nodiscard]] QString productTitle() const;

    // Where the log lies; settled at the first call.
    [[nodiscard]] QString logFilePath() const;
    // The whole log of this run.
    [[nodiscard]] QString readLog() const;

private Q_SLOTS:
    void slotAnotherInstanceStarted();

private:
    void initSettings();
    void initLanguage();
    void readCommandLine();
    void printSysInfo() const;
    void setModelOptions() const;
    [[nodiscard]] PlatformHost makePlatformHost();
    [[nodiscard]] MainWindowHost makeWindowHost();
    // Makes the window, and shows it unless the program starts minimised or for the
    // first time.
    void createMainWindow();
    [[nodiscard]] std::unique_ptr<SMC::Service> makeService();
    [[nodiscard]] std::unique_ptr<QFanControl> makeEngine();
    // Lets the engine hear of sleep, wake and log-off.
    void connectSystemNotification();
    void terminate();

    const std::unique_ptr<MachineIdentity> m_identity;
    const SystemInfo m_systemInfo;
    std::unique_ptr<AppPlatformSpecific> m_platform;
    std::unique_ptr<SMC::Service> m_smcService;
    std::unique_ptr<QFanControl> m_fanControl;
    bool m_startMinimized = false;
    mutable QString m_logFilePath; // empty until it is asked for
    std::unique_ptr<QFanControlMainWindow> m_mainWindow;
    const std::unique_ptr<TerminationSignals> m_terminationSignals;
};
