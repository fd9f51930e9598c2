#pragma once

#include <memory>
#include <vector>

#include "app/sensors/drives/drivecalls.h"
#include "app/sensors/tempsensordisk.h"

struct DriveIdentity;
struct MountedDisk;
struct NvmeDrive;

// Turns the drives that were found under Linux into sensors. Each failure is a line
// in the log; a missing privilege is told once, with what grants it.
class LinuxDriveLoad {
public:
    explicit LinuxDriveLoad(std::shared_ptr<DriveCalls> calls);

    // Fixed drives that aren't on USB. Asks each drive who it is, and switches its
    // self-monitoring on where that is off.
    void addSmartDrives(const std::vector<MountedDisk>& disks);
    void addNvmeDrives(const std::vector<NvmeDrive>& drives);
    [[nodiscard]] TempSensorDisk::List takeSensors();

private:
    void addDisk(const MountedDisk& disk);
    void tellMissingPrivilege(int error, const char* privilege);

    const std::shared_ptr<DriveCalls> m_calls; // never null
    bool m_hasToldPrivilege = false;
    TempSensorDisk::List m_sensors;
};
