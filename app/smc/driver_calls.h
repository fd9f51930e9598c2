#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>

#include <QString>

#include "core/system/devicecalls.h"

namespace SMC {

// The number of a class of device interfaces, as the system lays it out in memory.
struct InterfaceClass {
    std::uint32_t first = 0;
    std::uint16_t second = 0;
    std::uint16_t third = 0;
    std::array<std::uint8_t, 8> rest {};

    bool operator==(const InterfaceClass&) const = default;
};

// The seam to the controller's drivers: their devices, the list of plug-and-play
// devices, and services. One operation each, under the system's names and with its
// numbers, no decisions.
class DriverCalls : public DeviceCalls {
public:
    // What the system tells about a file with a version.
    struct FileVersion {
        QString version; // such as "6.1.0.0"
        std::uint64_t size = 0; // bytes of the file
    };

    // Of the devices that are there. Null on failure; the caller ends the list.
    [[nodiscard]] virtual Handle setupDiGetClassDevs(const InterfaceClass& interfaceClass,
                                                     std::uint32_t flags)
        = 0;
    // Steps to an interface of the list; false when it can't.
    [[nodiscard]] virtual bool setupDiEnumDeviceInterfaces(Handle list, std::uint32_t index) = 0;
    // The path of the device at the interface that was stepped to last.
    [[nodiscard]] virtual std::optional<QString> setupDiGetDeviceInterfaceDetail(Handle list) = 0;
    virtual void setupDiDestroyDeviceInfoList(Handle list) = 0;

    // Null on failure; the caller closes the handles.
    [[nodiscard]] virtual Handle openSCManager(std::uint32_t desiredAccess) = 0;
    [[nodiscard]] virtual Handle openService(Handle manager, const QString& name,
                                             std::uint32_t desiredAccess)
        = 0;
    [[nodiscard]] virtual bool startService(Handle service) = 0;
    [[nodiscard]] virtual bool controlService(Handle service, std::uint32_t control) = 0;
    virtual void closeServiceHandle(Handle handle) = 0;

    // Fans that are forced stay so when the device is closed. Nothing where the
    // driver leaves them alone anyway.
    virtual void leaveFans(Handle device) = 0;

    [[nodiscard]] virtual std::optional<FileVersion> fileVersion(const QString& path) = 0;
};

// The calls of the running system.
[[nodiscard]] std::unique_ptr<DriverCalls> makeDriverCalls();

} // namespace SMC
