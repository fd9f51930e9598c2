#include "app/platform/windowscalls.h"

#include <string>

#include <windows.h>
#include <objbase.h>

#include "app/platform/processrun.h"

namespace {

static_assert(WindowsCalls::noTimeout == INFINITE);
static_assert(WindowsCalls::comChangedMode == RPC_E_CHANGED_MODE);
static_assert(ProcessResult::Ended == ProcessResult { WAIT_OBJECT_0 });
static_assert(ProcessResult::TimedOut == ProcessResult { WAIT_TIMEOUT });
static_assert(ProcessResult::WaitFailed == ProcessResult { static_cast<int>(WAIT_FAILED) });

class ProcessSystem final : public WindowsCalls::Process {
public:
    explicit ProcessSystem(HANDLE handle)
        : m_handle(handle)
    {
    }
    ~ProcessSystem() override { CloseHandle(m_handle); }

    int wait(std::uint32_t timeout) override
    {
        return static_cast<int>(WaitForSingleObject(m_handle, timeout));
    }

    std::uint32_t exitCode() override
    {
        DWORD code = 0;
        GetExitCodeProcess(m_handle, &code);
        return code;
    }

private:
    const HANDLE m_handle;
};

class WindowsCallsSystem final : public WindowsCalls {
public:
    std::unique_ptr<Process> createProcess(const QString& program, const QString& commandLine,
                                           std::uint32_t creationFlags) override
    {
        const std::wstring path = program.toStdWString();
        std::wstring writableLine = commandLine.toStdWString();
        STARTUPINFOW startup {};
        startup.cb = sizeof(startup);
        PROCESS_INFORMATION process {};
        if (CreateProcessW(path.c_str(), writableLine.data(), nullptr, nullptr, FALSE,
                           creationFlags, nullptr, nullptr, &startup, &process)
            == 0) {
            m_lastError = static_cast<int>(GetLastError());
            return nullptr;
        }
        CloseHandle(process.hThread);
        return std::make_unique<ProcessSystem>(process.hProcess);
    }

    int lastError() override { return m_lastError; }

    void endBusyCursor() override
    {
        // Only a message to the thread itself is taken, none that a window waits for.
        const auto threadMessagesOnly = reinterpret_cast<HWND>(INT_PTR { -1 });
        MSG message {};
        // Taking one where none could be posted might wait for ever.
        if (PostThreadMessageW(GetCurrentThreadId(), WM_NULL, 0, 0) != 0) {
            GetMessageW(&message, threadMessagesOnly, 0, 0);
        }
    }

    void showWarning(const QString& title, const QString& text) override
    {
        MessageBoxW(nullptr, text.toStdWString().c_str(), title.toStdWString().c_str(),
                    MB_OK | MB_ICONWARNING);
    }

    std::int32_t initializeCom() override { return CoInitializeEx(nullptr, COINIT_MULTITHREADED); }

    void uninitializeCom() override { CoUninitialize(); }

private:
    int m_lastError = 0;
};

} // namespace

std::unique_ptr<WindowsCalls> makeWindowsCalls() { return std::make_unique<WindowsCallsSystem>(); }
