#pragma once

#include <cstdint>
#include <string>

#include "inpout32/port_system.h"

namespace inpout32 {

// One thread's way to the controller's two ports: the kernel grants ports to
// single threads, so each has a gate of its own.
class PortGate {
public:
    // The system must outlive the gate.
    explicit PortGate(PortSystem& system);

    // Asks for the permission, again at each call; false after a complaint when
    // a kernel driver holds the ports or the privilege is missing.
    [[nodiscard]] bool open();
    // Why the last request was refused; empty when none was.
    [[nodiscard]] const std::string& refusal() const { return m_refusal; }
    // These ask for the permission if nobody has asked yet. Without it, and for
    // any other port, writing does nothing and reading gives 0.
    void write(std::uint16_t port, std::uint8_t byte);
    [[nodiscard]] std::uint8_t read(std::uint16_t port);

private:
    enum class State { Unknown, Open, Refused };

    [[nodiscard]] bool isAllowed(std::uint16_t port);
    [[nodiscard]] State ask();
    State refuse(const std::string& reason);

    PortSystem& m_system;
    State m_state = State::Unknown;
    std::string m_refusal;
};

} // namespace inpout32
