#include "smcd/peer.h"

#include <algorithm>

namespace smcd {

bool isServed(const Peer& peer, std::optional<std::uint32_t> group)
{
    constexpr std::uint32_t root = 0;
    return peer.user == root
        || (group
            && std::find(peer.groups.begin(), peer.groups.end(), *group) != peer.groups.end());
}

} // namespace smcd
