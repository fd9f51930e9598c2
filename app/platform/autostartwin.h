#pragma once

#include <functional>
#include <memory>

#include <QString>

class AutostartCalls;

// The start at logon on Windows: a logon task, since a program that asks for the
// highest rights doesn't start from the run key; that key only where there is no
// task scheduler. GUI thread.
class AutostartWin {
public:
    // Shows a modal box with a warning.
    using ShowWarning = std::function<void(const QString& title, const QString& text)>;

    AutostartWin(std::unique_ptr<AutostartCalls> calls, const QString& executablePath,
                 ShowWarning showWarning);
    ~AutostartWin();

    // A failure is told to the user, and nothing is taken back.
    void setEnabled(bool enable);
    [[nodiscard]] bool isEnabled() const;

private:
    void registerTask();
    void deleteTask();

    const std::unique_ptr<AutostartCalls> m_calls;
    const QString m_executablePath;
    const ShowWarning m_showWarning;
    const bool m_hasTaskScheduler;
};
