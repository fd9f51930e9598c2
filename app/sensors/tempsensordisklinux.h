#pragma once

#include <memory>

#include "app/sensors/tempsensordisk.h"
#include "core/threads/clock.h"

class AtaDrive;

// An ATA drive under Linux. A drive in standby isn't asked, which would wake it;
// its last value stays and counts as read. A drive that doesn't tell isn't asked
// either, nor one that takes its time to tell: a reading of a drive that hangs must
// not hold its caller twice.
class TempSensorDiskLinux final : public TempSensorDisk {
public:
    // drive is never null. The clock must outlive the sensor.
    TempSensorDiskLinux(const DriveIdentity& identity, std::unique_ptr<AtaDrive> drive,
                        core::threads::Clock& clock = core::threads::Clock::system());
    ~TempSensorDiskLinux() override;

    // Two calls to the drive at the most, and no allocation.
    void UpdateValue() override;

private:
    const std::unique_ptr<AtaDrive> m_drive;
    core::threads::Clock& m_clock;
};
