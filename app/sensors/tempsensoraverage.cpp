#include "app/sensors/tempsensoraverage.h"

#include <algorithm>
#include <functional>
#include <utility>

TemperatureSensorAverage::TemperatureSensorAverage(const QString& key, const QString& displayName,
                                                   const QString& group,
                                                   std::vector<TemperatureSensorAbstract*> sensors)
    : TemperatureSensorVirtual(key, displayName, group, std::move(sensors))
{
    rememberReads();
}

void TemperatureSensorAverage::UpdateValue()
{
    if (sensors().empty()) {
        return;
    }
    double sum = 0.0;
    for (TemperatureSensorAbstract* sensor : sensors()) {
        sensor->UpdateValue();
        sum += sensor->value();
    }
    setValue(sum / static_cast<double>(sensors().size()));
    if (haveAllBeenRead()) {
        countSuccessfulRead();
        rememberReads();
    }
}

bool TemperatureSensorAverage::haveAllBeenRead() const
{
    return std::equal(sensors().begin(), sensors().end(), m_readsCounted.begin(),
                      m_readsCounted.end(),
                      [](const TemperatureSensorAbstract* sensor, std::uint32_t counted) {
                          return sensor->successfulReads() != counted;
                      });
}

void TemperatureSensorAverage::rememberReads()
{
    m_readsCounted.resize(sensors().size());
    std::transform(sensors().begin(), sensors().end(), m_readsCounted.begin(),
                   std::mem_fn(&TemperatureSensorAbstract::successfulReads));
}
