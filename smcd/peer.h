#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace smcd {

// Who is at the other end of a socket, as it was when he connected.
struct Peer {
    std::uint32_t user = 0;
    std::vector<std::uint32_t> groups; // all of them
};

// Root and the group's members are served; without such a group root alone.
[[nodiscard]] bool isServed(const Peer& peer, std::optional<std::uint32_t> group);

// Nothing when the system doesn't tell.
[[nodiscard]] std::optional<Peer> peerOf(int socket);
[[nodiscard]] std::optional<std::uint32_t> groupNamed(const std::string& name);

} // namespace smcd
