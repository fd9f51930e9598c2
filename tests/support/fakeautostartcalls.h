#pragma once

#include <optional>

#include <QMap>
#include <QStringList>

#include "app/platform/autostartcalls.h"
#include "core/tasks/taskexception.h"

// A task scheduler and a run key in memory. The record outlives the calls, which
// belong to whoever uses them.
class FakeAutostartCalls final : public AutostartCalls {
public:
    struct Record {
        QMap<QString, LogonTask> tasks;
        QMap<QString, QString> runValues;
        QStringList calls;

        // The answers.
        bool hasTaskScheduler = true;
        QString failure; // of the scheduler's; empty: it works
        QString failingCall; // the one that fails; empty: each of them
    };

    explicit FakeAutostartCalls(Record& record)
        : m_record(record)
    {
    }

    bool hasTaskScheduler() override { return m_record.hasTaskScheduler; }
    void registerTask(const LogonTask& task) override
    {
        note("registerTask");
        m_record.tasks.insert(task.name, task);
    }
    void deleteTask(const QString& name) override
    {
        note("deleteTask");
        if (m_record.tasks.remove(name) == 0) {
            throw WindowsTasks::TaskException("ITaskFolder::DeleteTask failed: none");
        }
    }
    bool taskExists(const QString& name) override
    {
        note("taskExists");
        return m_record.tasks.contains(name);
    }
    void setRunValue(const QString& name, const QString& command) override
    {
        m_record.runValues.insert(name, command);
    }
    void deleteRunValue(const QString& name) override { m_record.runValues.remove(name); }
    bool hasRunValue(const QString& name) override { return m_record.runValues.contains(name); }

private:
    void note(const char* call)
    {
        m_record.calls.append(QLatin1String(call));
        const QString& failing = m_record.failingCall;
        const bool isFailing = failing.isEmpty() || failing == QLatin1String(call);
        if (isFailing && !m_record.failure.isEmpty()) {
            throw WindowsTasks::TaskException(m_record.failure.toStdString());
        }
    }

    Record& m_record;
};
