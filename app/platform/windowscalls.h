#pragma once

#include <cstdint>
#include <memory>

#include <QString>

// The seam to Windows for the platform's own steps: one operation each, no
// decisions. Used on the GUI thread.
class WindowsCalls {
public:
    // What runProcess() gives back.
    enum ProcessResult : int {
        WaitFailed = -1,
        Ended = 0, // or it couldn't be created
        NotAwaited = 1,
        TimedOut = 258,
    };
    static constexpr std::uint32_t noTimeout = 0xFFFFFFFF; // waits for ever

    // What initializeCom() gives back when the thread has COM already, in another
    // mode.
    static constexpr std::int32_t comChangedMode = -2147417850; // 0x80010106

    WindowsCalls() = default;
    WindowsCalls(const WindowsCalls&) = delete;
    WindowsCalls& operator=(const WindowsCalls&) = delete;
    virtual ~WindowsCalls() = default;

    // Runs a program, given by its path, with the arguments as its command line
    // has them. The whole command line is cut after 2047 characters. With a timeout
    // (milliseconds) of 0 it doesn't wait; else it ends the system's busy cursor and
    // waits. The exit code is stored after each wait, as 259 while the process
    // runs, when the pointer isn't null.
    [[nodiscard]] virtual int runProcess(const QString& program, const QString& arguments,
                                         std::uint32_t creationFlags, std::uint32_t timeout,
                                         std::uint32_t* exitCode)
        = 0;

    // A modal box of the system's own, with a warning icon and an OK button.
    virtual void showWarning(const QString& title, const QString& text) = 0;

    // COM for this thread, multi-threaded. A result of 0 or more is a success, and
    // is to be followed by one uninitializeCom().
    [[nodiscard]] virtual std::int32_t initializeCom() = 0;
    virtual void uninitializeCom() = 0;
};

// The calls of the running system.
[[nodiscard]] std::unique_ptr<WindowsCalls> makeWindowsCalls();
