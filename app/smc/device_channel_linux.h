#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "core/system/devicecalls.h"

namespace SMC {

// The channel to the controller's driver on Linux: the local socket of the service
// that may touch the controller. One thread at a time.
class DeviceChannel {
public:
    // How long a call may take, a reconnection included.
    static constexpr std::chrono::milliseconds timeLimit { 3000 };

    DeviceChannel();
    DeviceChannel(const DeviceChannel&) = delete;
    DeviceChannel& operator=(const DeviceChannel&) = delete;
    ~DeviceChannel();

    // Connects. Null when there is no service, when it doesn't serve this user, or
    // when it has no controller. The handle is valid until it is closed.
    [[nodiscard]] DeviceCalls::Handle open();
    // One request and its reply. A connection that has broken is made anew, once
    // per call. Fails with ETIMEDOUT after the time limit, and with EPROTO when the
    // reply is none or longer than its room.
    [[nodiscard]] std::optional<std::size_t> control(DeviceCalls::Handle device, std::uint32_t code,
                                                     std::span<const std::uint8_t> request,
                                                     std::span<std::uint8_t> reply);
    void close(DeviceCalls::Handle device);
    // Of the last call that failed.
    [[nodiscard]] std::uint32_t lastError() const { return m_error; }

private:
    class Connection;

    std::vector<std::unique_ptr<Connection>> m_connections;
    std::uint32_t m_error = 0;
};

} // namespace SMC
