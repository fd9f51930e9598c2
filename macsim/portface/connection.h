#pragma once

#include <optional>

#include "macsim/portrecord.h"

namespace macsim {

// The port face's connection to the simulator whose address the environment
// names. It is made at the first exchange, and again at a later one when it was
// lost. Not thread-safe: the caller serialises.
class Connection {
public:
    Connection() = default;
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    // Sends one record and waits for its answer, for at most two seconds.
    // Nothing when there is no simulator or it went away.
    [[nodiscard]] std::optional<std::uint8_t> exchange(const portrecord::Request& request);

private:
    [[nodiscard]] bool ensureConnected();
    void disconnect();

    int m_descriptor = -1;
    long m_owner = 0; // process that made the connection: a forked child makes its own
};

} // namespace macsim
