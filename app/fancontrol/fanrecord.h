#pragma once

#include <atomic>
#include <cstdint>

#include <QString>

#include "app/fancontrol/fanspeeds.h"
#include "app/fancontrol/sensorcontrol.h"

// Where a fan sits, told by its name; decides its picture.
enum FanLocation : std::uint32_t {
    FanLocationOdd = 0,
    FanLocationHdd = 1,
    FanLocationCpu = 2,
    FanLocationOther = 3
};

// One fan of the machine. The speeds may be read and stored by any thread; the
// control state belongs to the control task; the rest never changes.
class FanRecord {
public:
    FanRecord(const QString& name, core::threads::Clock& clock);
    FanRecord(const FanRecord& other);
    FanRecord& operator=(const FanRecord&) = delete;
    ~FanRecord() = default;

    [[nodiscard]] const QString& name() const { return m_name; }
    [[nodiscard]] FanLocation location() const { return m_location; }

    // RPM; 65535 while unread.
    [[nodiscard]] std::uint16_t rpmCurrent() const { return m_rpmCurrent; }
    [[nodiscard]] std::uint16_t rpmMin() const { return m_rpmMin; }
    [[nodiscard]] std::uint16_t rpmMax() const { return m_rpmMax; }
    void setRpmCurrent(std::uint16_t rpm) { m_rpmCurrent = rpm; }
    void setRpmMin(std::uint16_t rpm) { m_rpmMin = rpm; }
    void setRpmMax(std::uint16_t rpm) { m_rpmMax = rpm; }
    [[nodiscard]] FanSpeeds speeds() const;

    // SensorBasedControl_Simple::update with this fan's speeds.
    [[nodiscard]] std::int32_t update(double temperature, const FanControlMode& mode);
    void resetControl();

    // The longest name of all fans that this process has made.
    [[nodiscard]] static QString longestFanName();

private:
    const QString m_name;
    const FanLocation m_location;
    std::atomic<std::uint16_t> m_rpmCurrent { FanSpeeds::unread };
    std::atomic<std::uint16_t> m_rpmMin { FanSpeeds::unread };
    std::atomic<std::uint16_t> m_rpmMax { FanSpeeds::unread };
    SensorBasedControl_Simple m_control;
};
