#pragma once

#include <cstdint>

#include <QDateTime>
#include <QString>

#include "app/fancontrol/fanspeeds.h"

class FanControlMode;

namespace core::threads {
class Clock;
}

enum Tendency : std::uint32_t {
    TendencyUnknown = 0, // only before the first call
    TendencyIncrease = 1,
    TendencyDecrease = 2,
    TendencyDoNothing = 3,
};

[[nodiscard]] const char* TendencyToString(Tendency tendency);

// Decides the target speed of one fan that follows one temperature sensor: the
// fan creeps towards a line between the two temperatures of its mode, so that it
// is quiet. It pauses when the temperature turns, ignores quick reversals, and
// drifts when the temperature stands still. One instance per fan, used by one
// thread at a time (the control task).
class SensorBasedControl_Simple {
public:
    // The clock must outlive the object.
    SensorBasedControl_Simple(const QString& name, core::threads::Clock& clock);

    // The speed in RPM to write to the SMC now, or -1 when nothing is to be
    // written. Called once per tick; temperature is in degrees Celsius, and one
    // that rounds toward 0 means that there is no reading. The result lies within
    // the fan's limits, whatever they are; limits in the wrong order are swapped.
    [[nodiscard]] std::int32_t update(const FanSpeeds& speeds, const FanControlMode& mode,
                                      double temperature);

    // Control starts again from nothing at the next call.
    void reset();

    [[nodiscard]] Tendency tendency() const { return m_tendency; }

private:
    struct Line;

    void start(const Line& line, std::int32_t temperature, std::uint16_t current,
               const QDateTime& now);
    void drift(const Line& line, std::int32_t temperature, const QDateTime& now);
    // These two tell whether the change counts.
    [[nodiscard]] bool changeTendency(std::int32_t temperature, const QDateTime& now);
    [[nodiscard]] bool temperatureFell(const QDateTime& now);
    [[nodiscard]] bool temperatureRose(bool wasHalfSpeed, const QDateTime& now);
    void creep(const Line& line, std::int32_t temperature, const QDateTime& now);
    void creepUp(std::int64_t low, std::int64_t high, std::int64_t step, const QDateTime& now);
    void creepDown(std::int64_t low, std::int64_t high, std::int64_t step, const QDateTime& now);
    void rest(const QDateTime& now);
    [[nodiscard]] std::int32_t result(const QDateTime& now);

    std::int32_t m_lastTemperature = -1; // whole degrees; -1: none
    std::int32_t m_rpm = -1; // where control is
    std::int32_t m_lastSetRpm = -1; // what was last returned
    std::uint32_t m_lastSetTime = static_cast<std::uint32_t>(-1); // seconds; -1: never
    Tendency m_tendency = TendencyUnknown;
    bool m_doubleIncrease = false; // 4 RPM a call instead of 2
    bool m_halfSpeed = false; // 1 RPM a call instead of 2
    QDateTime m_timeDoNothing;
    QDateTime m_timeIncrease;
    QDateTime m_timeDecrease;
    QString m_name; // for the log
    core::threads::Clock* m_clock;
};
