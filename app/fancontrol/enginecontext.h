#pragma once

#include <atomic>
#include <cstdint>

#include "core/threads/event.h"

class FanHardware;
class QFanProfileList;
class ReloadRendezvous;
class TemperatureSensorProvider;

namespace core::threads {
class Clock;
}

// What the engine's tasks work on; all of it outlives them.
struct EngineContext {
    core::threads::Clock& clock;
    FanHardware& hardware;
    QFanProfileList& profiles;
    const TemperatureSensorProvider& sensorProvider;
    ReloadRendezvous& reload;
    core::threads::event& stop; // ends the tasks
    core::threads::event& wake; // ends the control task's wait during sleep
    const std::atomic<bool>& sleeping;

    // The pause between two passes of a task, in milliseconds.
    static constexpr std::uint32_t passInterval = 1500;
};
