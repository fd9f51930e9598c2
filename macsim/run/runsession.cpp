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
    , m_verbs(m_mac, m_controller, m_trace,
              [this](bool onBattery) { return m_face.setOnBattery(onBattery); })
    , m_server(m_controller, m_verbs)
{
    connect(&m_signals, &TerminationSignals::received, this, &RunSession::forwardSignal);
    connect(&m_command, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
            &RunSession::commandFinished);
    connect(&m_command, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) {
            tell(QStringLiteral("%1: %2").arg(m_options.command.first(), m_command.errorString()));
            m_exitCode = notFound;
            QCoreApplication::exit();
        }
    });
    connect(&m_statusTimer, &QTimer::timeout, this, &RunSession::showStatus);
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
    if (!m_face.create()) {
        tell(QStringLiteral("The machine's files can't be written in %1").arg(m_folder.sysroot()));
        return false;
    }
    QString error;
    if (!m_server.listen(m_folder.socket(), error)) {
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
    QTimer::singleShot(0, this, &RunSession::startCommand);
    QCoreApplication::exec();
    if (m_statusTimer.isActive() && terminalWidth() > 0) {
        std::fputc('\n', stderr);
    }
    m_trace.event(QStringLiteral("end %1").arg(m_exitCode));
    writeReport();
    return m_exitCode;
}

void RunSession::startCommand()
{
    if (!m_forwarded.isEmpty()) {
        return; // asked to end before there was a command
    }
    QProcessEnvironment environment = m_folder.environment(QProcessEnvironment::systemEnvironment(),
                                                           QCoreApplication::applicationDirPath()
                                                               + QStringLiteral("/portface"));
    if (!m_tcpAddress.isEmpty()) {
        RunFolder::addWine(environment, m_options.wineFolder, m_tcpAddress);
    }
    m_command.setProcessEnvironment(environment);
    m_command.start(m_options.command.first(), m_options.command.mid(1));
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
    if (m_options.lingerSeconds > 0 && m_server.portFaces() > 0) {
        m_trace.event(QStringLiteral("linger"));
        QTimer::singleShot(m_options.lingerSeconds * 1000, this, [] { QCoreApplication::exit(); });
        connect(&m_server, &SimulatorServer::portFaceLeft, this, &RunSession::leaveSoon);
        return;
    }
    QCoreApplication::exit();
}

void RunSession::leaveSoon()
{
    if (m_server.portFaces() == 0) {
        QCoreApplication::exit();
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
