#include "app/smc/port_driver_windows.h"

#include <string>

#include <windows.h>
#include <timeapi.h>

namespace SMC {

namespace {

constexpr UINT finestResolution = 1; // milliseconds

template <typename Function> Function* functionOf(HMODULE library, const char* name)
{
    const auto address = reinterpret_cast<void (*)()>(GetProcAddress(library, name));
    return reinterpret_cast<Function*>(address);
}

// Windows 11 ignores a process's wish for a finer timer while its windows are
// hidden. An older Windows never does, and refuses this or lacks the function.
void keepTimerResolutionWhenHidden(HMODULE systemLibrary)
{
    const auto setProcessInformation
        = functionOf<BOOL WINAPI(HANDLE, PROCESS_INFORMATION_CLASS, void*, DWORD)>(
            systemLibrary, "SetProcessInformation");
    if (setProcessInformation == nullptr) {
        return;
    }
    PROCESS_POWER_THROTTLING_STATE state {};
    state.Version = PROCESS_POWER_THROTTLING_CURRENT_VERSION;
    state.ControlMask = PROCESS_POWER_THROTTLING_IGNORE_TIMER_RESOLUTION;
    state.StateMask = 0;
    setProcessInformation(GetCurrentProcess(), ProcessPowerThrottling, &state, sizeof(state));
}

class PortDriverWindows final : public PortDriver {
public:
    explicit PortDriverWindows(const wchar_t* systemLibrary)
        : m_systemLibrary(systemLibrary)
    {
    }

    bool load() override
    {
        m_library = LoadLibraryW(L"inpout32.dll");
        m_error = GetLastError();
        if (m_library != nullptr) {
            keepTimerResolutionWhenHidden(GetModuleHandleW(m_systemLibrary.c_str()));
        }
        return m_library != nullptr;
    }

    bool resolve(PortFunction function) override
    {
        switch (function) {
        case PortFunction::IsInpOutDriverOpen:
            return find("IsInpOutDriverOpen", m_isInpOutDriverOpen);
        case PortFunction::Out32:
            return find("Out32", m_out32);
        case PortFunction::Inp32:
            return find("Inp32", m_inp32);
        }
        return false;
    }

    std::uint32_t isInpOutDriverOpen() override
    {
        return static_cast<std::uint32_t>(m_isInpOutDriverOpen());
    }

    void out32(std::uint16_t port, std::uint16_t value) override
    {
        m_out32(static_cast<short>(port), static_cast<short>(value));
    }

    std::uint16_t inp32(std::uint16_t port) override
    {
        return static_cast<std::uint16_t>(m_inp32(static_cast<short>(port)));
    }

    // The system's timer sleeps up to 15.6 ms for 2 ms unless it is told to be
    // finer, which costs power and so lasts for an exchange only.
    void beginExchange() override { timeBeginPeriod(finestResolution); }
    void endExchange() override { timeEndPeriod(finestResolution); }

    void sleep(std::uint32_t milliseconds) override { Sleep(milliseconds); }

    void unload() override { FreeLibrary(m_library); }

    std::uint32_t lastError() override { return m_error; }

private:
    template <typename Function> bool find(const char* name, Function*& function)
    {
        function = functionOf<Function>(m_library, name);
        m_error = GetLastError();
        return function != nullptr;
    }

    const std::wstring m_systemLibrary;
    HMODULE m_library = nullptr;
    DWORD m_error = 0;
    BOOL(WINAPI* m_isInpOutDriverOpen)() = nullptr;
    void(WINAPI* m_out32)(short port, short value) = nullptr;
    short(WINAPI* m_inp32)(short port) = nullptr;
};

} // namespace

std::unique_ptr<PortDriver> makePortDriver() { return makePortDriver(L"kernel32.dll"); }

std::unique_ptr<PortDriver> makePortDriver(const wchar_t* systemLibrary)
{
    return std::make_unique<PortDriverWindows>(systemLibrary);
}

} // namespace SMC
