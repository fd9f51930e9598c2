#pragma once

#include <cstdint>
#include <string>

namespace inpout32 {

// What the gate needs of the system.
class PortSystem {
public:
    PortSystem() = default;
    PortSystem(const PortSystem&) = delete;
    PortSystem& operator=(const PortSystem&) = delete;

    // The kernel driver that holds the controller's ports; empty without one.
    [[nodiscard]] virtual std::string kernelOwner() = 0;
    // Permits the calling thread to use one port: 0 or an errno.
    [[nodiscard]] virtual int grant(std::uint16_t port) = 0;
    virtual void write(std::uint16_t port, std::uint8_t byte) = 0;
    [[nodiscard]] virtual std::uint8_t read(std::uint16_t port) = 0;
    // Tells the user on standard error; once per process.
    virtual void complain(const std::string& text) = 0;

protected:
    // Never destroyed through this class: the one of the system lives as long as
    // the process.
    ~PortSystem() = default;
};

// The system's own; any thread may use it.
[[nodiscard]] PortSystem& portSystem();

} // namespace inpout32
