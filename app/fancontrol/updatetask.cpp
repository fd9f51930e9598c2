#include "app/fancontrol/updatetask.h"

#include <algorithm>
#include <utility>

#include "app/fancontrol/fanhardware.h"
#include "app/sensors/tempsensorabstract.h"
#include "app/sensors/tempsensorprovider.h"
#include "app/settingskeys.h"
#include "core/settings/qsettingscache.h"
#include "core/threads/clock.h"

UpdateTask::UpdateTask(const EngineContext& context, ReloadRendezvous::Member& member,
                       QSettingsCache& settings, Callbacks callbacks)
    : m_context(context)
    , m_member(member)
    , m_settings(settings)
    , m_callbacks(std::move(callbacks))
{
}

void UpdateTask::run()
{
    m_sensors = m_context.sensorProvider.getSensors();
    bool isFirstPass = true;
    for (;;) {
        if (m_context.reload.pause(m_member)) {
            if (m_context.stop.isSet()) {
                return;
            }
            m_sensors = m_context.sensorProvider.getSensors();
        }
        const bool readEverything = isFirstPass || m_callbacks.isWindowVisible();
        const PassEnd end = runPass(readEverything);
        if (end == PassEnd::stopped) {
            return;
        }
        if (end == PassEnd::reloadRequested) {
            continue;
        }
        constexpr int stopIndex = 0;
        if (m_context.clock.waitForEvents({ &m_context.stop, &m_context.reload.request() }, false,
                                          EngineContext::passInterval)
            == stopIndex) {
            return;
        }
        isFirstPass = false;
    }
}

UpdateTask::PassEnd UpdateTask::runPass(bool readEverything)
{
    m_wantedKeys.clear();
    const QString traySensor = m_settings.getString(SettingsKeys::traySensor);
    if (!traySensor.isEmpty()) {
        m_wantedKeys.push_back(traySensor);
    }
    const PassEnd fansEnd = readFans(readEverything);
    return fansEnd == PassEnd::complete ? readSensors(readEverything) : fansEnd;
}

UpdateTask::PassEnd UpdateTask::readFans(bool readEverything)
{
    const std::uint8_t fanCount = m_context.hardware.fanCount();
    for (std::uint8_t id = 0; id < fanCount; ++id) {
        m_context.hardware.updateFan(id, true);
        if (!readEverything) {
            const FanControlMode mode = m_context.hardware.mode(id);
            if (mode.type() == FanControlSensor) {
                m_wantedKeys.push_back(mode.sensorKey());
            }
        }
        const PassEnd state = stateOfPass();
        if (state != PassEnd::complete) {
            return state;
        }
        m_callbacks.fanRead(id);
    }
    return stateOfPass();
}

UpdateTask::PassEnd UpdateTask::readSensors(bool readEverything)
{
    for (TemperatureSensorAbstract* sensor : m_sensors) {
        const bool wanted = readEverything || isWanted(*sensor);
        if (wanted) {
            sensor->UpdateValue();
        }
        const PassEnd state = stateOfPass();
        if (state != PassEnd::complete) {
            return state;
        }
        if (wanted) {
            m_callbacks.sensorRead(sensor->id(), sensor->value());
        }
    }
    return stateOfPass();
}

// Compared as a fan's sensor is looked up, so that whatever a fan follows is read.
bool UpdateTask::isWanted(const TemperatureSensorAbstract& sensor) const
{
    return std::any_of(m_wantedKeys.begin(), m_wantedKeys.end(),
                       [&sensor](const QString& key) { return sensor.isKeyEqual(key); });
}

UpdateTask::PassEnd UpdateTask::stateOfPass() const
{
    if (m_context.stop.isSet()) {
        return PassEnd::stopped;
    }
    return m_context.reload.isRequested() ? PassEnd::reloadRequested : PassEnd::complete;
}
