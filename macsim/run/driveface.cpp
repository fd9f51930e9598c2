#include "macsim/run/driveface.h"

#include <cmath>

#include <QDir>
#include <QFile>

#include "macsim/run/facefile.h"

namespace macsim {

namespace {

constexpr int diskMajor = 8;
constexpr int nvmeMajor = 259;
constexpr int volumeMajor = 253;
constexpr int partitionsPerDisk = 16;
constexpr int firstMonitor = 20; // the numbers before are for others

const QString blockClass = QStringLiteral("/sys/class/block/");
const QString monitorClass = QStringLiteral("/sys/class/hwmon/");

QByteArray deviceNumber(int major, int minor)
{
    return QByteArray::number(major) + ':' + QByteArray::number(minor);
}

} // namespace

// A partition, or the volume that lies in one.
struct DriveFace::Partition {
    QString name;
    QString place; // under /sys
    QByteArray number;
};

// A drive with its places in the machine.
struct DriveFace::Drive {
    const SimulatedDrive* drive = nullptr;
    int index = 0;
    QString parent; // of the disk, under /sys
    QString disk; // what the kernel calls it as a block device
    QByteArray number;
    std::vector<Partition> partitions; // one for each mount
    std::vector<Partition> volumes; // at most one, in the last partition
    QString controller; // of an NVMe drive, under /sys
    QString monitor; // the same

    Drive(const SimulatedDrive& simulated, int indexInMachine);

    [[nodiscard]] const DriveDescription& description() const { return drive->description(); }
    [[nodiscard]] bool isNvme() const { return description().bus == DriveBus::Nvme; }
    [[nodiscard]] QString place() const { return parent + QLatin1Char('/') + disk; }
    // Where the file system of a mount lies.
    [[nodiscard]] const Partition& holder(std::size_t mount) const
    {
        return mount + 1 == partitions.size() && !volumes.empty() ? volumes.front()
                                                                  : partitions.at(mount);
    }
    // Files under /dev.
    [[nodiscard]] QStringList nodes() const
    {
        QStringList names { disk };
        for (const auto* list : { &partitions, &volumes }) {
            for (const Partition& partition : *list) {
                names.append(partition.name);
            }
        }
        return names;
    }
};

DriveFace::Drive::Drive(const SimulatedDrive& simulated, int indexInMachine)
    : drive(&simulated)
    , index(indexInMachine)
    , disk(simulated.description().name)
{
    const QString pci = QStringLiteral("/sys/devices/pci0000:00/");
    const QString host = QString::number(index);
    const int major = isNvme() ? nvmeMajor : diskMajor;
    switch (description().bus) {
    case DriveBus::Sata:
        parent = pci
            + QStringLiteral("0000:00:1f.2/ata%1/host%2/target%2:0:0/%2:0:0:0/block")
                  .arg(QString::number(index + 1), host);
        break;
    case DriveBus::Usb:
        parent = pci
            + QStringLiteral("0000:00:14.0/usb2/2-1/2-1:1.0/host%1/target%1:0:0/%1:0:0:0/block")
                  .arg(host);
        break;
    case DriveBus::Nvme:
        controller = pci
            + QStringLiteral("0000:00:1c.%1/0000:0%2:00.0/nvme/%3")
                  .arg(host, QString::number(index + 1), disk);
        monitor = controller + QStringLiteral("/hwmon%1").arg(firstMonitor + index);
        parent = controller;
        disk += QStringLiteral("n1");
        break;
    }
    const int firstMinor = index * partitionsPerDisk;
    number = deviceNumber(major, firstMinor);
    const QString separator = isNvme() ? QStringLiteral("p") : QString();
    for (int partition = 1; partition <= description().mounts.size(); ++partition) {
        const QString name = disk + separator + QString::number(partition);
        partitions.push_back({ name, place() + QLatin1Char('/') + name,
                               deviceNumber(major, firstMinor + partition) });
    }
    if (description().encrypted) {
        const QString name = QStringLiteral("dm-%1").arg(index);
        volumes.push_back({ name, QStringLiteral("/sys/devices/virtual/block/") + name,
                            deviceNumber(volumeMajor, index) });
    }
}

DriveFace::DriveFace(const SimulatedMac& mac, const QString& root)
    : m_mac(mac)
    , m_root(root)
{
}

QString DriveFace::inside(const QString& path) const { return m_root + path; }

std::vector<DriveFace::Drive> DriveFace::drives() const
{
    std::vector<Drive> result;
    for (const SimulatedDrive& drive : m_mac.drives()) {
        result.emplace_back(drive, static_cast<int>(result.size()));
    }
    return result;
}

bool DriveFace::create() const
{
    for (const Drive& drive : drives()) {
        if (!drive.drive->faults().unplugged && !add(drive)) {
            return false;
        }
    }
    return writeMounts();
}

bool DriveFace::setPlugged(const QString& name, bool isPlugged) const
{
    for (const Drive& drive : drives()) {
        if (drive.description().name == name && !(isPlugged ? add(drive) : remove(drive))) {
            return false;
        }
    }
    return writeMounts();
}

bool DriveFace::refresh() const
{
    for (const Drive& drive : drives()) {
        if (drive.isNvme() && !drive.drive->faults().unplugged && !writeTemperature(drive)) {
            return false;
        }
    }
    return true;
}

bool DriveFace::addDevice(const QString& place, const QByteArray& number) const
{
    const QString name = place.section(QLatin1Char('/'), -1);
    return writeFaceFile(inside(place + QStringLiteral("/dev")), number + '\n')
        && linkFaceFile(inside(blockClass + name), inside(place))
        && writeFaceFile(inside(QStringLiteral("/dev/") + name), {});
}

bool DriveFace::add(const Drive& drive) const
{
    const QByteArray removable = drive.description().removable ? "1\n" : "0\n";
    bool ok = (!drive.isNvme() || addNvmeController(drive))
        && addDevice(drive.place(), drive.number)
        && writeFaceFile(inside(drive.place() + QStringLiteral("/removable")), removable);
    int count = 0;
    for (const Partition& partition : drive.partitions) {
        ++count;
        ok = ok && addDevice(partition.place, partition.number)
            && writeFaceFile(inside(partition.place + QStringLiteral("/partition")),
                             QByteArray::number(count) + '\n');
    }
    for (const Partition& volume : drive.volumes) {
        const Partition& below = drive.partitions.back();
        ok = ok && addDevice(volume.place, volume.number)
            && linkFaceFile(inside(volume.place + QStringLiteral("/slaves/") + below.name),
                            inside(below.place));
    }
    return ok;
}

bool DriveFace::addNvmeController(const Drive& drive) const
{
    const auto text = [&drive, this](const char* name, const QString& value, int width) {
        return writeFaceFile(inside(drive.controller + QLatin1Char('/') + QLatin1String(name)),
                             value.toLatin1().leftJustified(width, ' ') + '\n');
    };
    const QString monitor = inside(drive.monitor);
    return text("model", drive.description().model, 40)
        && text("serial", drive.description().serial, 20)
        && text("firmware_rev", drive.description().firmware, 8)
        && writeFaceFile(monitor + QStringLiteral("/name"), "nvme\n")
        && writeFaceFile(monitor + QStringLiteral("/temp1_label"), "Composite\n")
        && writeTemperature(drive)
        && linkFaceFile(monitor + QStringLiteral("/device"), inside(drive.controller))
        && linkFaceFile(inside(monitorClass + drive.monitor.section(QLatin1Char('/'), -1)),
                        monitor);
}

bool DriveFace::writeTemperature(const Drive& drive) const
{
    // The drive counts in whole kelvins.
    constexpr double freezingPoint = 273.15;
    constexpr long freezingThousandths = 273150;
    constexpr long thousandths = 1000;
    const long kelvins = std::lround(m_mac.temperature(drive.description()) + freezingPoint);
    return writeFaceFile(
        inside(drive.monitor + QStringLiteral("/temp1_input")),
        QByteArray::number(static_cast<qint64>(kelvins * thousandths - freezingThousandths))
            + '\n');
}

bool DriveFace::remove(const Drive& drive) const
{
    bool ok = true;
    const QStringList nodes = drive.nodes();
    for (const QString& name : nodes) {
        ok = QFile::remove(inside(blockClass + name))
            && QFile::remove(inside(QStringLiteral("/dev/") + name)) && ok;
    }
    for (const Partition& volume : drive.volumes) {
        ok = QDir(inside(volume.place)).removeRecursively() && ok;
    }
    if (drive.isNvme()) {
        ok = QFile::remove(inside(monitorClass + drive.monitor.section(QLatin1Char('/'), -1)))
            && QDir(inside(drive.controller)).removeRecursively() && ok;
    } else {
        ok = QDir(inside(drive.place())).removeRecursively() && ok;
    }
    return ok;
}

// As the kernel lists them to a process, beside what is always mounted.
bool DriveFace::writeMounts() const
{
    QByteArray lines = "22 1 0:21 / /proc rw,relatime - proc proc rw\n"
                       "23 1 0:22 / /sys rw,relatime - sysfs sysfs rw\n"
                       "24 1 0:6 / /dev rw,relatime - devtmpfs devtmpfs rw,mode=755\n";
    int id = 30;
    for (const Drive& drive : drives()) {
        if (drive.drive->faults().unplugged) {
            continue;
        }
        for (std::size_t mount = 0; mount < drive.partitions.size(); ++mount) {
            const Partition& holder = drive.holder(mount);
            lines += QStringLiteral("%1 1 %2 / %3 rw,relatime shared:1 - ext4 /dev/%4 rw\n")
                         .arg(QString::number(id), QString::fromLatin1(holder.number),
                              drive.description().mounts.at(static_cast<int>(mount)), holder.name)
                         .toUtf8();
            ++id;
        }
    }
    return writeFaceFile(inside(QStringLiteral("/proc/self/mountinfo")), lines);
}

} // namespace macsim
