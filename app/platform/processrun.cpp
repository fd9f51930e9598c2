#include "app/platform/processrun.h"

#include <memory>

#include "app/platform/windowscalls.h"
#include "core/log/log.h"

// Where the command line alone names the program, the system looks for one at each
// blank of its path, "C:\Program.exe" first, and puts quotes round what it finds.
// With the path by itself nothing is looked for, and so the quotes, without which
// the program misreads its arguments, are put here.
QString commandLineOf(const QString& program, const QString& arguments)
{
    constexpr int longestCommandLine = 2047;
    return (QLatin1Char('"') + program + QLatin1String("\" ") + arguments).left(longestCommandLine);
}

ProcessResult runProcess(WindowsCalls& calls, const QString& program, const QString& arguments,
                         std::uint32_t creationFlags, std::uint32_t timeout,
                         std::uint32_t* exitCode)
{
    const auto process
        = calls.createProcess(program, commandLineOf(program, arguments), creationFlags);
    if (!process) {
        LOG_ERR("{} can't be started: {}", program, qt_error_string(calls.lastError()));
        return ProcessResult::Ended;
    }
    if (timeout == 0) {
        return ProcessResult::NotAwaited;
    }
    calls.endBusyCursor();
    const auto result = static_cast<ProcessResult>(process->wait(timeout));
    if (exitCode != nullptr) {
        *exitCode = process->exitCode();
    }
    return result;
}
