#include "app/smc/device_channel_linux.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <string>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <QFile>

#include "core/system_path.h"
#include "smcd/protocol/records.h"

namespace SMC {

namespace {

namespace protocol = smcd::protocol;

using SteadyClock = std::chrono::steady_clock;

QByteArray socketPath()
{
    return QFile::encodeName(core::systemPath(QString::fromLatin1(
        protocol::socketPath.data(), static_cast<int>(protocol::socketPath.size()))));
}

// Whether it means that the other side is gone.
bool isBroken(int error) { return error == EPIPE || error == ECONNRESET || error == ENOTCONN; }

} // namespace

class DeviceChannel::Connection {
public:
    Connection() = default;
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection() { disconnect(); }

    // 0, or the error number.
    int connect(SteadyClock::time_point deadline)
    {
        disconnect();
        const int error = connectSocket();
        if (error != 0) {
            return error;
        }
        std::array<std::uint8_t, protocol::longestReply> version {};
        std::size_t filled = 0;
        const int refused = exchange(protocol::code::open, {}, version, filled, deadline);
        if (refused != 0) {
            disconnect();
        }
        return refused;
    }

    int call(std::uint32_t code, std::span<const std::uint8_t> request,
             std::span<std::uint8_t> reply, std::size_t& filled)
    {
        const auto deadline = SteadyClock::now() + timeLimit;
        int error = ENOTCONN;
        if (m_socket >= 0) {
            error = exchange(code, request, reply, filled, deadline);
        }
        if (m_socket < 0 && isBroken(error)) {
            error = connect(deadline);
            if (error == 0) {
                error = exchange(code, request, reply, filled, deadline);
            }
        }
        return error;
    }

private:
    int m_socket = -1;
    // Replies that came too late for their calls, or will.
    unsigned m_unanswered = 0;

    void disconnect()
    {
        if (m_socket >= 0) {
            ::close(m_socket);
        }
        m_socket = -1;
        m_unanswered = 0;
    }

    int connectSocket()
    {
        sockaddr_un address {};
        address.sun_family = AF_UNIX;
        const QByteArray path = socketPath();
        if (static_cast<std::size_t>(path.size()) >= sizeof(address.sun_path)) {
            return ENAMETOOLONG;
        }
        std::copy(path.begin(), path.end(), address.sun_path);
        // A service whose queue is full refuses instead of making the caller wait.
        m_socket = ::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
        if (m_socket < 0) {
            return errno;
        }
        if (::connect(m_socket, static_cast<const sockaddr*>(static_cast<const void*>(&address)),
                      sizeof(address))
            != 0) {
            const int error = errno;
            disconnect();
            return error;
        }
        return 0;
    }

    // The connection is closed when it is of no more use.
    int exchange(std::uint32_t code, std::span<const std::uint8_t> request,
                 std::span<std::uint8_t> reply, std::size_t& filled,
                 SteadyClock::time_point deadline)
    {
        if (request.size() > protocol::longestRequest) {
            return EMSGSIZE;
        }
        for (; m_unanswered > 0; --m_unanswered) {
            protocol::Packet late;
            if (const int error = receive(late, deadline); error != 0) {
                disconnect();
                return error;
            }
        }
        const std::size_t room = std::min(reply.size(), protocol::longestReply);
        const int sendError = send(protocol::requestPacket(code, room, request), deadline);
        if (sendError != 0 && !isBroken(sendError)) {
            disconnect();
            return sendError;
        }
        // A service that refuses this client tells why before it closes.
        protocol::Packet packet;
        if (const int error = receive(packet, deadline); error != 0) {
            if (error == ETIMEDOUT) {
                ++m_unanswered;
            } else {
                disconnect();
            }
            return error;
        }
        const auto answer = protocol::parseReply(packet, room);
        if (!answer) {
            disconnect();
            return EPROTO;
        }
        if (answer->error != 0) {
            return static_cast<int>(answer->error);
        }
        std::copy(answer->data.begin(), answer->data.end(), reply.begin());
        filled = answer->data.size();
        return 0;
    }

    // 0, or ETIMEDOUT.
    int waitFor(short events, SteadyClock::time_point deadline) const
    {
        for (;;) {
            const auto rest
                = std::chrono::ceil<std::chrono::milliseconds>(deadline - SteadyClock::now());
            pollfd state { m_socket, events, 0 };
            const int ready
                = ::poll(&state, 1, static_cast<int>(std::max<std::int64_t>(0, rest.count())));
            if (ready > 0) {
                return 0;
            }
            if (ready == 0) {
                return ETIMEDOUT;
            }
            if (errno != EINTR) {
                return errno;
            }
        }
    }

    int send(const protocol::Packet& packet, SteadyClock::time_point deadline)
    {
        for (;;) {
            if (::send(m_socket, packet.data(), packet.size(), MSG_NOSIGNAL) >= 0) {
                return 0;
            }
            if (errno != EAGAIN && errno != EINTR) {
                return errno;
            }
            if (const int error = waitFor(POLLOUT, deadline); error != 0) {
                return error;
            }
        }
    }

    int receive(protocol::Packet& packet, SteadyClock::time_point deadline)
    {
        bool wasReset = false;
        packet.resize(protocol::longestReplyPacket + 1);
        for (;;) {
            const ssize_t size = ::recv(m_socket, packet.data(), packet.size(), 0);
            if (size > 0) {
                packet.resize(static_cast<std::size_t>(size));
                return 0;
            }
            if (size == 0) {
                return ECONNRESET;
            }
            // What was sent before the reset is told after it.
            if (errno == ECONNRESET && !wasReset) {
                wasReset = true;
                continue;
            }
            if (errno != EAGAIN && errno != EINTR) {
                return errno;
            }
            if (const int error = waitFor(POLLIN, deadline); error != 0) {
                return error;
            }
        }
    }
};

DeviceChannel::DeviceChannel() = default;
DeviceChannel::~DeviceChannel() = default;

DeviceCalls::Handle DeviceChannel::open()
{
    auto connection = std::make_unique<Connection>();
    const int error = connection->connect(SteadyClock::now() + timeLimit);
    if (error != 0) {
        m_error = static_cast<std::uint32_t>(error);
        return nullptr;
    }
    m_connections.push_back(std::move(connection));
    return m_connections.back().get();
}

std::optional<std::size_t> DeviceChannel::control(DeviceCalls::Handle device, std::uint32_t code,
                                                  std::span<const std::uint8_t> request,
                                                  std::span<std::uint8_t> reply)
{
    const auto found = std::find_if(m_connections.begin(), m_connections.end(),
                                    [device](const auto& each) { return each.get() == device; });
    std::size_t filled = 0;
    const int error
        = found == m_connections.end() ? EBADF : (*found)->call(code, request, reply, filled);
    if (error != 0) {
        m_error = static_cast<std::uint32_t>(error);
        return std::nullopt;
    }
    return filled;
}

void DeviceChannel::close(DeviceCalls::Handle device)
{
    const auto found = std::find_if(m_connections.begin(), m_connections.end(),
                                    [device](const auto& each) { return each.get() == device; });
    if (found != m_connections.end()) {
        m_connections.erase(found);
    }
}

} // namespace SMC
