#include "app/sensors/drives/linuxdriveload.h"

#include <cerrno>
#include <cstdio>
#include <string>
#include <system_error>
#include <utility>

#include <QFile>
#include <fmt/format.h>

#include "app/sensors/drives/atadrive.h"
#include "app/sensors/drives/driveidentity.h"
#include "app/sensors/drives/mounteddisks.h"
#include "app/sensors/drives/nvmedrives.h"
#include "app/sensors/tempsensordisklinux.h"
#include "app/sensors/tempsensornvme.h"
#include "core/log/log.h"

namespace {

std::string errorText(int error) { return std::generic_category().message(error); }

} // namespace

LinuxDriveLoad::LinuxDriveLoad(std::shared_ptr<DriveCalls> calls)
    : m_calls(std::move(calls))
{
}

void LinuxDriveLoad::addSmartDrives(const std::vector<MountedDisk>& disks)
{
    LOG_INFO("Loading available SMART drives");
    for (const MountedDisk& disk : disks) {
        LOG_INFO("Checking drive {}", core::log::singleLine(disk.name));
        if (!disk.isFixed) {
            LOG_INFO("The drive is NOT fixed");
        } else if (disk.isUsb) {
            LOG_INFO("Skipping USB drive");
        } else {
            addDisk(disk);
        }
    }
}

void LinuxDriveLoad::addDisk(const MountedDisk& disk)
{
    const auto opened = m_calls->open(QFile::encodeName(disk.device));
    if (opened.descriptor < 0) {
        LOG_WARN("Failed to open device {}: {}", core::log::singleLine(disk.device),
                 errorText(opened.error));
        tellMissingPrivilege(opened.error,
                             "read access to the drives, which the group \"disk\" has "
                             "(\"sudo usermod -aG disk USER\", then log in again), and the "
                             "capability CAP_SYS_RAWIO");
        return;
    }
    auto drive = std::make_unique<AtaDrive>(m_calls, opened.descriptor,
                                            QFile::encodeName(disk.runtimeStatusFile));
    AtaDrive::Block data {};
    if (const int error = drive->identify(data); error != 0) {
        LOG_WARN("readSmartIdentify failed: {}", errorText(error));
        tellMissingPrivilege(error, "the capability CAP_SYS_RAWIO");
        return;
    }
    // It would be a sensor that is never read.
    if (drive->power() == AtaDrive::Power::unknown) {
        LOG_WARN("The drive doesn't tell its power mode and isn't read, which might wake it");
        return;
    }
    const DriveIdentity identity = DriveIdentity::parse(data);
    // Switching it on could wake the drive, so only where it must be.
    if (!identity.isSmartEnabled) {
        if (const int error = drive->enableSmart(); error != 0) {
            LOG_WARN("Smart is not enabled: {}", errorText(error));
            return;
        }
    }
    LOG_INFO("Adding drive {}", core::log::singleLine(identity.model));
    m_sensors.push_back(std::make_unique<TempSensorDiskLinux>(identity, std::move(drive)));
}

void LinuxDriveLoad::addNvmeDrives(const std::vector<NvmeDrive>& drives)
{
    LOG_INFO("Loading available NVMe drives");
    for (const NvmeDrive& drive : drives) {
        LOG_INFO("Adding drive {}", core::log::singleLine(drive.identity.model));
        m_sensors.push_back(std::make_unique<TempSensorNvme>(drive, m_calls));
    }
}

TempSensorDisk::List LinuxDriveLoad::takeSensors() { return std::move(m_sensors); }

void LinuxDriveLoad::tellMissingPrivilege(int error, const char* privilege)
{
    if ((error != EACCES && error != EPERM) || m_hasToldPrivilege) {
        return;
    }
    m_hasToldPrivilege = true;
    // The capability isn't for everybody who may start the program, and a new group
    // takes it away: it comes last.
    const std::string text = fmt::format(
        "The temperatures of the drives need {} (\"sudo chgrp disk PROGRAM; sudo chmod "
        "750 PROGRAM; sudo setcap cap_sys_rawio=ep PROGRAM\")",
        privilege);
    LOG_WARN("{}", text);
    std::fprintf(stderr, "%s\n", text.c_str());
}
