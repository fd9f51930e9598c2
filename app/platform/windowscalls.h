#pragma once

#include <cstdint>
#include <memory>

#include <QString>

// The seam to Windows for the platform's own steps: one operation each, no
// decisions. Used on the GUI thread.
class WindowsCalls {
public:
    static constexpr std::uint32_t noTimeout = 0xFFFFFFFF; // waits for ever

    // What initializeCom() gives back when the thread has COM already, in another
    // mode.
    static constexpr std::int32_t comChangedMode = -2147417850; // 0x80010106

    // A process that was started. It runs on when the object is gone.
    class Process {
    public:
        Process() = default;
        Process(const Process&) = delete;
        Process& operator=(const Process&) = delete;
        virtual ~Process() = default;

        // Waits for the end, so many milliseconds: 0 when it has ended, 258 when it
        // hasn't, -1 when it can't be waited for.
        [[nodiscard]] virtual int wait(std::uint32_t timeout) = 0;
        // 259 while it runs, 0 when it can't be told.
        [[nodiscard]] virtual std::uint32_t exitCode() = 0;
    };

    WindowsCalls() = default;
    WindowsCalls(const WindowsCalls&) = delete;
    WindowsCalls& operator=(const WindowsCalls&) = delete;
    virtual ~WindowsCalls() = default;

    // Starts the program at the path with exactly this command line, which names
    // the program again. Null when there is none to start; lastError() tells why.
    [[nodiscard]] virtual std::unique_ptr<Process>
    createProcess(const QString& program, const QString& commandLine, std::uint32_t creationFlags)
        = 0;
    // The system's error number of the last createProcess() that failed.
    [[nodiscard]] virtual int lastError() = 0;

    // The system shows a busy cursor after the start of a process until this thread
    // takes a message. Posts one to the thread and takes one off its queue; those of
    // its windows stay.
    virtual void endBusyCursor() = 0;

    // A modal box of the system's own, with a warning icon and an OK button.
    virtual void showWarning(const QString& title, const QString& text) = 0;

    // COM for this thread, multi-threaded. A result of 0 or more is a success, and
    // is to be followed by one uninitializeCom().
    [[nodiscard]] virtual std::int32_t initializeCom() = 0;
    virtual void uninitializeCom() = 0;
};

// The calls of the running system.
[[nodiscard]] std::unique_ptr<WindowsCalls> makeWindowsCalls();
