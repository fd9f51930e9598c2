#include "macsim/portface/simulatorsocket.h"

#include <cstdlib>
#include <cstring>

#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

namespace macsim {

int connectToSimulator(unsigned int patienceMilliseconds)
{
    const char* path = std::getenv("MACSIM_SOCKET");
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    if (path == nullptr || *path == '\0' || std::strlen(path) >= sizeof(address.sun_path)) {
        return -1;
    }
    std::strncpy(address.sun_path, path, sizeof(address.sun_path) - 1);
    const int made = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (made < 0) {
        return -1;
    }
    constexpr unsigned int perSecond = 1000;
    const timeval patience { patienceMilliseconds / perSecond,
                             static_cast<suseconds_t>(patienceMilliseconds % perSecond)
                                 * perSecond };
    ::setsockopt(made, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof(patience));
    ::setsockopt(made, SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof(patience));
    const auto* target = static_cast<const sockaddr*>(static_cast<const void*>(&address));
    if (::connect(made, target, sizeof(address)) != 0) {
        ::close(made);
        return -1;
    }
    return made;
}

} // namespace macsim
