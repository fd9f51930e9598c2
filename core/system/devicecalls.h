#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include <QString>

// The seam to drivers and their devices: one operation each, under the system's
// names and with its numbers, no decisions. May be used by one thread at a time; a
// control call takes as long as the device does.
class DeviceCalls {
public:
    using Handle = void*; // null: none

    DeviceCalls() = default;
    DeviceCalls(const DeviceCalls&) = delete;
    DeviceCalls& operator=(const DeviceCalls&) = delete;
    virtual ~DeviceCalls() = default;

    // Null on failure; the caller owns the handle.
    [[nodiscard]] virtual Handle
    createFile(const QString& path, std::uint32_t desiredAccess, std::uint32_t shareMode,
               std::uint32_t creationDisposition, std::uint32_t flagsAndAttributes)
        = 0;
    // How many bytes of the reply the device has filled; nothing when the call
    // fails. The reply's bytes are also given to the driver.
    [[nodiscard]] virtual std::optional<std::size_t>
    deviceIoControl(Handle device, std::uint32_t code, std::span<const std::uint8_t> request,
                    std::span<std::uint8_t> reply)
        = 0;
    virtual void closeHandle(Handle handle) = 0;
    // The system's error number of the last call that failed.
    [[nodiscard]] virtual std::uint32_t lastError() = 0;
};
