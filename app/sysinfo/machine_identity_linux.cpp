#include "app/sysinfo/machine_identity_linux.h"

#include <QDir>
#include <QFile>
#include <QSysInfo>

#include "app/sysinfo/machinefiles.h"
#include "app/sysinfo/pciids.h"
#include "core/system_path.h"

namespace {

// The contents; empty when the file can't be read.
QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray readSystemFile(const char* path)
{
    return readFile(core::systemPath(QLatin1String(path)));
}

QString readIdentity(const char* path) { return QString::fromUtf8(readSystemFile(path)).trimmed(); }

QStringList displayDevices(const QStringList& pciIdPaths)
{
    QStringList names;
    const QDir devices(core::systemPath(QStringLiteral("/sys/bus/pci/devices")));
    const QByteArray pciIds = PciIds::read(pciIdPaths);
    const QStringList addresses = devices.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    for (const QString& address : addresses) {
        const QDir device(devices.filePath(address));
        if (MachineFiles::isDisplayClass(readFile(device.filePath(QStringLiteral("class"))))) {
            names.append(MachineFiles::pciDeviceName(
                readFile(device.filePath(QStringLiteral("vendor"))),
                readFile(device.filePath(QStringLiteral("device"))), pciIds));
        }
    }
    return names;
}

} // namespace

std::unique_ptr<MachineIdentity> systemMachineIdentity()
{
    return std::make_unique<MachineIdentityLinux>(PciIds::paths());
}

MachineIdentityLinux::MachineIdentityLinux(const QStringList& pciIdPaths)
    : m_pciIdPaths(pciIdPaths)
{
}

WmiSystemData MachineIdentityLinux::managementData()
{
    WmiSystemData data;
    data.manufacturer = systemManufacturer();
    data.model = readIdentity("/sys/class/dmi/id/product_name");
    data.videoControllers = displayDevices(m_pciIdPaths);
    return data;
}

bool MachineIdentityLinux::hasRegistry() const { return false; }

std::optional<ManufacturerAndModel> MachineIdentityLinux::registryValues() { return std::nullopt; }

QByteArray MachineIdentityLinux::firmwareTable()
{
    return MachineFiles::firmwareBlock(
        readSystemFile("/sys/firmware/dmi/tables/smbios_entry_point"),
        readSystemFile("/sys/firmware/dmi/tables/DMI"));
}

QString MachineIdentityLinux::systemManufacturer()
{
    return readIdentity("/sys/class/dmi/id/sys_vendor");
}

QString MachineIdentityLinux::operatingSystemName()
{
    const QString architecture = QSysInfo::currentCpuArchitecture();
    return QSysInfo::prettyProductName() + QLatin1Char(' ')
        + (architecture == QLatin1String("x86_64") ? QStringLiteral("x64") : architecture);
}

std::optional<MachineIdentity::Processor> MachineIdentityLinux::processor()
{
    const QByteArray cpuInfo = readSystemFile("/proc/cpuinfo");
    if (cpuInfo.isEmpty()) {
        return std::nullopt;
    }
    return Processor { MachineFiles::processorBrand(cpuInfo), std::nullopt };
}

std::uint8_t MachineIdentityLinux::operatingSystemCoreCount()
{
    return MachineFiles::coreCount(readSystemFile("/proc/cpuinfo"));
}
