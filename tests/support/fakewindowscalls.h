#pragma once

#include <QStringList>
#include <QVector>

#include "app/platform/windowscalls.h"

// A Windows that notes what it is asked for, and answers as the test says. The
// record outlives the calls, which belong to the platform.
class FakeWindowsCalls final : public WindowsCalls {
public:
    struct Start {
        QString program;
        QString commandLine;
        std::uint32_t creationFlags = 0;
    };
    struct Box {
        QString title;
        QString text;
    };
    struct Record {
        QVector<Start> starts; // also those that failed
        // What has to do with processes, in its order: "create", "end busy cursor",
        // "wait 1000", "exit code", "close".
        QStringList calls;
        QVector<Box> boxes;
        int comInitialized = 0;
        int comUninitialized = 0;

        // The answers.
        bool canCreate = true;
        int error = 0;
        int waitResult = 0;
        std::uint32_t exitCode = 1;
        std::int32_t comResult = 0;
    };

    explicit FakeWindowsCalls(Record& record)
        : m_record(record)
    {
    }

    std::unique_ptr<Process> createProcess(const QString& program, const QString& commandLine,
                                           std::uint32_t creationFlags) override
    {
        m_record.starts.append({ program, commandLine, creationFlags });
        m_record.calls.append(QStringLiteral("create"));
        return m_record.canCreate ? std::make_unique<FakeProcess>(m_record) : nullptr;
    }

    int lastError() override { return m_record.error; }

    void endBusyCursor() override { m_record.calls.append(QStringLiteral("end busy cursor")); }

    void showWarning(const QString& title, const QString& text) override
    {
        m_record.boxes.append({ title, text });
    }

    std::int32_t initializeCom() override
    {
        ++m_record.comInitialized;
        return m_record.comResult;
    }

    void uninitializeCom() override { ++m_record.comUninitialized; }

private:
    class FakeProcess final : public Process {
    public:
        explicit FakeProcess(Record& record)
            : m_record(record)
        {
        }
        ~FakeProcess() override { m_record.calls.append(QStringLiteral("close")); }

        int wait(std::uint32_t timeout) override
        {
            m_record.calls.append(QStringLiteral("wait %1").arg(timeout));
            return m_record.waitResult;
        }

        std::uint32_t exitCode() override
        {
            m_record.calls.append(QStringLiteral("exit code"));
            return m_record.exitCode;
        }

    private:
        Record& m_record;
    };

    Record& m_record;
};
