#include "macsim/run/machineface.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

#include "macsim/run/dmitable.h"

namespace macsim {

MachineFace::MachineFace(const MachineDescription& machine, const QString& root)
    : m_machine(machine)
    , m_root(root)
{
}

bool MachineFace::write(const QString& path, const QByteArray& contents) const
{
    const QString file = m_root + QLatin1Char('/') + path;
    if (!QDir().mkpath(QFileInfo(file).path())) {
        return false;
    }
    QSaveFile target(file);
    return target.open(QIODevice::WriteOnly) && target.write(contents) == contents.size()
        && target.commit();
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
    return ok && (!m_machine.portable || setOnBattery(false));
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
