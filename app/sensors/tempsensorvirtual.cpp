#include "app/sensors/tempsensorvirtual.h"

#include <utility>

TemperatureSensorVirtual::TemperatureSensorVirtual(const QString& key, const QString& displayName,
                                                   const QString& group,
                                                   std::vector<TemperatureSensorAbstract*> sensors)
    : TemperatureSensorAbstract(
        key, displayName, sensors.empty() ? SensorType::other : sensors.front()->type(), group)
    , m_sensors(std::move(sensors))
{
}
