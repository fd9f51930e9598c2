#include "app/fancontrol/sensorcontrol.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "app/fancontrol/fancontrolmode.h"
#include "core/log/log.h"
#include "core/threads/clock.h"

namespace {

constexpr std::int32_t none = -1;
constexpr std::uint32_t never = static_cast<std::uint32_t>(-1);

// Seconds.
constexpr std::int32_t settleTime = 10; // a reversal within it is ignored
constexpr std::int32_t driftTime = 60; // a rest of that length starts a drift
constexpr std::uint32_t repeatTime = 30; // a speed is written again after it

std::int32_t secondsSince(const QDateTime& then, const QDateTime& now)
{
    return static_cast<std::int32_t>(then.secsTo(now));
}

std::uint32_t epochSeconds(const QDateTime& time)
{
    return static_cast<std::uint32_t>(time.toSecsSinceEpoch());
}

// Whole degrees, cut toward zero; nothing for what is no temperature.
std::optional<std::int32_t> wholeDegrees(double temperature)
{
    if (!(std::abs(temperature) < std::numeric_limits<std::int32_t>::max())) {
        return std::nullopt;
    }
    return static_cast<std::int32_t>(temperature);
}

} // namespace

const char* TendencyToString(Tendency tendency)
{
    switch (tendency) {
    case TendencyUnknown:
        break;
    case TendencyIncrease:
        return "TendencyIncrease";
    case TendencyDecrease:
        return "TendencyDecrease";
    case TendencyDoNothing:
        return "TendencyDoNothing";
    }
    return "TendencyUnknown";
}

// The line between the two temperatures of a mode. Each whole degree has a band
// of one step; the bands end at the fan's limits. Limits and temperatures come
// from hardware and from stored text, so nothing is taken for granted: 64 bits
// hold every product of theirs.
struct SensorBasedControl_Simple::Line {
    Line(const FanSpeeds& speeds, const FanControlMode& mode)
        : min(std::min(speeds.min, speeds.max))
        , max(std::max(speeds.min, speeds.max))
        , tempLow(mode.tempLow())
        , tempHigh(mode.tempHigh())
        , span(tempHigh - tempLow)
        , step(span > 0 ? static_cast<std::int64_t>(static_cast<double>(max - min)
                                                    / static_cast<double>(span))
                        : 0)
    {
    }

    // The foot and the top of a temperature's band. The order of the comparisons
    // is required: at the top the band slides down instead of being cut short.
    [[nodiscard]] std::int64_t low(std::int64_t temperature) const
    {
        const std::int64_t onLine = (temperature - tempLow - 1) * step + min;
        return std::min(std::max(min, onLine), max - step);
    }
    [[nodiscard]] std::int64_t high(std::int64_t temperature) const
    {
        return std::min(max, low(temperature) + step);
    }

    std::int64_t min; // RPM
    std::int64_t max;
    std::int64_t tempLow; // degrees Celsius
    std::int64_t tempHigh;
    std::int64_t span;
    std::int64_t step; // RPM that one degree is worth
};

SensorBasedControl_Simple::SensorBasedControl_Simple(const QString& name,
                                                     core::threads::Clock& clock)
    : m_timeDoNothing(clock.now())
    , m_timeIncrease(m_timeDoNothing)
    , m_timeDecrease(m_timeDoNothing)
    , m_name(core::log::singleLine(name))
    , m_clock(&clock)
{
}

void SensorBasedControl_Simple::reset()
{
    m_lastTemperature = none;
    m_rpm = none;
    m_lastSetRpm = none;
    m_lastSetTime = never;
}

std::int32_t SensorBasedControl_Simple::update(const FanSpeeds& speeds, const FanControlMode& mode,
                                               double temperature)
{
    const std::int32_t degrees = wholeDegrees(temperature).value_or(0);
    if (degrees == 0) {
        return none;
    }
    const Line line(speeds, mode);
    const QDateTime now = m_clock->now();

    if (degrees < line.tempLow) {
        if (m_rpm != line.min) {
            reset();
            m_rpm = static_cast<std::int32_t>(line.min);
        }
        return result(now);
    }

    bool accepted = true;
    if (m_lastTemperature == none) {
        start(line, degrees, speeds.current, now);
    } else if (degrees == m_lastTemperature) {
        drift(line, degrees, now);
    } else {
        accepted = changeTendency(degrees, now);
    }

    if (degrees > line.tempHigh) {
        m_rpm = static_cast<std::int32_t>(line.max);
    } else {
        // An ignored change doesn't move the line.
        creep(line, accepted ? degrees : m_lastTemperature, now);
    }
    if (accepted) {
        m_lastTemperature = degrees;
    }
    // Limits that have changed since the last call may have left the speed
    // outside.
    m_rpm = std::clamp(m_rpm, static_cast<std::int32_t>(line.min),
                       static_cast<std::int32_t>(line.max));
    return result(now);
}

void SensorBasedControl_Simple::start(const Line& line, std::int32_t temperature,
                                      std::uint16_t current, const QDateTime& now)
{
    const std::int64_t low = line.low(temperature);
    if (low < current && current < line.high(temperature)) {
        m_rpm = current;
        m_tendency = TendencyDoNothing;
    } else {
        // A fan that is faster than its band is dropped to the foot of it:
        // required.
        m_rpm = static_cast<std::int32_t>(low);
        m_tendency = TendencyIncrease;
        m_halfSpeed = true;
        LOG_INFO("{}: HALF INCREASE ON", m_name);
    }
    m_timeIncrease = now;
    LOG_INFO("{}: Tendency is set to {}, Temperature {}, RPM={}", m_name,
             TendencyToString(m_tendency), temperature, current);
}

void SensorBasedControl_Simple::drift(const Line& line, std::int32_t temperature,
                                      const QDateTime& now)
{
    if (m_tendency != TendencyDoNothing || secondsSince(m_timeDoNothing, now) < driftTime) {
        return;
    }
    m_halfSpeed = true;
    if (temperature > line.tempLow + line.span / 2) {
        m_tendency = TendencyIncrease;
        LOG_INFO("{}: HALF INCREASE ON", m_name);
    } else {
        m_tendency = TendencyDecrease;
        LOG_INFO("{}: HALF DECREASE ON", m_name);
    }
}

bool SensorBasedControl_Simple::changeTendency(std::int32_t temperature, const QDateTime& now)
{
    const bool wasHalfSpeed = m_halfSpeed;
    m_halfSpeed = false;
    m_doubleIncrease = false;

    bool accepted = true;
    if (temperature < m_lastTemperature) {
        LOG_INFO("{}: Temperature DECREASED to {}", m_name, temperature);
        accepted = temperatureFell(now);
    } else {
        LOG_INFO("{}: Temperature INCREASED to {}", m_name, temperature);
        accepted = temperatureRose(wasHalfSpeed, now);
    }
    if (!accepted) {
        LOG_INFO("{}: Ignoring temperature change", m_name);
    }
    LOG_INFO("{}: Tendency is set to {}", m_name, TendencyToString(m_tendency));
    return accepted;
}

bool SensorBasedControl_Simple::temperatureFell(const QDateTime& now)
{
    switch (m_tendency) {
    case TendencyUnknown:
        LOG_WARN("TendencyUnknown is unexpected! (1)");
        break;
    case TendencyIncrease:
        if (secondsSince(m_timeIncrease, now) <= settleTime) {
            return false;
        }
        rest(now);
        break;
    case TendencyDecrease:
        m_timeDecrease = now;
        break;
    case TendencyDoNothing:
        m_timeDecrease = now;
        m_tendency = TendencyDecrease;
        break;
    }
    return true;
}

bool SensorBasedControl_Simple::temperatureRose(bool wasHalfSpeed, const QDateTime& now)
{
    const auto increase = [this, &now](const QDateTime& since) {
        if (secondsSince(since, now) <= settleTime) {
            return false;
        }
        m_timeIncrease = now;
        m_tendency = TendencyIncrease;
        return true;
    };
    switch (m_tendency) {
    case TendencyUnknown:
        LOG_WARN("TendencyUnknown is unexpected! (2)");
        break;
    case TendencyIncrease:
        if (wasHalfSpeed) {
            LOG_INFO("{}: HALF INCREASE OFF", m_name);
        } else {
            m_doubleIncrease = true;
            LOG_INFO("{}: DOUBLE INCREASE ON", m_name);
        }
        break;
    case TendencyDecrease:
        return increase(m_timeDecrease);
    case TendencyDoNothing:
        return increase(m_timeDoNothing);
    }
    return true;
}

void SensorBasedControl_Simple::creep(const Line& line, std::int32_t temperature,
                                      const QDateTime& now)
{
    const std::int64_t low = line.low(temperature);
    const std::int64_t high = line.high(temperature);
    switch (m_tendency) {
    case TendencyIncrease:
        creepUp(low, high, line.step, now);
        break;
    case TendencyDecrease:
        creepDown(low, high, line.step, now);
        break;
    case TendencyUnknown:
    case TendencyDoNothing:
        break;
    }
}

// The two directions are no mirrors of one another, and must not be made so: the
// catch-up looks at the foot of the band and two steps going up, at its top and
// one step going down, and only going up there is a double speed.

void SensorBasedControl_Simple::creepUp(std::int64_t low, std::int64_t high, std::int64_t step,
                                        const QDateTime& now)
{
    std::int64_t rpm = m_rpm;
    if (low - rpm > 2 * step) {
        const std::int64_t extra = step / 3;
        rpm += extra;
        LOG_INFO("{}: Adding extra {} from current rpm {}", m_name, extra, rpm);
    }
    rpm += m_doubleIncrease ? 4 : m_halfSpeed ? 1 : 2;
    rpm = std::min(rpm, high);
    m_rpm = static_cast<std::int32_t>(rpm);
    if (rpm == high) {
        rest(now);
        LOG_INFO("{}: PEEK MAX RPM '{}' for current temperature, do nothing now", m_name, rpm);
    }
}

void SensorBasedControl_Simple::creepDown(std::int64_t low, std::int64_t high, std::int64_t step,
                                          const QDateTime& now)
{
    std::int64_t rpm = m_rpm;
    if (rpm - high > step) {
        const std::int64_t extra = step / 3;
        rpm -= extra;
        LOG_INFO("{}: Subtracting extra {} from current rpm {}", m_name, extra, rpm);
    }
    rpm -= m_halfSpeed ? 1 : 2;
    rpm = std::max(rpm, low);
    m_rpm = static_cast<std::int32_t>(rpm);
    if (rpm == low) {
        rest(now);
        LOG_INFO("{}: PEEK MIN RPM '{}' for current temperature, do nothing now", m_name, rpm);
    }
}

void SensorBasedControl_Simple::rest(const QDateTime& now)
{
    m_tendency = TendencyDoNothing;
    m_timeDoNothing = now;
}

std::int32_t SensorBasedControl_Simple::result(const QDateTime& now)
{
    if (m_lastSetRpm != m_rpm) {
        m_lastSetRpm = m_rpm;
        LOG_INFO("{}: Setting fan speed to {}", m_name, m_rpm);
        m_lastSetTime = epochSeconds(now);
        return m_rpm;
    }
    if (m_lastSetTime == never) {
        return none;
    }
    const std::uint32_t seconds = epochSeconds(now);
    if (seconds - m_lastSetTime > repeatTime) {
        m_lastSetTime = seconds;
        return m_rpm;
    }
    return none;
}
