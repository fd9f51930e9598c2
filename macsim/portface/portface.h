#pragma once

#include <mutex>

#include "macsim/portface/connection.h"

namespace macsim {

// What the port driver library offers, without its C names: access to the ports
// of the simulated machine. Thread-safe. Without a simulator reads give 0 and
// writes do nothing.
class PortFace {
public:
    [[nodiscard]] bool isOpen();
    void write(std::uint16_t port, std::uint8_t value);
    [[nodiscard]] std::uint8_t read(std::uint16_t port);

private:
    std::mutex m_mutex;
    Connection m_connection;
};

} // namespace macsim
