#include "app/fancontrol/sensorwatch.h"

#include "app/sensors/tempsensorabstract.h"

SensorWatch::Change SensorWatch::observe(const TemperatureSensorAbstract& sensor, std::int64_t now,
                                         std::optional<std::uint32_t> stoppedAfter)
{
    const bool isOtherSensor = !m_isFollowing || sensor.key() != m_key;
    if (isOtherSensor) {
        start(sensor, now);
    } else if (sensor.id() != m_id) {
        // A reload has made the sensor anew: all its reads are later than ours.
        m_id = sensor.id();
        m_reads = 0;
        m_lastRead = now;
    }

    const std::uint32_t reads = sensor.successfulReads();
    if (reads != m_reads) {
        m_reads = reads;
        m_lastRead = now;
        if (m_hasStopped) {
            m_hasStopped = false;
            return Change::returned;
        }
    } else if (!m_hasStopped && (reads == stoppedAfter || now - m_lastRead >= patience)) {
        m_hasStopped = true;
        return Change::stopped;
    }
    return Change::none;
}

void SensorWatch::forget()
{
    m_isFollowing = false;
    m_hasStopped = false;
}

void SensorWatch::start(const TemperatureSensorAbstract& sensor, std::int64_t now)
{
    m_isFollowing = true;
    m_hasStopped = false;
    m_key = sensor.key();
    m_id = sensor.id();
    m_reads = sensor.successfulReads();
    m_lastRead = now;
}
