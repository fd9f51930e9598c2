#pragma once

#include <memory>

#include "core/system/devicecalls.h"

// The seam to Windows for drives.
class StorageCalls : public DeviceCalls {
public:
    // Bit i for the drive letter 'A' plus i.
    [[nodiscard]] virtual std::uint32_t getLogicalDrives() = 0;
    [[nodiscard]] virtual std::uint32_t getDriveType(const QString& rootPath) = 0;
    // Whether the device is on; nothing when the system doesn't tell. Asks no drive.
    [[nodiscard]] virtual std::optional<bool> getDevicePowerState(Handle device) = 0;
};

// The calls of the running system.
[[nodiscard]] std::shared_ptr<StorageCalls> makeStorageCalls();
