#include "app/sensors/tempsensorabstract.h"

#include <algorithm>
#include <cmath>

namespace {

// Never reset, so that a reload gives new numbers.
std::atomic<std::uint32_t> nextId { 0 };

constexpr int lowestMinTemperature = 20;
constexpr int highestMaxTemperature = 100;
constexpr int cpuMaxTemperature = 90;
constexpr int marginAroundValue = 5;

} // namespace

TemperatureSensorAbstract::TemperatureSensorAbstract(const QString& key, const QString& displayName,
                                                     SensorType type, const QString& group)
    : m_id(nextId++)
    , m_displayName(displayName)
    , m_key(key)
    , m_group(group)
    , m_type(type)
{
}

int TemperatureSensorAbstract::getMinTemperature() const
{
    return std::max(roundedValue() - marginAroundValue, lowestMinTemperature);
}

int TemperatureSensorAbstract::getMaxTemperature() const
{
    if (m_type == SensorType::cpu) {
        return cpuMaxTemperature;
    }
    return std::min(roundedValue() + marginAroundValue, highestMaxTemperature);
}

bool TemperatureSensorAbstract::isKeyEqual(const QString& key) const { return m_key == key; }

int TemperatureSensorAbstract::roundedValue() const
{
    // A driver may report anything; the bounds keep the conversion defined.
    constexpr double bound = 1e6;
    return static_cast<int>(std::lround(std::clamp(value(), -bound, bound)));
}

void TemperatureSensorAbstract::storeValue(double value)
{
    if (!std::isfinite(value)) {
        return;
    }
    setValue(value);
    countSuccessfulRead();
}

void TemperatureSensorAbstract::setValue(double value)
{
    if (std::isfinite(value)) {
        m_value = value;
    }
}

void TemperatureSensorAbstract::countSuccessfulRead() { ++m_successfulReads; }
