#pragma once

#include <cstdint>
#include <optional>

#include "macsim/portrecord.h"

namespace macsim {

// The port face's connection to the simulator whose address the environment
// names: MACSIM_SOCKET, or MACSIM_TCP on Windows. It is made at the first
// exchange, and again at a later one when it was lost. Not thread-safe: the
// caller serialises.
class Connection {
public:
    Connection();
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    // Sends one record and waits for its answer, for at most two seconds.
    // Nothing when there is no simulator or it went away.
    [[nodiscard]] std::optional<std::uint8_t> exchange(const portrecord::Request& request);

private:
    [[nodiscard]] bool ensureConnected();
    void disconnect();

    static constexpr std::intptr_t none = -1;

    std::intptr_t m_socket = none; // as the system numbers it
    // The process that made the connection: where there are forks, a child makes
    // its own.
    std::int64_t m_owner = 0;
};

} // namespace macsim
