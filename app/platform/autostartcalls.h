#pragma once

#include <memory>

#include <QString>

// A task that runs a program at a logon, in the task scheduler's terms.
struct LogonTask {
    QString name;
    QString author;
    bool highestRunLevel = false;
    int logonType = 0;
    int triggerType = 0;
    bool disallowStartIfOnBatteries = false;
    bool stopIfGoingOnBatteries = false;
    QString timeLimit; // an ISO 8601 duration
    int actionType = 0;
    QString program;
    QString arguments;
};

// The seam to Windows for the start at logon: one operation each, no decisions. What
// concerns the task scheduler throws WindowsTasks::TaskException when it fails. The
// run key is the current user's. Used on the GUI thread.
class AutostartCalls {
public:
    AutostartCalls() = default;
    AutostartCalls(const AutostartCalls&) = delete;
    AutostartCalls& operator=(const AutostartCalls&) = delete;
    virtual ~AutostartCalls() = default;

    // Windows 6.0 or later.
    [[nodiscard]] virtual bool hasTaskScheduler() = 0;
    // In place of a task of the same name.
    virtual void registerTask(const LogonTask& task) = 0;
    virtual void deleteTask(const QString& name) = 0;
    [[nodiscard]] virtual bool taskExists(const QString& name) = 0;

    virtual void setRunValue(const QString& name, const QString& command) = 0;
    virtual void deleteRunValue(const QString& name) = 0;
    [[nodiscard]] virtual bool hasRunValue(const QString& name) = 0;
};

// The calls of the running system.
[[nodiscard]] std::unique_ptr<AutostartCalls> makeAutostartCalls();
