#pragma once

#include <cstdint>

// Free of Qt, so that programs without it can use the byte exchange.
namespace SMC {

// The controller's two ports and a way to wait.
class PortAccess {
public:
    PortAccess() = default;
    PortAccess(const PortAccess&) = delete;
    PortAccess& operator=(const PortAccess&) = delete;
    virtual ~PortAccess() = default;

    // Writes the low byte of value.
    virtual void out32(std::uint16_t port, std::uint16_t value) = 0;
    // Only the low byte of the result counts.
    [[nodiscard]] virtual std::uint16_t inp32(std::uint16_t port) = 0;
    virtual void sleep(std::uint32_t milliseconds) = 0;
};

} // namespace SMC
