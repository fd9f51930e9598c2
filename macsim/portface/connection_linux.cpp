#include "macsim/portface/connection.h"

#include <cerrno>

#include <sys/socket.h>
#include <unistd.h>

#include "macsim/portface/simulatorsocket.h"

namespace macsim {

namespace {

constexpr unsigned int patience = 2000; // milliseconds

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
    m_socket = connectToSimulator(patience);
    if (m_socket == none) {
        return false;
    }
    m_owner = ::getpid();
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
