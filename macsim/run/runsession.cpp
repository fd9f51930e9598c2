#include "macsim/run/runsession.h"

#include <cstdio>
#include <utility>

#include <QCoreApplication>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

#include "macsim/model/machinestate.h"
#include "macsim/run/statusline.h"
#include "macsim/run/terminal.h"

namespace macsim {

namespace {

constexpr int statusPeriod = 1000; // milliseconds
constexpr int facePeriod = 250; // milliseconds between two temperatures in a file

void tell(const QString& text) { std::fprintf(stderr, "macsim: %s\n", qPrintable(text)); }

} // namespace

RunSession::RunSession(const RunOptions& options, MachineDescription description,
                       const LoadProfile& load, RunFolder folder)
    : m_options(options)
    , m_folder(std::move(folder))
    , m_traceFile(options.traceFile)
    , m_trace(m_clock, [this](const QByteArray& line) { traceLine(line); })
    , m_mac(std::move(description), m_clock, { load, options.speed, options.seed })
    , m_controller(m_mac, m_clock, m_trace)
    , m_face(m_mac.description(), m_folder.sysroot())
    , m_driveFace(m_mac, m_folder.sysroot())
    , m_driveServer(m_mac, m_trace)
    , m_driver(m_mac, m_controller, m_trace)
    , m_driverSocket(m_driver, m_mac)
    , m_verbs(
          m_mac, m_controller, m_trace,
          [this](bool onBattery) { return m_face.setOnBattery(onBattery); },
          [this](const QString& drive, bool isPlugged) {
              return m_driveFace.setPlugged(drive, isPlugged);
          })
    , m_server(m_controller, m_driveServer, m_verbs, m_mac)
    , m_service(m_trace, m_folder.driverSocket())
{
    connect(&m_service, &ServiceProcess::ready, this, &RunSession::startCommand);
    connect(&m_service, &ServiceProcess::stopped, this, [] { QCoreApplication::exit(); });
    connect(&m_service, &ServiceProcess::failed, this, [this](const QString& reason) {
        tell(reason);
        m_exitCode = ownFailure;
        QCoreApplication::exit();
    });
    connect(&m_signals, &TerminationSignals::received, this, &RunSession::forwardSignal);
    connect(&m_command, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
            &RunSession::commandFinished);
    connect(&m_command, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) {
            tell(QStringLiteral("%1: %2").arg(m_options.command.first(), m_command.errorString()));
            m_exitCode = notFound;
            leave();
        }
    });
    connect(&m_statusTimer, &QTimer::timeout, this, &RunSession::showStatus);
    connect(&m_faceTimer, &QTimer::timeout, this, &RunSession::refreshFaces);
}

void RunSession::traceLine(const QByteArray& line)
{
    if (m_traceFile.isOpen()) {
        m_traceFile.write(line + '\n');
        m_traceFile.flush();
    }
}

bool RunSession::prepare()
{
    const bool traces = !m_options.traceFile.isEmpty();
    if (traces && !m_traceFile.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        tell(QStringLiteral("%1: %2").arg(m_options.traceFile, m_traceFile.errorString()));
        return false;
    }
    if (!m_face.create() || !m_driveFace.create()) {
        tell(QStringLiteral("The machine's files can't be written in %1").arg(m_folder.sysroot()));
        return false;
    }
    QString error;
    if (!m_server.listen(m_folder.socket(), error)) {
        tell(error);
        return false;
    }
    const bool isDriverServed = m_mac.description().hasDriver && m_options.service.isEmpty();
    if (isDriverServed && !m_driverSocket.listen(m_folder.driverSocket(), error)) {
        tell(error);
        return false;
    }
    return m_options.wineFolder.isEmpty() || prepareForWine();
}

bool RunSession::prepareForWine()
{
    const QString library = m_options.wineFolder + QStringLiteral("/inpout32.dll");
    if (!QFileInfo::exists(library)) {
        tell(QStringLiteral("There is no %1").arg(library));
        return false;
    }
    QString error;
    const auto address = m_server.listenOnLoopback(error);
    if (!address) {
        tell(error);
        return false;
    }
    m_tcpAddress = *address;
    return true;
}

int RunSession::run()
{
    if (!prepare()) {
        return ownFailure;
    }
    m_trace.event(QStringLiteral("start %1 load %2 speed %3")
                      .arg(m_mac.description().name, m_options.load)
                      .arg(m_options.speed));
    if (!m_options.quiet && (m_options.status || terminalWidth() > 0)) {
        m_statusTimer.start(statusPeriod);
    }
    refreshFaces();
    m_faceTimer.start(facePeriod);
    QTimer::singleShot(0, this,
                       m_options.service.isEmpty() ? &RunSession::startCommand
                                                   : &RunSession::startService);
    QCoreApplication::exec();
    if (m_statusTimer.isActive() && terminalWidth() > 0) {
        std::fputc('\n', stderr);
    }
    m_trace.event(QStringLiteral("end %1").arg(m_exitCode));
    writeReport();
    return m_exitCode;
}

QProcessEnvironment RunSession::environment() const
{
    const QString own = QCoreApplication::applicationDirPath();
    QProcessEnvironment environment = m_folder.environment(QProcessEnvironment::systemEnvironment(),
                                                           own + QStringLiteral("/portface"));
    if (m_tcpAddress.isEmpty()) {
        RunFolder::addDriveFace(environment,
                                own + QStringLiteral("/driveface/libmacsim-driveface.so"));
    } else {
        RunFolder::addWine(environment, m_options.wineFolder, m_tcpAddress);
    }
    return environment;
}

void RunSession::startService()
{
    m_service.start(m_options.service,
                    { QStringLiteral("--foreground"), QStringLiteral("--group"),
                      QFileInfo(m_folder.path()).group() },
                    environment());
}

void RunSession::startCommand()
{
    if (!m_forwarded.isEmpty()) {
        return; // asked to end before there was a command
    }
    m_command.setProcessEnvironment(environment());
    m_command.start(m_options.command.first(), m_options.command.mid(1));
}

void RunSession::refreshFaces()
{
    m_mac.advance();
    bool ok = m_driveFace.refresh();
    for (std::size_t gpu = 0; gpu < m_mac.description().gpus.size(); ++gpu) {
        ok = ok
            && (!m_face.hasTemperatureFile(gpu)
                || m_face.setGpuTemperature(gpu, m_mac.gpuTemperature(gpu)));
    }
    if (!ok) {
        tell(QStringLiteral("The files of drives and GPUs can't be written"));
        m_faceTimer.stop();
    }
}

void RunSession::forwardSignal(int number, bool sentToGroup)
{
    const bool isNew = !m_forwarded.contains(number);
    m_forwarded.insert(number);
    if (m_command.state() == QProcess::NotRunning) {
        m_exitCode = signalBase + number;
        QCoreApplication::exit();
    } else if (isNew && !sentToGroup) {
        m_command.sendSignal(number);
    }
}

void RunSession::commandFinished(int exitCode, QProcess::ExitStatus status)
{
    m_exitCode = status == QProcess::CrashExit ? signalBase + exitCode : exitCode;
    if (m_options.lingerSeconds > 0 && hasPortUsers()) {
        m_trace.event(QStringLiteral("linger"));
        QTimer::singleShot(m_options.lingerSeconds * 1000, this, &RunSession::leave);
        connect(&m_server, &SimulatorServer::portFaceLeft, this, &RunSession::leaveSoon);
        return;
    }
    leave();
}

bool RunSession::hasPortUsers() const
{
    // The service is one for as long as it runs.
    return m_server.portFaces() > (m_service.isRunning() ? 1 : 0);
}

void RunSession::leaveSoon()
{
    if (!hasPortUsers()) {
        leave();
    }
}

// The service sees its clients leave before it is asked to end.
void RunSession::leave()
{
    if (m_options.service.isEmpty()) {
        QCoreApplication::exit();
    } else {
        m_service.stop();
    }
}

void RunSession::showStatus()
{
    const QString line = statusLine(m_mac, m_controller);
    const int width = terminalWidth();
    if (width > 0) {
        std::fprintf(stderr, "\r\033[K%s", qPrintable(line.left(width - 1)));
    } else {
        std::fprintf(stderr, "%s\n", qPrintable(line));
    }
    std::fflush(stderr);
}

void RunSession::writeReport()
{
    if (m_options.reportFile.isEmpty()) {
        return;
    }
    QJsonObject report = machineState(m_mac, m_controller);
    report.insert(QStringLiteral("exitCode"), m_exitCode);
    QSaveFile file(m_options.reportFile);
    if (!file.open(QIODevice::WriteOnly) || file.write(QJsonDocument(report).toJson()) < 0
        || !file.commit()) {
        tell(QStringLiteral("%1: %2").arg(m_options.reportFile, file.errorString()));
    }
}

} // namespace macsim
