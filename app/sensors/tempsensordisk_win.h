#pragma once

#include <cstdint>
#include <memory>

#include "app/sensors/drives/storagecalls.h"
#include "app/sensors/tempsensordisk.h"

// An ATA drive under Windows. The sensor owns the drive's handle. A drive that is
// powered down isn't asked, which would wake it; its last value stays and counts
// as read.
class TempSensorDiskWin final : public TempSensorDisk {
public:
    // The handle may be null: then the value never changes.
    TempSensorDiskWin(const DriveIdentity& identity, std::shared_ptr<StorageCalls> calls,
                      StorageCalls::Handle driveHandle, std::int32_t diskNumber);
    ~TempSensorDiskWin() override;

    // One call to the drive, and no allocation.
    void UpdateValue() override;

private:
    const std::shared_ptr<StorageCalls> m_calls; // never null
    const StorageCalls::Handle m_driveHandle;
    const std::int32_t m_diskNumber; // as Windows numbers physical disks
};
