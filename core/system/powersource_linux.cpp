#include "core/system/powersource.h"

#include <QDir>
#include <QFile>

#include "core/system/powersupplies.h"
#include "core/system_path.h"

namespace {

QString attribute(const QDir& supply, const char* name)
{
    QFile file(supply.filePath(QLatin1String(name)));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).trimmed() : QString();
}

} // namespace

System::PowerSource getPowerSource()
{
    const QDir root(core::systemPath(QStringLiteral("/sys/class/power_supply")));
    std::vector<PowerSupply> supplies;
    const QStringList names = root.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& name : names) {
        const QDir supply(root.filePath(name));
        supplies.push_back({ attribute(supply, "type"), attribute(supply, "scope"),
                             attribute(supply, "online"), attribute(supply, "status") });
    }
    return powerSourceOf(supplies);
}
