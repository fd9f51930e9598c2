#include "inpout32/port_gate.h"

#include <cerrno>
#include <cstring>

namespace inpout32 {

namespace {

constexpr std::uint16_t dataPort = 0x300;
constexpr std::uint16_t commandPort = 0x304;

} // namespace

PortGate::PortGate(PortSystem& system)
    : m_system(system)
{
}

bool PortGate::open()
{
    m_state = ask();
    return m_state == State::Open;
}

void PortGate::write(std::uint16_t port, std::uint8_t byte)
{
    if (isAllowed(port)) {
        m_system.write(port, byte);
    }
}

std::uint8_t PortGate::read(std::uint16_t port)
{
    return isAllowed(port) ? m_system.read(port) : std::uint8_t { 0 };
}

bool PortGate::isAllowed(std::uint16_t port)
{
    if (port != dataPort && port != commandPort) {
        return false;
    }
    if (m_state == State::Unknown) {
        m_state = ask();
    }
    return m_state == State::Open;
}

PortGate::State PortGate::ask()
{
    // Two owners of one exchange would spoil each other's bytes.
    if (const std::string owner = m_system.kernelOwner(); !owner.empty()) {
        return refuse("the ports 0x300 and 0x304 belong to the kernel driver " + owner
                      + " and can't be used beside it: unload that driver first");
    }
    for (const std::uint16_t port : { dataPort, commandPort }) {
        if (const int error = m_system.grant(port); error != 0) {
            return refuse(std::string("no access to the ports 0x300 and 0x304 (")
                          + std::strerror(error)
                          + (error == EPERM ? "): the capability CAP_SYS_RAWIO is missing, or "
                                              "the kernel is locked down"
                                            : ")"));
        }
    }
    m_refusal.clear();
    return State::Open;
}

PortGate::State PortGate::refuse(const std::string& reason)
{
    m_refusal = reason;
    m_system.complain(reason);
    return State::Refused;
}

} // namespace inpout32
