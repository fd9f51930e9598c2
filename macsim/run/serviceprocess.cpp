#include "macsim/run/serviceprocess.h"

#include <utility>

#include <QFile>

namespace macsim {

namespace {

constexpr int lookInterval = 10; // milliseconds
constexpr int longestStart = 10000; // milliseconds
constexpr int longestStop = 10000; // milliseconds

} // namespace

ServiceProcess::ServiceProcess(const Trace& trace, QString socketPath, QObject* parent)
    : QObject(parent)
    , m_trace(trace)
    , m_socketPath(std::move(socketPath))
{
    m_patience.setSingleShot(true);
    connect(&m_look, &QTimer::timeout, this, &ServiceProcess::look);
    connect(&m_patience, &QTimer::timeout, this, [this] {
        if (m_isStopping) {
            m_process.kill();
        } else {
            fail(QStringLiteral("The service didn't get ready"));
        }
    });
    connect(&m_process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
            [this] { ended(); });
    connect(&m_process, &QProcess::started, this, [this] {
        m_trace.event(QStringLiteral("service start %1").arg(m_process.processId()));
    });
    connect(&m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) {
            fail(QStringLiteral("%1: %2").arg(m_process.program(), m_process.errorString()));
        }
    });
}

ServiceProcess::~ServiceProcess()
{
    m_process.disconnect(this);
    if (isRunning()) {
        m_process.kill();
        m_process.waitForFinished();
    }
}

void ServiceProcess::start(const QString& program, const QStringList& arguments,
                           const QProcessEnvironment& environment)
{
    m_process.setProgram(program);
    m_process.setArguments(arguments);
    m_process.setProcessEnvironment(environment);
    QFile::remove(m_socketPath);
    m_look.start(lookInterval);
    m_patience.start(longestStart);
    launch();
}

void ServiceProcess::launch() { m_process.start(); }

void ServiceProcess::look()
{
    if (QFile::exists(m_socketPath)) {
        m_look.stop();
        m_patience.stop();
        Q_EMIT ready();
    }
}

void ServiceProcess::ended()
{
    m_trace.event(QStringLiteral("service end"));
    if (m_isStopping) {
        m_patience.stop();
        Q_EMIT stopped();
    } else if (m_look.isActive()) {
        fail(QStringLiteral("The service ended at once"));
    } else {
        QTimer::singleShot(restartDelay, this, [this] {
            if (!m_isStopping) {
                launch();
            }
        });
    }
}

void ServiceProcess::fail(const QString& reason)
{
    m_look.stop();
    m_patience.stop();
    Q_EMIT failed(reason);
}

void ServiceProcess::stop()
{
    m_isStopping = true;
    if (!isRunning()) {
        QTimer::singleShot(0, this, &ServiceProcess::stopped);
        return;
    }
    m_patience.start(longestStop);
    m_process.terminate();
}

} // namespace macsim
