#pragma once

#include <optional>

#include "app/sensors/tempsensorabstract.h"

// A sensor whose next reading the test sets; without one the read fails.
class ScriptedSensor final : public TemperatureSensorAbstract {
public:
    explicit ScriptedSensor(SensorType type = SensorType::cpu)
        : TemperatureSensorAbstract(QStringLiteral("TEST"), QStringLiteral("Test"), type,
                                    QStringLiteral("group"))
    {
    }

    void UpdateValue() override
    {
        ++updates;
        if (reading) {
            storeValue(*reading);
        }
    }

    // The protected halves of a successful read.
    using TemperatureSensorAbstract::countSuccessfulRead;
    using TemperatureSensorAbstract::setValue;

    std::optional<double> reading;
    int updates = 0;
};
