#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <vector>

#include "app/fancontrol/enginecontext.h"
#include "app/fancontrol/fancontrolmode.h"
#include "app/fancontrol/reloadrendezvous.h"
#include "app/fancontrol/sensorwatch.h"

class TemperatureSensorAbstract;

// Drives the fans by the active preset: constant fans by their deviation, fans
// that follow a sensor by the algorithm, and parks while the machine sleeps.
class ControlTask {
public:
    // The references must outlive the object. parked is called, on the task's
    // thread, whenever the fans are ready for the machine's sleep.
    ControlTask(const EngineContext& context, ReloadRendezvous::Member& member,
                std::function<void()> parked);

    // Returns when the context's stop event is set. The fans are then still as
    // the preset has them.
    void run();

private:
    void pauseForReload();
    void restartAfterClaim();
    void controlFan(std::uint8_t id);
    // True when the fan's speed was written.
    bool controlConstantFan(std::uint8_t id, const FanControlMode& mode, bool force);
    void controlSensorFan(std::uint8_t id, const FanControlMode& mode);
    void fallBackToAutomatic(std::uint8_t id, const FanControlMode& mode);
    [[nodiscard]] bool hasWorkingSensor(std::uint8_t id, const TemperatureSensorAbstract& sensor);
    void followNoSensor(std::uint8_t id);
    void sleepUntilWoken();
    void leaveOutTimeSince(std::int64_t begin);

    const EngineContext& m_context;
    ReloadRendezvous::Member& m_member;
    const std::function<void()> m_parked;
    std::vector<SensorWatch> m_watches; // one per fan
    // Sensors that have stopped, by id, with the count of their reads by then; until
    // a reload. Whatever fan comes to follow one must not wait for it once more.
    std::map<std::uint32_t, std::uint32_t> m_stoppedSensors;
    unsigned m_claims = 0; // of the hardware, as far as this task knows
};
