#include "smcd/peer.h"

#include <cerrno>

#include <grp.h>
#include <sys/socket.h>

namespace smcd {

std::optional<Peer> peerOf(int socket)
{
    ucred credentials {};
    socklen_t size = sizeof(credentials);
    if (::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &credentials, &size) != 0) {
        return std::nullopt;
    }
    std::vector<gid_t> groups;
    socklen_t groupsSize = 0;
    // Asked for without room, it tells how much it needs.
    if (::getsockopt(socket, SOL_SOCKET, SO_PEERGROUPS, nullptr, &groupsSize) != 0) {
        if (errno != ERANGE) {
            return std::nullopt;
        }
        groups.resize(groupsSize / sizeof(gid_t));
        if (::getsockopt(socket, SOL_SOCKET, SO_PEERGROUPS, groups.data(), &groupsSize) != 0) {
            return std::nullopt;
        }
    }
    groups.push_back(credentials.gid);
    return Peer { credentials.uid, groups };
}

std::optional<std::uint32_t> groupNamed(const std::string& name)
{
    const group* const entry = ::getgrnam(name.c_str());
    return entry != nullptr ? std::optional<std::uint32_t>(entry->gr_gid) : std::nullopt;
}

} // namespace smcd
