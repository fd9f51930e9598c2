#pragma once

#include <QFile>
#include <QSet>
#include <QTimer>

#include "macsim/model/controllerdriver.h"
#include "macsim/model/controlverbs.h"
#include "macsim/model/portcontroller.h"
#include "macsim/run/commandprocess.h"
#include "macsim/run/driveface.h"
#include "macsim/run/driversocket.h"
#include "macsim/run/driveserver.h"
#include "macsim/run/machineface.h"
#include "macsim/run/runfolder.h"
#include "macsim/run/runoptions.h"
#include "macsim/run/serviceprocess.h"
#include "macsim/run/simulatorserver.h"
#include "macsim/run/terminationsignals.h"

namespace macsim {

// One run of a command inside a machine, from the start of the machine to the end
// of the command. Needs an application object.
class RunSession : public QObject {
    Q_OBJECT

public:
    // What the simulator itself ends with when the command can't run.
    static constexpr int ownFailure = 125;
    static constexpr int notFound = 127;
    // The command's end by a signal counts from here.
    static constexpr int signalBase = 128;

    // Everything that was prepared for the run; trace may be closed.
    RunSession(const RunOptions& options, MachineDescription description, const LoadProfile& load,
               RunFolder folder);

    // Runs the command. Returns its exit code, 128 and the number of the signal
    // that ended it, or one of the codes above after telling why on standard error.
    [[nodiscard]] int run();

private:
    RunOptions m_options;
    RunFolder m_folder;
    QString m_tcpAddress; // empty unless the command runs under Wine
    QFile m_traceFile;
    MonotonicClock m_clock;
    Trace m_trace;
    SimulatedMac m_mac;
    PortController m_controller;
    MachineFace m_face;
    DriveFace m_driveFace;
    DriveServer m_driveServer;
    ControllerDriver m_driver;
    DriverSocket m_driverSocket;
    ControlVerbs m_verbs;
    SimulatorServer m_server;
    TerminationSignals m_signals;
    CommandProcess m_command;
    ServiceProcess m_service;
    QTimer m_statusTimer;
    QTimer m_faceTimer;
    QSet<int> m_forwarded;
    int m_exitCode = 0;

    [[nodiscard]] bool prepare();
    [[nodiscard]] bool prepareForWine();
    void traceLine(const QByteArray& line);
    [[nodiscard]] QProcessEnvironment environment() const;
    void startService();
    void startCommand();
    void leave();
    void refreshFaces();
    void forwardSignal(int number, bool sentToGroup);
    void commandFinished(int exitCode, QProcess::ExitStatus status);
    [[nodiscard]] bool hasPortUsers() const;
    void leaveSoon();
    void showStatus();
    void writeReport();
};

} // namespace macsim
