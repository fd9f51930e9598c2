#include "app/sensors/drives/storagecalls.h"

#include <windows.h>

#include "core/system/devicecalls_windows.h"

namespace {

class StorageCallsWindows final : public DeviceCallsWindows<StorageCalls> {
public:
    std::uint32_t getLogicalDrives() override { return GetLogicalDrives(); }

    std::uint32_t getDriveType(const QString& rootPath) override
    {
        return GetDriveTypeW(rootPath.toStdWString().c_str());
    }

    std::optional<bool> getDevicePowerState(Handle device) override
    {
        BOOL isOn = FALSE;
        return GetDevicePowerState(device, &isOn) != FALSE ? std::optional(isOn != FALSE)
                                                           : std::nullopt;
    }
};

} // namespace

std::shared_ptr<StorageCalls> makeStorageCalls() { return std::make_shared<StorageCallsWindows>(); }
