#pragma once

#include <cstdint>
#include <optional>

#include <QString>

class TemperatureSensorAbstract;

// Tells when the sensor that one fan follows has stopped reading: the last value
// stays on show, and a fan that goes on following it would let the machine
// overheat. Used by the control task only.
class SensorWatch {
public:
    // Without a successful read for this long a sensor counts as stopped;
    // milliseconds.
    static constexpr std::int64_t patience = 30000;

    enum class Change { none, stopped, returned };

    // Looks at the sensor that the fan follows now. The time, in milliseconds,
    // runs from the first look at it, or at what a reload has put in its place:
    // before, nobody may have asked it for a reading. A sensor that is known to
    // have stopped after so many reads counts as stopped at once, until one more.
    Change observe(const TemperatureSensorAbstract& sensor, std::int64_t now,
                   std::optional<std::uint32_t> stoppedAfter = {});
    // The fan follows no sensor.
    void forget();
    // Time that doesn't count, in milliseconds.
    void leaveOut(std::int64_t duration) { m_lastRead += duration; }

    [[nodiscard]] bool hasStopped() const { return m_hasStopped; }
    // The sensor's successful reads at the last look.
    [[nodiscard]] std::uint32_t reads() const { return m_reads; }

private:
    void start(const TemperatureSensorAbstract& sensor, std::int64_t now);

    bool m_isFollowing = false;
    bool m_hasStopped = false;
    QString m_key;
    std::uint32_t m_id = 0;
    std::uint32_t m_reads = 0;
    std::int64_t m_lastRead = 0;
};
