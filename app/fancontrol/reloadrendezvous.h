#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>
#include <vector>

#include "core/threads/event.h"

namespace core::threads {
class Clock;
}

// Where the engine's tasks pause while the GUI thread rebuilds the sensors. Each
// task that uses sensors is a member from before its start until its end; the
// sensors may be rebuilt once no member runs.
class ReloadRendezvous {
public:
    // A task's part in the rendezvous; owned by whoever owns the task.
    class Member {
        friend class ReloadRendezvous;
        enum class State { absent, running, paused, parked };
        State m_state = State::absent;
        bool m_isLate = false;
    };

    // A pause also ends when stop is set: the task must then end without another
    // look at a sensor. taskCameLate is called, on the task's thread, when a task
    // for which holdTasks() has waited in vain comes to the rendezvous at last,
    // parks or ends. Clock and event must outlive the object.
    ReloadRendezvous(core::threads::Clock& clock, core::threads::event& stop,
                     std::function<void()> taskCameLate);

    // Before the task is started, on the thread that reloads, so that no reload
    // can overlook it; and by the task itself as the last thing it does.
    void enter(Member& member);
    void leave(Member& member);

    // Set while a reload wants the tasks paused: a task cuts its pass short.
    [[nodiscard]] bool isRequested() const { return m_eventReloadRequest.isSet(); }
    [[nodiscard]] core::threads::event& request() { return m_eventReloadRequest; }

    // At the head of each pass: without a reload it gives false at once, else it
    // waits for the end of the reload and gives true. Pointers to sensors are
    // invalid afterwards.
    bool pause(Member& member);
    // Around a wait in which the task uses no sensor: it counts as paused then.
    void park(Member& member);
    void unpark(Member& member);

    // On the thread that reloads: waits until every member is paused. False when
    // that took longer than the time, in milliseconds, or when an earlier pause
    // took as long to end: then the members run on.
    [[nodiscard]] bool holdTasks(std::uint32_t milliseconds);
    void resumeTasks();

private:
    // Gives true once to a task for which holdTasks() has waited in vain.
    [[nodiscard]] bool takeLateness(Member& member);
    [[nodiscard]] bool waitUntilDrained(std::uint32_t milliseconds);
    // These need the mutex to be held.
    void markLate(Member::State state);
    void setState(Member& member, Member::State state);
    void reportWhenAllHeld();

    core::threads::Clock& m_clock;
    core::threads::event& m_eventStop;
    const std::function<void()> m_taskCameLate;
    core::threads::event m_eventReloadRequest; // a reload wants the tasks paused
    core::threads::event m_eventReloadDone; // paused tasks wait on it
    core::threads::event m_eventThreadsPaused; // the reload waits on it
    core::threads::event m_eventDrained; // no task is inside a pause
    std::mutex m_mutex; // guards all below
    std::vector<Member*> m_members;
    std::uint8_t pausedThreads = 0; // tasks inside a pause
};
