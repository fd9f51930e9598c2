#include "macsim/run/statusline.h"

#include <cmath>

#include <QStringList>

namespace macsim {

QString statusLine(SimulatedMac& mac, const PortController& controller)
{
    mac.advance();
    const MachineDescription& description = mac.description();
    QStringList parts { QStringLiteral("load %1%").arg(std::lround(mac.load() * 100.0)) };
    if (mac.isAsleep()) {
        parts.append(QStringLiteral("asleep"));
    }
    for (std::size_t index = 0; index < description.heatSources.size(); ++index) {
        parts.append(QStringLiteral("%1 %2")
                         .arg(description.heatSources[index].name)
                         .arg(mac.sources()[index].temperature, 0, 'f', 1));
    }
    for (int index = 0; index < static_cast<int>(description.fans.size()); ++index) {
        const SimulatedMac::FanState fan = mac.fan(index);
        parts.append(QStringLiteral("fan%1 %2>%3 %4")
                         .arg(index)
                         .arg(std::lround(fan.actual))
                         .arg(std::lround(fan.target))
                         .arg(fan.forced ? QStringLiteral("forced") : QStringLiteral("auto")));
    }
    parts.append(QStringLiteral("bits %1").arg(mac.forcedMask(), 4, 16, QLatin1Char('0')));
    parts.append(QStringLiteral("errors %1").arg(controller.counters().allErrors()));
    return parts.join(QStringLiteral(" | "));
}

} // namespace macsim
