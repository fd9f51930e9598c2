#include "app/fancontrol/fanrecord.h"

#include <mutex>

namespace {

FanLocation locationOfName(const QString& name)
{
    if (name == QLatin1String("ODD")) {
        return FanLocationOdd;
    }
    if (name == QLatin1String("HDD")) {
        return FanLocationHdd;
    }
    if (name == QLatin1String("CPU")) {
        return FanLocationCpu;
    }
    return FanLocationOther;
}

// Fans are made by the load task and their longest name is asked for by the
// interface.
struct LongestName {
    std::mutex mutex;
    QString name;
};

LongestName& longestName()
{
    static LongestName longest;
    return longest;
}

} // namespace

FanRecord::FanRecord(const QString& name, core::threads::Clock& clock)
    : m_name(name)
    , m_location(locationOfName(name))
    , m_control(name, clock)
{
    LongestName& longest = longestName();
    const std::lock_guard lock(longest.mutex);
    if (name.size() > longest.name.size()) {
        longest.name = name;
    }
}

FanRecord::FanRecord(const FanRecord& other)
    : m_name(other.m_name)
    , m_location(other.m_location)
    , m_rpmCurrent(other.rpmCurrent())
    , m_rpmMin(other.rpmMin())
    , m_rpmMax(other.rpmMax())
    , m_control(other.m_control)
{
}

FanSpeeds FanRecord::speeds() const { return { rpmCurrent(), rpmMin(), rpmMax() }; }

std::int32_t FanRecord::update(double temperature, const FanControlMode& mode)
{
    return m_control.update(speeds(), mode, temperature);
}

void FanRecord::resetControl() { m_control.reset(); }

QString FanRecord::longestFanName()
{
    LongestName& longest = longestName();
    const std::lock_guard lock(longest.mutex);
    return longest.name;
}
