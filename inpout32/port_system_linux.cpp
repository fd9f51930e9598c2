#include "inpout32/port_system.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <sys/io.h>

#include "inpout32/port_owner.h"

namespace inpout32 {

namespace {

std::string systemPath(const char* path)
{
    // Not for whoever runs a program with more rights than his own.
    const char* const root = secure_getenv("BRISORA_SYSROOT");
    return std::string(root != nullptr ? root : "") + path;
}

class PortSystemLinux final : public PortSystem {
public:
    std::string kernelOwner() override
    {
        std::error_code ignored;
        if (std::filesystem::exists(systemPath("/sys/module/applesmc"), ignored)) {
            return "applesmc";
        }
        std::ifstream table(systemPath("/proc/ioports"));
        return portOwner(table);
    }

    int grant(std::uint16_t port) override { return ioperm(port, 1, 1) == 0 ? 0 : errno; }

    void write(std::uint16_t port, std::uint8_t byte) override { outb(byte, port); }

    std::uint8_t read(std::uint16_t port) override { return inb(port); }

    void complain(const std::string& text) override
    {
        if (!m_complained.exchange(true)) {
            std::fprintf(stderr, "libinpout32: %s\n", text.c_str());
        }
    }

private:
    std::atomic<bool> m_complained = false;
};

} // namespace

PortSystem& portSystem()
{
    static PortSystemLinux system;
    return system;
}

} // namespace inpout32
