#include "macsim/run/machineface.h"

#include <cmath>

#include <QDir>
#include <QFile>

#include "macsim/run/dmitable.h"
#include "macsim/run/facefile.h"

namespace macsim {

MachineFace::MachineFace(const MachineDescription& machine, const QString& root)
    : m_machine(machine)
    , m_root(root)
{
}

bool MachineFace::write(const QString& path, const QByteArray& contents) const
{
    return writeFaceFile(m_root + QLatin1Char('/') + path, contents);
}

// As the kernel lists them: a paragraph for each thread.
QByteArray MachineFace::processors() const
{
    const ProcessorDescription& processor = m_machine.processor;
    const int siblings = processor.threads / processor.cores;
    QByteArray text;
    int number = 0;
    const auto line = [&text](const char* name, const QByteArray& value) {
        text += name;
        text += ": " + value + '\n';
    };
    for (int sibling = 0; sibling < siblings; ++sibling) {
        for (int package = 0; package < processor.packages; ++package) {
            for (int core = 0; core < processor.cores; ++core) {
                line("processor\t", QByteArray::number(number));
                line("vendor_id\t", "GenuineIntel");
                line("cpu family\t", QByteArray::number(processor.family));
                line("model\t\t", QByteArray::number(processor.model));
                line("model name\t", processor.name.toUtf8());
                line("stepping\t", QByteArray::number(processor.stepping));
                line("cpu MHz\t\t", QByteArray::number(processor.megahertz) + ".000");
                line("cache size\t", QByteArray::number(processor.cacheKilobytes) + " KB");
                line("physical id\t", QByteArray::number(package));
                line("siblings\t", QByteArray::number(processor.threads));
                line("core id\t\t", QByteArray::number(core));
                line("cpu cores\t", QByteArray::number(processor.cores));
                line("apicid\t\t", QByteArray::number(number));
                line("flags\t\t",
                     "fpu tsc msr cx8 apic sep cmov mmx fxsr sse sse2 ht syscall nx lm");
                line("bogomips\t", QByteArray::number(processor.megahertz * 2) + ".00");
                text += '\n';
                ++number;
            }
        }
    }
    return text;
}

bool MachineFace::create() const
{
    bool ok = QDir().mkpath(m_root + QStringLiteral("/sys/class/hwmon"))
        && QDir().mkpath(m_root + QStringLiteral("/sys/class/power_supply"));
    for (auto text = m_machine.dmi.begin(); text != m_machine.dmi.end(); ++text) {
        ok = ok
            && write(QStringLiteral("sys/class/dmi/id/") + text.key(),
                     text.value().toUtf8() + '\n');
    }
    const QByteArray table = dmiTable(m_machine);
    ok = ok && write(QStringLiteral("sys/firmware/dmi/tables/DMI"), table)
        && write(QStringLiteral("sys/firmware/dmi/tables/smbios_entry_point"), dmiEntryPoint(table))
        && write(QStringLiteral("proc/cpuinfo"), processors());
    for (std::size_t gpu = 0; gpu < m_machine.gpus.size(); ++gpu) {
        ok = ok && createGpu(gpu);
    }
    return ok && (!m_machine.portable || setOnBattery(false));
}

QString MachineFace::pciFolder(std::size_t gpu) const
{
    return QStringLiteral("sys/bus/pci/devices/%1/").arg(m_machine.gpus.at(gpu).address);
}

QString MachineFace::temperatureFile(std::size_t gpu) const
{
    return pciFolder(gpu) + QStringLiteral("hwmon/hwmon%1/temp1_input").arg(gpu);
}

bool MachineFace::createGpu(std::size_t index) const
{
    const GpuDescription& gpu = m_machine.gpus.at(index);
    const QString folder = pciFolder(index);
    // Each has a graphics card, which leads to its device.
    const QString card = m_root + QStringLiteral("/sys/class/drm/card%1").arg(index);
    return write(folder + QStringLiteral("class"), "0x030000\n")
        && write(folder + QStringLiteral("vendor"), "0x" + gpu.vendor.toLatin1() + '\n')
        && write(folder + QStringLiteral("device"), "0x" + gpu.device.toLatin1() + '\n')
        && linkFaceFile(card + QStringLiteral("/device"),
                        m_root + QStringLiteral("/sys/bus/pci/devices/") + gpu.address)
        && (!hasTemperatureFile(index) || setGpuTemperature(index, m_machine.ambient));
}

bool MachineFace::hasTemperatureFile(std::size_t gpu) const
{
    return m_machine.gpus.at(gpu).isOf(GpuDescription::amd);
}

bool MachineFace::setGpuTemperature(std::size_t gpu, std::optional<double> celsius) const
{
    const QString file = temperatureFile(gpu);
    if (!celsius) {
        const QString path = m_root + QLatin1Char('/') + file;
        return !QFile::exists(path) || QFile::remove(path);
    }
    constexpr double thousandths = 1000.0;
    const long long value = std::llround(*celsius * thousandths);
    return write(file, QByteArray::number(value) + '\n');
}

bool MachineFace::setOnBattery(bool onBattery) const
{
    if (!m_machine.portable) {
        return false;
    }
    const QString mains = QStringLiteral("sys/class/power_supply/ADP1/");
    const QString battery = QStringLiteral("sys/class/power_supply/BAT0/");
    return write(mains + QStringLiteral("type"), "Mains\n")
        && write(mains + QStringLiteral("online"), onBattery ? "0\n" : "1\n")
        && write(battery + QStringLiteral("type"), "Battery\n")
        && write(battery + QStringLiteral("present"), "1\n")
        && write(battery + QStringLiteral("capacity"), "87\n")
        && write(battery + QStringLiteral("status"), onBattery ? "Discharging\n" : "Charging\n");
}

} // namespace macsim
