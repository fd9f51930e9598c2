#include "macsim/driveface/simulateddevice_linux.h"

#include <algorithm>
#include <cerrno>

#include <sys/socket.h>
#include <unistd.h>

#include "macsim/driverecord.h"
#include "macsim/portface/simulatorsocket.h"

namespace macsim {

namespace {

constexpr unsigned int ownPatience = 5000; // milliseconds, where the caller has none
constexpr unsigned short timedOut = 3; // a host status
constexpr unsigned short hasSense = 8; // a driver status

class Exchange {
public:
    explicit Exchange(unsigned int patience)
        : m_socket(connectToSimulator(patience))
    {
    }
    Exchange(const Exchange&) = delete;
    Exchange& operator=(const Exchange&) = delete;
    ~Exchange()
    {
        if (m_socket >= 0) {
            ::close(m_socket);
        }
    }

    [[nodiscard]] bool isConnected() const { return m_socket >= 0; }

    [[nodiscard]] bool send(const driverecord::Request& request) const
    {
        return ::send(m_socket, request.data(), request.size(), MSG_NOSIGNAL)
            == static_cast<ssize_t>(request.size());
    }

    // Exactly so many bytes.
    [[nodiscard]] bool receive(void* bytes, std::size_t count) const
    {
        auto* place = static_cast<unsigned char*>(bytes);
        while (count > 0) {
            const ssize_t received = ::recv(m_socket, place, count, 0);
            if (received <= 0 && (received == 0 || errno != EINTR)) {
                return false;
            }
            const std::size_t arrived = received > 0 ? static_cast<std::size_t>(received) : 0;
            place += arrived;
            count -= arrived;
        }
        return true;
    }

private:
    const int m_socket;
};

void takeSense(sg_io_hdr_t& header, const driverecord::Answer& answer)
{
    const std::size_t count
        = std::min({ static_cast<std::size_t>(answer[driverecord::place::senseLength]),
                     driverecord::senseSize, static_cast<std::size_t>(header.mx_sb_len) });
    if (header.sbp != nullptr) {
        std::memcpy(header.sbp, &answer[driverecord::place::sense], count);
        header.sb_len_wr = static_cast<unsigned char>(count);
    }
    if (count > 0) {
        header.driver_status = hasSense;
    }
}

} // namespace

SimulatedDevice::SimulatedDevice(const char* name)
    : m_name(name)
{
}

int SimulatedDevice::open() const
{
    const Exchange exchange(ownPatience);
    driverecord::Answer answer {};
    if (!exchange.isConnected() || !exchange.send(driverecord::request(driverecord::open, m_name))
        || !exchange.receive(answer.data(), answer.size())) {
        return ENXIO;
    }
    return static_cast<int>(driverecord::numberAt(answer, driverecord::place::error));
}

int SimulatedDevice::execute(sg_io_hdr_t& header) const
{
    if (header.interface_id != 'S' || header.cmd_len != driverecord::commandSize
        || header.dxfer_len > driverecord::mostData || header.iovec_count != 0) {
        return EINVAL;
    }
    auto request = driverecord::request(driverecord::command, m_name);
    std::memcpy(&request[driverecord::place::command], header.cmdp, driverecord::commandSize);
    driverecord::putNumber(request, driverecord::place::dataLength, header.dxfer_len);
    const Exchange exchange(header.timeout == 0 ? ownPatience : header.timeout);
    if (!exchange.isConnected() || !exchange.send(request)) {
        return ENXIO;
    }
    header.status = 0;
    header.host_status = 0;
    header.driver_status = 0;
    header.sb_len_wr = 0;
    driverecord::Answer answer {};
    if (!exchange.receive(answer.data(), answer.size())) {
        header.host_status = timedOut;
        return 0;
    }
    if (const std::uint32_t error = driverecord::numberAt(answer, driverecord::place::error);
        error != 0) {
        return static_cast<int>(error);
    }
    const std::uint32_t length = driverecord::numberAt(answer, driverecord::place::dataLength);
    if (length > header.dxfer_len || !exchange.receive(header.dxferp, length)) {
        return EIO;
    }
    header.resid = static_cast<int>(header.dxfer_len - length);
    header.status = answer[driverecord::place::status];
    takeSense(header, answer);
    return 0;
}

} // namespace macsim
