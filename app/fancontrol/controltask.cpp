#include "app/fancontrol/controltask.h"

#include <cstdlib>
#include <utility>

#include "app/fancontrol/fanhardware.h"
#include "app/fancontrol/fanprofilelist.h"
#include "app/sensors/tempsensorabstract.h"
#include "app/sensors/tempsensorprovider.h"
#include "core/log/log.h"
#include "core/threads/clock.h"

namespace {

// A constant fan within this distance of its speed is left alone; RPM.
constexpr int tolerance = 30;

} // namespace

ControlTask::ControlTask(const EngineContext& context, ReloadRendezvous::Member& member,
                         std::function<void()> parked)
    : m_context(context)
    , m_member(member)
    , m_parked(std::move(parked))
    , m_watches(context.hardware.fanCount())
    , m_claims(context.hardware.claims())
{
}

void ControlTask::run()
{
    const std::uint8_t fanCount = m_context.hardware.fanCount();
    m_context.hardware.withholdNone(); // what an earlier task has left
    for (;;) {
        pauseForReload();
        if (m_context.stop.isSet()) {
            return;
        }
        restartAfterClaim();
        for (std::uint8_t id = 0; id < fanCount && !m_context.sleeping; ++id) {
            controlFan(id);
            if (m_context.stop.isSet()) {
                return;
            }
        }
        if (m_context.sleeping) {
            sleepUntilWoken();
        }
        constexpr int stopIndex = 0;
        if (m_context.clock.waitForEvents({ &m_context.stop, &m_context.reload.request() }, false,
                                          EngineContext::passInterval)
            == stopIndex) {
            return;
        }
    }
}

void ControlTask::pauseForReload()
{
    const std::int64_t begin = m_context.clock.elapsedMilliseconds();
    if (m_context.reload.pause(m_member)) {
        leaveOutTimeSince(begin);
        m_stoppedSensors.clear(); // the ids are new
    }
}

void ControlTask::restartAfterClaim()
{
    const unsigned claims = m_context.hardware.claims();
    if (std::exchange(m_claims, claims) == claims) {
        return;
    }
    for (std::size_t id = 0; id < m_watches.size(); ++id) {
        m_context.hardware.fan(static_cast<std::uint8_t>(id)).resetControl();
    }
}

void ControlTask::controlFan(std::uint8_t id)
{
    // Taken before the mode is read: an activation from here on sets it again.
    const bool force = m_context.profiles.takeForceWrite();
    const FanControlMode mode = m_context.hardware.mode(id);
    bool isConstantWritten = false;
    if (mode.type() == FanControlSensor) {
        controlSensorFan(id, mode);
    } else {
        followNoSensor(id);
        if (mode.type() == FanControlConstant) {
            isConstantWritten = controlConstantFan(id, mode, force);
        }
    }
    // The first constant fan of a pass uses the flag up; a second one is written
    // only for its own deviation: required.
    if (force && !isConstantWritten) {
        m_context.profiles.putBackForceWrite();
    }
}

bool ControlTask::controlConstantFan(std::uint8_t id, const FanControlMode& mode, bool force)
{
    if (!m_context.hardware.ensureLimits(id)) {
        return false;
    }
    const std::uint16_t rpm = m_context.hardware.clampToLimits(id, mode.rpm());
    const int deviation = std::abs(m_context.hardware.fan(id).rpmCurrent() - rpm);
    if (deviation <= tolerance && !force) {
        return false;
    }
    m_context.hardware.writeFanRPM(id, rpm);
    return true;
}

void ControlTask::controlSensorFan(std::uint8_t id, const FanControlMode& mode)
{
    const TemperatureSensorAbstract* sensor
        = m_context.sensorProvider.getSensorByKey(mode.sensorKey());
    if (sensor == nullptr) {
        fallBackToAutomatic(id, mode);
        return;
    }
    if (!hasWorkingSensor(id, *sensor) || !m_context.hardware.ensureLimits(id)) {
        return;
    }
    const double temperature = sensor->value();
    if (temperature == 0.0) {
        return; // no reading yet
    }
    const std::int32_t rpm = m_context.hardware.fan(id).update(temperature, mode);
    if (rpm >= 0) {
        m_context.hardware.writeFanRPM(id, static_cast<std::uint32_t>(rpm));
    }
}

void ControlTask::fallBackToAutomatic(std::uint8_t id, const FanControlMode& mode)
{
    FanRecord& fan = m_context.hardware.fan(id);
    fan.resetControl();
    // Not when the user has chosen something else in the meantime.
    if (m_context.profiles.replaceActiveMode(id, mode, FanControlMode::automatic())) {
        LOG_INFO("ControlFanSpeedThread: reset fan mode for {}", core::log::singleLine(fan.name()));
        m_context.hardware.applyControlModes();
    }
}

// A fan whose sensor has stopped is the controller's until the sensor reads again.
bool ControlTask::hasWorkingSensor(std::uint8_t id, const TemperatureSensorAbstract& sensor)
{
    FanRecord& fan = m_context.hardware.fan(id);
    SensorWatch& watch = m_watches[id];
    const bool hadStopped = watch.hasStopped();
    const auto known = m_stoppedSensors.find(sensor.id());
    const SensorWatch::Change change = watch.observe(
        sensor, m_context.clock.elapsedMilliseconds(),
        known == m_stoppedSensors.end() ? std::nullopt : std::optional(known->second));
    if (watch.hasStopped()) {
        m_stoppedSensors[sensor.id()] = watch.reads();
    }

    if (change == SensorWatch::Change::stopped) {
        LOG_WARN("The sensor {} has stopped reading, the {} fan is left to the system",
                 core::log::singleLine(sensor.key()), core::log::singleLine(fan.name()));
        fan.resetControl();
    } else if (change == SensorWatch::Change::returned) {
        LOG_WARN("The sensor {} reads again, the {} fan follows it again",
                 core::log::singleLine(sensor.key()), core::log::singleLine(fan.name()));
    }
    if (watch.hasStopped() != hadStopped) {
        m_context.hardware.setWithheld(id, watch.hasStopped());
    }
    return !watch.hasStopped();
}

void ControlTask::followNoSensor(std::uint8_t id)
{
    SensorWatch& watch = m_watches[id];
    const bool hadStopped = watch.hasStopped();
    watch.forget();
    if (hadStopped) {
        m_context.hardware.setWithheld(id, false);
    }
}

void ControlTask::sleepUntilWoken()
{
    LOG_INFO("ControlFanSpeedThread: sleep mode");
    const std::int64_t begin = m_context.clock.elapsedMilliseconds();
    for (std::size_t i = 0; i < m_watches.size(); ++i) {
        const auto id = static_cast<std::uint8_t>(i);
        FanRecord& fan = m_context.hardware.fan(id);
        if (m_context.hardware.mode(id).type() != FanControlSensor || m_watches[i].hasStopped()) {
            continue;
        }
        fan.resetControl();
        if (m_context.hardware.ensureLimits(id)) {
            LOG_INFO("ControlFanSpeedThread: set min rpm for the {} fan",
                     core::log::singleLine(fan.name()));
            m_context.hardware.writeFanRPM(id, fan.rpmMin());
        }
    }

    // The wake event can be left over from an earlier sleep that ended before this
    // task had noticed it. A stop by itself doesn't end this wait: required.
    m_context.reload.park(m_member);
    m_context.wake.reset();
    while (m_context.sleeping && !m_context.stop.isSet()) {
        // Once more when the next sleep has begun right after the wake.
        m_parked();
        m_context.clock.waitForEvents({ &m_context.wake }, false, core::threads::event::infinite);
        m_context.wake.reset();
    }
    m_context.reload.unpark(m_member);
    m_context.hardware.forgetAssertion();
    leaveOutTimeSince(begin);
}

void ControlTask::leaveOutTimeSince(std::int64_t begin)
{
    const std::int64_t duration = m_context.clock.elapsedMilliseconds() - begin;
    for (SensorWatch& watch : m_watches) {
        watch.leaveOut(duration);
    }
}
