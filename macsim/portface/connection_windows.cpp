#include "macsim/portface/connection.h"

#include <cstdlib>

#include <winsock2.h>

#include "macsim/tcpaddress.h"

namespace macsim {

namespace {

constexpr DWORD patience = 2000; // milliseconds

SOCKET handle(std::intptr_t socket) { return static_cast<SOCKET>(socket); }

template <typename Value> void setOption(SOCKET socket, int level, int name, Value value)
{
    setsockopt(socket, level, name, static_cast<const char*>(static_cast<const void*>(&value)),
               sizeof(value));
}

bool sendAll(SOCKET socket, const void* bytes, std::size_t count)
{
    return send(socket, static_cast<const char*>(bytes), static_cast<int>(count), 0)
        == static_cast<int>(count);
}

// Sockets work from here to the end of the process: nothing may end them while a
// DLL is unloaded, which is when connections are destroyed.
bool startSockets()
{
    constexpr WORD version = 0x0202;
    WSADATA data {};
    static const bool started = WSAStartup(version, &data) == 0;
    return started;
}

} // namespace

Connection::Connection() = default;

Connection::~Connection() { disconnect(); }

void Connection::disconnect()
{
    if (m_socket != none) {
        closesocket(handle(m_socket));
        m_socket = none;
    }
}

bool Connection::ensureConnected()
{
    if (m_socket != none) {
        return true;
    }
    const char* text = std::getenv("MACSIM_TCP");
    const auto address = TcpAddress::parse(text == nullptr ? "" : text);
    if (!address || !startSockets()) {
        return false;
    }
    const SOCKET opened = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    if (opened == INVALID_SOCKET) {
        return false;
    }
    m_socket = static_cast<std::intptr_t>(opened);
    setOption(opened, SOL_SOCKET, SO_RCVTIMEO, patience);
    setOption(opened, SOL_SOCKET, SO_SNDTIMEO, patience);
    setOption(opened, IPPROTO_TCP, TCP_NODELAY, BOOL { TRUE });
    sockaddr_in target {};
    target.sin_family = AF_INET;
    target.sin_port = htons(address->port);
    target.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const auto* generic = static_cast<const sockaddr*>(static_cast<const void*>(&target));
    if (connect(opened, generic, sizeof(target)) != 0
        || !sendAll(opened, address->token.data(), address->token.size())) {
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
    char answer = 0;
    if (!sendAll(handle(m_socket), request.data(), request.size())
        || recv(handle(m_socket), &answer, 1, 0) != 1) {
        disconnect();
        return std::nullopt;
    }
    return static_cast<std::uint8_t>(answer);
}

} // namespace macsim
