#include "app/smc/port_driver.h"

#include <cerrno>
#include <chrono>
#include <thread>

#include <dlfcn.h>

namespace SMC {

namespace {

class PortDriverLinux final : public PortDriver {
public:
    bool load() override
    {
        m_library = dlopen("libinpout32.so", RTLD_NOW | RTLD_LOCAL);
        m_error = ELIBACC; // the loader leaves no number behind
        if (m_library == nullptr) {
            const char* const reason = dlerror();
            m_refusal = reason != nullptr ? reason : "";
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
        const std::uint32_t answer = m_isInpOutDriverOpen();
        // Not every such library tells.
        const char* (*tell)() = nullptr;
        const char* const reason = answer == 0 && find("InpOutRefusal", tell) ? tell() : nullptr;
        m_refusal = reason != nullptr ? reason : "";
        return answer;
    }

    void out32(std::uint16_t port, std::uint16_t value) override
    {
        m_out32(static_cast<short>(port), static_cast<short>(value));
    }

    std::uint16_t inp32(std::uint16_t port) override
    {
        return static_cast<std::uint16_t>(m_inp32(static_cast<short>(port)));
    }

    void sleep(std::uint32_t milliseconds) override
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    }

    void unload() override { dlclose(m_library); }

    std::uint32_t lastError() override { return static_cast<std::uint32_t>(m_error); }

    std::string refusal() override { return m_refusal; }

private:
    template <typename Function> bool find(const char* name, Function*& function)
    {
        function = reinterpret_cast<Function*>(dlsym(m_library, name));
        m_error = ENOSYS;
        return function != nullptr;
    }

    void* m_library = nullptr;
    int m_error = 0;
    std::string m_refusal;
    std::uint32_t (*m_isInpOutDriverOpen)() = nullptr;
    void (*m_out32)(short port, short value) = nullptr;
    short (*m_inp32)(short port) = nullptr;
};

} // namespace

std::unique_ptr<PortDriver> makePortDriver() { return std::make_unique<PortDriverLinux>(); }

} // namespace SMC
