#pragma once

#include <atomic>
#include <cstdint>

#include <QString>

#include "app/sensors/sensortype.h"

// A temperature that can be shown and that a fan can follow. The value may be
// read and stored by any thread; the rest is fixed before the sensor is
// published by its provider, which owns it.
class TemperatureSensorAbstract {
public:
    TemperatureSensorAbstract(const QString& key, const QString& displayName, SensorType type,
                              const QString& group);
    TemperatureSensorAbstract(const TemperatureSensorAbstract&) = delete;
    TemperatureSensorAbstract& operator=(const TemperatureSensorAbstract&) = delete;
    virtual ~TemperatureSensorAbstract() = default;

    // The temperatures in degrees Celsius that are offered for a fan that follows
    // this sensor.
    [[nodiscard]] virtual int getMinTemperature() const;
    [[nodiscard]] virtual int getMaxTemperature() const;
    // Reads the hardware and stores the value; a failed read leaves the last one.
    // Called by one thread at a time.
    virtual void UpdateValue() = 0;
    [[nodiscard]] virtual bool isKeyEqual(const QString& key) const;

    // The number of the sensor's row in this run; a reload gives new ones.
    [[nodiscard]] std::uint32_t id() const { return m_id; }
    // The persistent identifier, the same in every run.
    [[nodiscard]] const QString& key() const { return m_key; }
    [[nodiscard]] const QString& displayName() const { return m_displayName; }
    [[nodiscard]] const QString& group() const { return m_group; }
    [[nodiscard]] SensorType type() const { return m_type; }
    // Degrees Celsius; 0 before the first successful read.
    [[nodiscard]] double value() const { return m_value; }
    // The value rounded to whole degrees, halves away from zero.
    [[nodiscard]] int roundedValue() const;

    // Another sensor stands in for this one: it is left out of every query.
    [[nodiscard]] bool isHidden() const { return m_hidden; }
    void setHidden(bool hidden) { m_hidden = hidden; }

    // How many reads have succeeded so far, a drive found in standby included.
    // Whoever sees the number stand still knows that the sensor has stopped.
    [[nodiscard]] std::uint32_t successfulReads() const { return m_successfulReads; }

protected:
    // A successful read: stores the value, in degrees Celsius, and counts. A value
    // that is no number counts as a failed read: nothing changes.
    void storeValue(double value);
    // Each half of it by itself, for sensors to which the other doesn't apply.
    void setValue(double value);
    void countSuccessfulRead();

private:
    const std::uint32_t m_id;
    std::atomic<double> m_value { 0.0 };
    static_assert(std::atomic<double>::is_always_lock_free, "read by several threads at each pass");
    const QString m_displayName;
    const QString m_key;
    const QString m_group;
    const SensorType m_type;
    bool m_hidden = false;
    std::atomic<std::uint32_t> m_successfulReads { 0 };
};
