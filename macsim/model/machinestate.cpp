#include "macsim/model/machinestate.h"

#include <cmath>

#include <QJsonArray>

namespace macsim {

namespace {

double rounded(double value) { return std::round(value * 100.0) / 100.0; }

QJsonObject fanAsJson(const SimulatedMac& mac, int index)
{
    const SimulatedMac::FanState fan = mac.fan(index);
    return {
        { QStringLiteral("name"),
          mac.description().fans.at(static_cast<std::size_t>(index)).name.trimmed() },
        { QStringLiteral("actual"), rounded(fan.actual) },
        { QStringLiteral("min"), rounded(fan.minimum) },
        { QStringLiteral("max"), rounded(fan.maximum) },
        { QStringLiteral("target"), rounded(fan.target) },
        { QStringLiteral("forced"), fan.forced },
        { QStringLiteral("targetWrites"), static_cast<qint64>(fan.targetWrites) },
        { QStringLiteral("targetsOutsideLimits"), static_cast<qint64>(fan.targetsOutsideLimits) },
        { QStringLiteral("lowestTarget"), rounded(fan.lowestTarget) },
        { QStringLiteral("highestTarget"), rounded(fan.highestTarget) },
    };
}

QJsonObject driveAsJson(const SimulatedMac& mac, const SimulatedDrive& drive)
{
    const SimulatedDrive::Counters& counters = drive.counters();
    const auto number = [](quint64 count) { return static_cast<qint64>(count); };
    return {
        { QStringLiteral("name"), drive.description().name },
        { QStringLiteral("model"), drive.description().model },
        { QStringLiteral("celsius"), rounded(mac.temperature(drive.description())) },
        { QStringLiteral("standby"), drive.isInStandby() },
        { QStringLiteral("unplugged"), drive.faults().unplugged },
        { QStringLiteral("commands"), number(counters.commands) },
        { QStringLiteral("identifies"), number(counters.identifies) },
        { QStringLiteral("powerChecks"), number(counters.powerChecks) },
        { QStringLiteral("reads"), number(counters.reads) },
        { QStringLiteral("wakeUps"), number(counters.wakeUps) },
    };
}

QJsonObject gpuAsJson(const SimulatedMac& mac, std::size_t index)
{
    const auto temperature = mac.gpuTemperature(index);
    return {
        { QStringLiteral("name"), mac.description().gpus.at(index).name },
        { QStringLiteral("temperature"), temperature ? rounded(*temperature) : QJsonValue() },
    };
}

} // namespace

QJsonObject machineState(SimulatedMac& mac, const PortController& controller)
{
    mac.advance();
    const MachineDescription& description = mac.description();
    QJsonObject temperatures;
    QJsonObject highest;
    for (std::size_t index = 0; index < description.heatSources.size(); ++index) {
        const QString& name = description.heatSources[index].name;
        temperatures.insert(name, rounded(mac.sources()[index].temperature));
        highest.insert(name, rounded(mac.sources()[index].highest));
    }
    QJsonArray fans;
    for (int index = 0; index < static_cast<int>(description.fans.size()); ++index) {
        fans.append(fanAsJson(mac, index));
    }
    QJsonArray drives;
    for (const SimulatedDrive& drive : mac.drives()) {
        drives.append(driveAsJson(mac, drive));
    }
    QJsonArray gpus;
    for (std::size_t index = 0; index < description.gpus.size(); ++index) {
        gpus.append(gpuAsJson(mac, index));
    }
    return {
        { QStringLiteral("machine"), description.name },
        { QStringLiteral("asleep"), mac.isAsleep() },
        { QStringLiteral("load"), rounded(mac.load() * 100.0) },
        { QStringLiteral("loadProfile"), mac.loadName() },
        { QStringLiteral("ambient"), mac.ambient() },
        { QStringLiteral("simulatedSeconds"), rounded(mac.simulatedSeconds()) },
        { QStringLiteral("temperatures"), temperatures },
        { QStringLiteral("highestTemperatures"), highest },
        { QStringLiteral("fans"), fans },
        { QStringLiteral("drives"), drives },
        { QStringLiteral("gpus"), gpus },
        { QStringLiteral("controlBits"), static_cast<qint64>(mac.forcedMask()) },
        { QStringLiteral("protocolErrors"), controller.counters().errorsAsJson() },
        { QStringLiteral("operations"), controller.counters().operationsAsJson() },
    };
}

} // namespace macsim
