#pragma once

#include <cstdint>
#include <vector>

#include "app/sensors/tempsensorvirtual.h"

// The mean of other sensors, which it reads itself. A sensor whose read fails
// takes part with its last value. The number of successful reads rises once
// every one of the sensors has been read again, so that the mean is never taken
// for fresher than the oldest value in it.
class TemperatureSensorAverage final : public TemperatureSensorVirtual {
public:
    TemperatureSensorAverage(const QString& key, const QString& displayName, const QString& group,
                             std::vector<TemperatureSensorAbstract*> sensors);

    void UpdateValue() override;

private:
    [[nodiscard]] bool haveAllBeenRead() const;
    void rememberReads();

    // Of each sensor, how many reads it had when the mean last counted as read.
    std::vector<std::uint32_t> m_readsCounted;
};
