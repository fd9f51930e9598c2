#include "macsim/portface/connection.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

namespace macsim {

namespace {

int descriptor(std::intptr_t socket) { return static_cast<int>(socket); }

} // namespace

Connection::Connection() = default;

Connection::~Connection() { disconnect(); }

void Connection::disconnect()
{
    if (m_socket != none) {
        ::close(descriptor(m_socket));
        m_socket = none;
    }
}

bool Connection::ensureConnected()
{
    if (m_socket != none && m_owner == ::getpid()) {
        return true;
    }
    disconnect();
    const char* path = std::getenv("MACSIM_SOCKET");
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    if (path == nullptr || *path == '\0' || std::strlen(path) >= sizeof(address.sun_path)) {
        return false;
    }
    std::strncpy(address.sun_path, path, sizeof(address.sun_path) - 1);
    m_socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (m_socket == none) {
        return false;
    }
    m_owner = ::getpid();
    const timeval patience { 2, 0 };
    ::setsockopt(descriptor(m_socket), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof(patience));
    ::setsockopt(descriptor(m_socket), SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof(patience));
    const auto* target = static_cast<const sockaddr*>(static_cast<const void*>(&address));
    if (::connect(descriptor(m_socket), target, sizeof(address)) != 0) {
        disconnect();
        return false;
    }
    return true;
}

std::optional<std::uint8_t> Connection::exchange(const portrecord::Request& request)
{
    if (!ensureConnected()) {
        return std::nullopt;
    }
    ssize_t sent = 0;
    do {
        sent = ::send(descriptor(m_socket), request.data(), request.size(), MSG_NOSIGNAL);
    } while (sent < 0 && errno == EINTR);
    std::uint8_t answer = 0;
    ssize_t received = 0;
    if (sent == static_cast<ssize_t>(request.size())) {
        do {
            received = ::recv(descriptor(m_socket), &answer, 1, 0);
        } while (received < 0 && errno == EINTR);
    }
    if (received != 1) {
        disconnect();
        return std::nullopt;
    }
    return answer;
}

} // namespace macsim
