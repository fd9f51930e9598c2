#include "smcd/server.h"

#include <algorithm>
#include <array>
#include <cerrno>

#include <poll.h>
#include <sys/socket.h>

namespace smcd {

namespace {

constexpr std::size_t fixedDescriptors = 2; // where clients arrive, and the end
constexpr short goneEvents = POLLHUP | POLLERR | POLLNVAL;

using Buffer = std::array<std::uint8_t, protocol::longestRequestPacket + 1>;

// What is received of the next packet: no more than the buffer holds.
ssize_t receive(int socket, Buffer& buffer)
{
    constexpr int attempts = 3;

    ssize_t size = -1;
    // A reset is told once, before what was sent before it.
    for (int attempt = 0; size < 0 && attempt < attempts; ++attempt) {
        size = ::recv(socket, buffer.data(), buffer.size(), MSG_DONTWAIT);
        if (size < 0 && errno != EINTR && errno != ECONNRESET) {
            break;
        }
    }
    return size;
}

// False when the client doesn't take it.
bool send(int socket, const protocol::Packet& packet)
{
    return ::send(socket, packet.data(), packet.size(), MSG_DONTWAIT | MSG_NOSIGNAL)
        == static_cast<ssize_t>(packet.size());
}

Bytes part(const Buffer& buffer, ssize_t size)
{
    return Bytes(buffer).first(static_cast<std::size_t>(size));
}

} // namespace

Server::Server(Service& service, int listener, int stop, std::optional<std::uint32_t> group)
    : m_service(service)
    , m_listener(listener)
    , m_stop(stop)
    , m_group(group)
    , m_nextAttempt(SteadyClock::now())
{
    m_clients.reserve(mostClients);
}

bool Server::run()
{
    for (;;) {
        giveBack();
        std::vector<pollfd> states { { m_stop, POLLIN, 0 }, { m_listener, POLLIN, 0 } };
        for (const Client& client : m_clients) {
            states.push_back({ client.socket.get(), POLLIN, 0 });
        }
        if (::poll(states.data(), states.size(), patience()) < 0) {
            if (errno == EINTR) {
                continue;
            }
            end();
            return false;
        }
        if (states[0].revents != 0) {
            end();
            return true;
        }
        bool isAnyGone = false;
        std::vector<std::size_t> asking;
        for (std::size_t index = 0; index < m_clients.size(); ++index) {
            const short events = states[fixedDescriptors + index].revents;
            if ((events & goneEvents) != 0) {
                hearLastWords(m_clients[index]);
                isAnyGone = true;
            } else if ((events & POLLIN) != 0) {
                asking.push_back(index);
            }
        }
        if (!isAnyGone && !asking.empty()) {
            const auto next = std::find_if(asking.begin(), asking.end(),
                                           [this](std::size_t index) { return index >= m_turn; });
            const std::size_t index = next == asking.end() ? asking.front() : *next;
            m_turn = index + 1;
            serve(m_clients[index]);
        }
        removeGone();
        if (states[1].revents != 0) {
            takeIn();
        }
    }
}

int Server::patience() const
{
    if (!m_service.owes()) {
        return -1;
    }
    const auto rest
        = std::chrono::ceil<std::chrono::milliseconds>(m_nextAttempt - SteadyClock::now());
    return static_cast<int>(std::clamp<std::int64_t>(rest.count(), 0, retryInterval.count()));
}

void Server::giveBack()
{
    const auto now = SteadyClock::now();
    if (m_service.owes() && now >= m_nextAttempt) {
        m_service.giveBack();
        m_nextAttempt = SteadyClock::now() + retryInterval;
    }
}

void Server::takeIn()
{
    Descriptor socket(::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    if (!socket.isOpen()) {
        return;
    }
    const std::optional<Peer> peer = peerOf(socket.get());
    if (!peer || !isServed(*peer, m_group)) {
        static_cast<void>(send(socket.get(), protocol::replyPacket({ EACCES, {} })));
    } else if (m_clients.size() >= mostClients) {
        static_cast<void>(send(socket.get(), protocol::replyPacket({ EBUSY, {} })));
    } else {
        m_clients.push_back({ ++m_lastId, std::move(socket), false });
    }
}

void Server::serve(Client& client)
{
    Buffer buffer;
    const ssize_t size = receive(client.socket.get(), buffer);
    if (size < 0 && (errno == EAGAIN || errno == EINTR)) {
        return;
    }
    client.isGone
        = size <= 0 || !send(client.socket.get(), m_service.answer(client.id, part(buffer, size)));
}

void Server::hearLastWords(Client& client)
{
    Buffer buffer;
    for (ssize_t size = 0; (size = receive(client.socket.get(), buffer)) > 0;) {
        m_service.hearLast(client.id, part(buffer, size));
    }
    client.isGone = true;
}

void Server::removeGone()
{
    for (const Client& client : m_clients) {
        if (client.isGone) {
            m_service.left(client.id);
            m_nextAttempt = SteadyClock::now();
        }
    }
    std::erase_if(m_clients, [](const Client& client) { return client.isGone; });
}

void Server::end()
{
    constexpr std::chrono::milliseconds longest { 2000 };

    m_clients.clear();
    m_service.leaveAll();
    const auto deadline = SteadyClock::now() + longest;
    while (m_service.owes()) {
        m_service.giveBack();
        if (!m_service.owes() || SteadyClock::now() >= deadline) {
            return;
        }
        ::poll(nullptr, 0, 100);
    }
}

} // namespace smcd
