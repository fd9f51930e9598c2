#include "app/sensors/drives/nvmedrives.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include "core/system_path.h"

namespace {

QString textOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromLocal8Bit(file.readAll()).trimmed()
                                          : QString();
}

// The folder that tells model and serial: the drive's own, or one of the drive
// within the PCI device's, depending on the kernel.
QDir controllerOf(const QDir& monitor)
{
    const QDir device(monitor.filePath(QStringLiteral("device")));
    const QDir controllers(device.filePath(QStringLiteral("nvme")));
    const QStringList names = controllers.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    return names.isEmpty() ? device : QDir(controllers.filePath(names.first()));
}

} // namespace

std::vector<NvmeDrive> findNvmeDrives()
{
    std::vector<NvmeDrive> drives;
    const QDir monitors(core::systemPath(QStringLiteral("/sys/class/hwmon")));
    const QStringList names = monitors.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    for (const QString& name : names) {
        const QDir monitor(monitors.filePath(name));
        if (textOf(monitor.filePath(QStringLiteral("name"))) != QLatin1String("nvme")) {
            continue;
        }
        const QDir controller = controllerOf(monitor);
        NvmeDrive drive;
        drive.identity.model = textOf(controller.filePath(QStringLiteral("model")));
        drive.identity.serial = textOf(controller.filePath(QStringLiteral("serial")));
        // Its own place, which goes with it: the monitors' numbers are given again.
        drive.temperatureFile = QFile::encodeName(QFileInfo(monitor.path()).canonicalFilePath()
                                                  + QStringLiteral("/temp1_input"));
        drives.push_back(drive);
    }
    return drives;
}
