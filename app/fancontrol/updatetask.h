#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include <QString>

#include "app/fancontrol/enginecontext.h"
#include "app/fancontrol/reloadrendezvous.h"

class QSettingsCache;
class TemperatureSensorAbstract;

// Reads the fans' speeds and the sensors over and over. While the window is
// hidden, only those sensors are read that the tray shows or a fan follows.
class UpdateTask {
public:
    // All of them are called on the task's thread.
    struct Callbacks {
        std::function<bool()> isWindowVisible;
        std::function<void(std::uint8_t fan)> fanRead;
        std::function<void(std::uint32_t sensorId, double value)> sensorRead;
    };

    // The references must outlive the object.
    UpdateTask(const EngineContext& context, ReloadRendezvous::Member& member,
               QSettingsCache& settings, Callbacks callbacks);

    // Returns when the context's stop event is set.
    void run();

private:
    enum class PassEnd { complete, reloadRequested, stopped };

    [[nodiscard]] PassEnd runPass(bool readEverything);
    [[nodiscard]] PassEnd readFans(bool readEverything);
    [[nodiscard]] PassEnd readSensors(bool readEverything);
    [[nodiscard]] bool isWanted(const TemperatureSensorAbstract& sensor) const;
    [[nodiscard]] PassEnd stateOfPass() const;

    const EngineContext& m_context;
    ReloadRendezvous::Member& m_member;
    QSettingsCache& m_settings;
    const Callbacks m_callbacks;
    std::vector<TemperatureSensorAbstract*> m_sensors; // until the next reload
    std::vector<QString> m_wantedKeys; // in this pass, while the window is hidden
};
