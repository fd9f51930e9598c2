#pragma once

#include <memory>
#include <vector>

#include "app/sensors/tempsensorabstract.h"

class SensorDatabase;

namespace SMC {
class Service;
}

// A temperature key of the controller.
class TemperatureSensorSMC final : public TemperatureSensorAbstract {
public:
    // service must outlive the sensor.
    TemperatureSensorSMC(const QString& key, const QString& displayName, SensorType type,
                         SMC::Service* service);

    // One sensor for each key that the controller reports, the database knows, and
    // that can be read now, in the controller's order. Loads the database if need
    // be.
    [[nodiscard]] static std::vector<std::unique_ptr<TemperatureSensorAbstract>>
    loadAvailableSensors(SMC::Service* service, SensorDatabase& database);

    void UpdateValue() override;
    // The case of the fourth letter is free.
    [[nodiscard]] bool isKeyEqual(const QString& key) const override;

private:
    SMC::Service* const m_service;
};
