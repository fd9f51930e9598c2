#pragma once

#include "core/system/devicecalls.h"

// The system's own calls.
namespace WindowsDevices {

[[nodiscard]] DeviceCalls::Handle createFile(const QString& path, std::uint32_t desiredAccess,
                                             std::uint32_t shareMode,
                                             std::uint32_t creationDisposition,
                                             std::uint32_t flagsAndAttributes);
[[nodiscard]] std::optional<std::size_t> deviceIoControl(DeviceCalls::Handle device,
                                                         std::uint32_t code,
                                                         std::span<const std::uint8_t> request,
                                                         std::span<std::uint8_t> reply);
void closeHandle(DeviceCalls::Handle handle);
[[nodiscard]] std::uint32_t lastError();

} // namespace WindowsDevices

// DeviceCalls, or a seam that adds operations to it, over the system's own calls.
template <typename Seam> class DeviceCallsWindows : public Seam {
public:
    DeviceCalls::Handle createFile(const QString& path, std::uint32_t desiredAccess,
                                   std::uint32_t shareMode, std::uint32_t creationDisposition,
                                   std::uint32_t flagsAndAttributes) final
    {
        return WindowsDevices::createFile(path, desiredAccess, shareMode, creationDisposition,
                                          flagsAndAttributes);
    }

    std::optional<std::size_t> deviceIoControl(DeviceCalls::Handle device, std::uint32_t code,
                                               std::span<const std::uint8_t> request,
                                               std::span<std::uint8_t> reply) final
    {
        return WindowsDevices::deviceIoControl(device, code, request, reply);
    }

    void closeHandle(DeviceCalls::Handle handle) final { WindowsDevices::closeHandle(handle); }

    std::uint32_t lastError() final { return WindowsDevices::lastError(); }
};
