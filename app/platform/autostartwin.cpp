#include "app/platform/autostartwin.h"

#include <utility>

#include <QScopeGuard>

#include "app/platform/autostartcalls.h"
#include "build_config.h"
#include "core/log/log.h"
#include "core/tasks/taskexception.h"

namespace {

// The scheduler's numbers.
constexpr int interactiveToken = 3;
constexpr int logonTrigger = 9;
constexpr int runProgram = 0;
// Else the scheduler would terminate the program on its third day.
const QString unlimited = QStringLiteral("PT0S");

const QString arguments = QStringLiteral("/minimized");

QString entryName() { return QLatin1String(BuildConfig::productName); }

} // namespace

AutostartWin::AutostartWin(std::unique_ptr<AutostartCalls> calls, const QString& executablePath,
                           ShowWarning showWarning)
    : m_calls(std::move(calls))
    , m_executablePath(executablePath)
    , m_showWarning(std::move(showWarning))
    , m_hasTaskScheduler(m_calls->hasTaskScheduler())
{
}

AutostartWin::~AutostartWin() = default;

void AutostartWin::setEnabled(bool enable)
{
    if (!m_hasTaskScheduler) {
        if (enable) {
            m_calls->setRunValue(entryName(),
                                 QStringLiteral("\"%1\" %2").arg(m_executablePath, arguments));
        } else {
            m_calls->deleteRunValue(entryName());
        }
        return;
    }
    try {
        if (enable) {
            registerTask();
        } else {
            deleteTask();
        }
    } catch (const WindowsTasks::TaskException& error) {
        const QString text = QString::fromUtf8(error.what());
        LOG_WARN("The start at logon can't be changed: {}", core::log::singleLine(text));
        m_showWarning(QStringLiteral("Exception"), text);
    }
}

bool AutostartWin::isEnabled() const
{
    if (!m_hasTaskScheduler) {
        return m_calls->hasRunValue(entryName());
    }
    try {
        return m_calls->taskExists(entryName());
    } catch (const WindowsTasks::TaskException& error) {
        LOG_WARN("The start at logon can't be looked up: {}",
                 core::log::singleLine(QString::fromUtf8(error.what())));
        return false;
    }
}

void AutostartWin::registerTask()
{
    LogonTask task;
    task.name = entryName();
    task.author = QLatin1String(BuildConfig::organizationName);
    task.highestRunLevel = true;
    task.logonType = interactiveToken;
    task.triggerType = logonTrigger;
    task.disallowStartIfOnBatteries = false;
    task.stopIfGoingOnBatteries = false;
    task.timeLimit = unlimited;
    task.actionType = runProgram;
    task.program = m_executablePath;
    task.arguments = arguments;
    m_calls->registerTask(task);
}

void AutostartWin::deleteTask()
{
    // As releases for older systems have left it. It goes, whatever becomes of the task.
    const auto deleteRunValue = qScopeGuard([this] { m_calls->deleteRunValue(entryName()); });
    if (m_calls->taskExists(entryName())) {
        m_calls->deleteTask(entryName());
    }
}
