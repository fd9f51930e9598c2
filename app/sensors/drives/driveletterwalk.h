#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include <QString>

#include "app/sensors/drives/driveidentity.h"
#include "app/sensors/drives/storagecalls.h"
#include "app/sensors/tempsensordisk.h"

// Finds the ATA drives under Windows that hold a mounted fixed volume, by their
// drive letters. USB drives are left out. Each failure is a line in the log.
class DriveLetterWalk {
public:
    DriveLetterWalk(std::shared_ptr<StorageCalls> calls, bool showSmartDrives);

    // One sensor for each drive, however many volumes it holds; a volume on several
    // disks counts for its first one. Once.
    [[nodiscard]] TempSensorDisk::List run();

private:
    void checkLetter(char letter);
    void checkVolume(StorageCalls::Handle volume);
    void checkDisk(std::int32_t diskNumber);
    [[nodiscard]] StorageCalls::Handle open(const QString& path);
    [[nodiscard]] std::optional<std::int32_t> firstDiskOf(StorageCalls::Handle volume);
    [[nodiscard]] std::uint32_t busTypeOf(StorageCalls::Handle drive);
    [[nodiscard]] bool takesSmartCommands(StorageCalls::Handle drive);
    [[nodiscard]] bool enableSmart(StorageCalls::Handle drive, std::int32_t diskNumber);
    [[nodiscard]] std::optional<DriveIdentity> identify(StorageCalls::Handle drive,
                                                        std::int32_t diskNumber);

    const std::shared_ptr<StorageCalls> m_calls; // never null
    const bool m_showSmartDrives;
    std::vector<std::int32_t> m_seenDisks;
    TempSensorDisk::List m_sensors;
};
