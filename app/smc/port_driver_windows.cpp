#include "app/smc/port_driver.h"

#include <windows.h>
#include <timeapi.h>

namespace SMC {

namespace {

constexpr UINT finestResolution = 1; // milliseconds

class PortDriverWindows final : public PortDriver {
public:
    bool load() override
    {
        m_library = LoadLibraryW(L"inpout32.dll");
        m_error = GetLastError();
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
        const auto address = reinterpret_cast<void (*)()>(GetProcAddress(m_library, name));
        m_error = GetLastError();
        function = reinterpret_cast<Function*>(address);
        return function != nullptr;
    }

    HMODULE m_library = nullptr;
    DWORD m_error = 0;
    BOOL(WINAPI* m_isInpOutDriverOpen)() = nullptr;
    void(WINAPI* m_out32)(short port, short value) = nullptr;
    short(WINAPI* m_inp32)(short port) = nullptr;
};

} // namespace

std::unique_ptr<PortDriver> makePortDriver() { return std::make_unique<PortDriverWindows>(); }

} // namespace SMC
