#pragma once

#include <cstdint>

#include <QString>

class WindowsCalls;

// What runProcess() gives back.
enum class ProcessResult : int {
    WaitFailed = -1,
    Ended = 0, // or it couldn't be created
    NotAwaited = 1,
    TimedOut = 258,
};

// The program's path in quotes and the arguments behind it, cut after 2047
// characters.
[[nodiscard]] QString commandLineOf(const QString& program, const QString& arguments);

// Runs a program, given by its path, with the arguments as its command line has
// them. With a timeout (milliseconds) of 0 it doesn't wait; else it ends the
// system's busy cursor and waits. The exit code is stored after each wait, as 259
// while the process runs, when the pointer isn't null. GUI thread.
[[nodiscard]] ProcessResult runProcess(WindowsCalls& calls, const QString& program,
                                       const QString& arguments, std::uint32_t creationFlags,
                                       std::uint32_t timeout, std::uint32_t* exitCode);
