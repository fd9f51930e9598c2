#include "app/platform/windowscalls.h"

#include <algorithm>
#include <string>

#include <windows.h>
// After windows.h, which it needs.
#include <objbase.h>

#include "core/log/log.h"

namespace {

constexpr std::size_t longestCommandLine = 2047; // characters

static_assert(WindowsCalls::noTimeout == INFINITE);
static_assert(WindowsCalls::TimedOut == WAIT_TIMEOUT);
static_assert(WindowsCalls::WaitFailed == static_cast<int>(WAIT_FAILED));
static_assert(WindowsCalls::comChangedMode == RPC_E_CHANGED_MODE);

// The system shows the busy cursor for a new process until it takes a message.
// Only a message to the thread itself is taken, none that a window waits for.
void endBusyCursor()
{
    const auto threadMessagesOnly = reinterpret_cast<HWND>(INT_PTR { -1 });
    MSG message {};
    if (PostThreadMessageW(GetCurrentThreadId(), WM_NULL, 0, 0) != 0) {
        GetMessageW(&message, threadMessagesOnly, 0, 0);
    }
}

class WindowsCallsSystem final : public WindowsCalls {
public:
    int runProcess(const QString& program, const QString& arguments, std::uint32_t creationFlags,
                   std::uint32_t timeout, std::uint32_t* exitCode) override
    {
        // Where the command line alone names the program, the system looks for one
        // at each blank of its path, "C:\Program.exe" first, and puts quotes round
        // what it finds. With the path by itself nothing is looked for, and so the
        // quotes, without which the program misreads its arguments, are put here.
        const std::wstring path = program.toStdWString();
        std::wstring commandLine = L'"' + path + L"\" " + arguments.toStdWString();
        commandLine.resize(std::min(commandLine.size(), longestCommandLine));

        STARTUPINFOW startup {};
        startup.cb = sizeof(startup);
        PROCESS_INFORMATION process {};
        if (CreateProcessW(path.c_str(), commandLine.data(), nullptr, nullptr, FALSE, creationFlags,
                           nullptr, nullptr, &startup, &process)
            == 0) {
            const auto error = static_cast<int>(GetLastError());
            LOG_ERR("{} can't be started: {}", program, qt_error_string(error));
            return Ended;
        }
        CloseHandle(process.hThread);
        const int result
            = timeout == 0 ? NotAwaited : waitForProcess(process.hProcess, timeout, exitCode);
        CloseHandle(process.hProcess);
        return result;
    }

    void showWarning(const QString& title, const QString& text) override
    {
        MessageBoxW(nullptr, text.toStdWString().c_str(), title.toStdWString().c_str(),
                    MB_OK | MB_ICONWARNING);
    }

    std::int32_t initializeCom() override { return CoInitializeEx(nullptr, COINIT_MULTITHREADED); }

    void uninitializeCom() override { CoUninitialize(); }

private:
    static int waitForProcess(HANDLE process, DWORD timeout, std::uint32_t* exitCode)
    {
        endBusyCursor();
        const DWORD result = WaitForSingleObject(process, timeout);
        if (exitCode != nullptr) {
            DWORD code = 0;
            GetExitCodeProcess(process, &code);
            *exitCode = code;
        }
        return static_cast<int>(result);
    }
};

} // namespace

std::unique_ptr<WindowsCalls> makeWindowsCalls() { return std::make_unique<WindowsCallsSystem>(); }
