#include "app/fancontrol/techinfo.h"

#include <build_config.h>

#include "app/fancontrol/fanhardware.h"
#include "app/sysinfo/sysinfo.h"

namespace {

QString productAndVersion()
{
    return QStringLiteral("%1 %2.%3.%4")
        .arg(QString::fromLatin1(BuildConfig::productName),
             QString::number(BuildConfig::versionMajor), QString::number(BuildConfig::versionMinor),
             QString::number(BuildConfig::versionPatch));
}

bool hasBattery(ModelFamily family)
{
    return family == ModelFamily::MacBook || family == ModelFamily::MacBookAir
        || family == ModelFamily::MacBookPro;
}

QString powerText(System::PowerSource source)
{
    switch (source) {
    case System::PowerSourceAC:
        return QStringLiteral(" [AC]");
    case System::PowerSourceBattery:
        return QStringLiteral(" [battery]");
    default:
        return QStringLiteral(" [unknown]");
    }
}

} // namespace

QString TechInfo::header(const SystemInfo& systemInfo, System::PowerSource source)
{
    return QStringLiteral("%1 [Qt %2]\n%3%4\nCPU: %5 [%6 cores]\n%7")
        .arg(productAndVersion(), QString::fromLatin1(qVersion()), systemInfo.machineName(),
             hasBattery(systemInfo.family()) ? powerText(source) : QString(), systemInfo.cpuName(),
             QString::number(systemInfo.coreCount()), systemInfo.osName());
}

QString TechInfo::fans(const FanHardware& hardware)
{
    QString lines;
    const std::vector<FanRecord>& fans = hardware.fans();
    for (std::size_t i = 0; i < fans.size(); ++i) {
        const FanSpeeds speeds = fans[i].speeds();
        lines += QStringLiteral("%1-min{%2}curr{%3}max{%4}mode{%5}\n")
                     .arg(fans[i].name(), QString::number(speeds.min),
                          QString::number(speeds.current), QString::number(speeds.max),
                          hardware.mode(static_cast<std::uint8_t>(i)).toString());
    }
    return lines;
}
