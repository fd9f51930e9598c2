#pragma once

#include <vector>

#include "app/sensors/tempsensorabstract.h"

// A sensor that is computed from others. The others are not owned and must live
// as long; the type is that of the first.
class TemperatureSensorVirtual : public TemperatureSensorAbstract {
public:
    TemperatureSensorVirtual(const QString& key, const QString& displayName, const QString& group,
                             std::vector<TemperatureSensorAbstract*> sensors);

protected:
    [[nodiscard]] const std::vector<TemperatureSensorAbstract*>& sensors() const
    {
        return m_sensors;
    }

private:
    const std::vector<TemperatureSensorAbstract*> m_sensors;
};
