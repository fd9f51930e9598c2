#include "macsim/portface/portface.h"

namespace macsim {

bool PortFace::isOpen()
{
    const std::lock_guard lock(m_mutex);
    return m_connection.exchange(portrecord::request(portrecord::openQuery, 0, 0)).value_or(0) != 0;
}

void PortFace::write(std::uint16_t port, std::uint8_t value)
{
    const std::lock_guard lock(m_mutex);
    // Writing to a port tells nothing about success, also on real hardware.
    static_cast<void>(m_connection.exchange(portrecord::request(portrecord::out, port, value)));
}

std::uint8_t PortFace::read(std::uint16_t port)
{
    const std::lock_guard lock(m_mutex);
    return m_connection.exchange(portrecord::request(portrecord::in, port, 0)).value_or(0);
}

} // namespace macsim
