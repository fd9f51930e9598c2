#pragma once

#include <QStringList>
#include <QVector>

#include "app/platform/windowscalls.h"

// A Windows that notes what it is asked for, and answers as the test says. The
// record outlives the calls, which belong to the platform.
class FakeWindowsCalls final : public WindowsCalls {
public:
    struct Process {
        QString commandLine; // program and arguments, with a blank between them
        std::uint32_t creationFlags = 0;
        std::uint32_t timeout = 0;
        bool exitCodeAsked = false;
    };
    struct Box {
        QString title;
        QString text;
    };
    struct Record {
        QVector<Process> processes;
        QVector<Box> boxes;
        int comInitialized = 0;
        int comUninitialized = 0;

        // The answers.
        int processResult = Ended;
        std::uint32_t exitCode = 1;
        std::int32_t comResult = 0;
    };

    explicit FakeWindowsCalls(Record& record)
        : m_record(record)
    {
    }

    int runProcess(const QString& program, const QString& arguments, std::uint32_t creationFlags,
                   std::uint32_t timeout, std::uint32_t* exitCode) override
    {
        m_record.processes.append({ program + QLatin1Char(' ') + arguments, creationFlags, timeout,
                                    exitCode != nullptr });
        if (exitCode != nullptr) {
            *exitCode = m_record.exitCode;
        }
        return m_record.processResult;
    }

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
    Record& m_record;
};
