#include "app/sensors/tempsensordisk.h"

#include <QFile>

#include "app/sensors/drives/linuxdriveload.h"
#include "app/sensors/drives/mounteddisks.h"
#include "app/sensors/drives/nvmedrives.h"

namespace {

QByteArray mountInfo()
{
    QFile file(QStringLiteral("/proc/self/mountinfo"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

TempSensorDisk::List TempSensorDisk::loadAvailableSensors(bool showSmartDrives, bool showNvmeDrives)
{
    LinuxDriveLoad load(makeDriveCalls());
    if (showSmartDrives) {
        load.addSmartDrives(findMountedDisks(mountInfo()));
    }
    if (showNvmeDrives) {
        load.addNvmeDrives(findNvmeDrives());
    }
    return load.takeSensors();
}
