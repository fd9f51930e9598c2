#include "app/fancontrol/reloadrendezvous.h"

#include <algorithm>
#include <utility>

#include <QLoggingCategory>

#include "core/threads/clock.h"
#include "core/threads/wfmo_monitor.h"

namespace {

Q_LOGGING_CATEGORY(engineCategory, "brisora.engine")

constexpr std::uint32_t drainInterval = 10; // milliseconds

} // namespace

ReloadRendezvous::ReloadRendezvous(core::threads::Clock& clock, core::threads::event& stop,
                                   std::function<void()> taskCameLate)
    : m_clock(clock)
    , m_eventStop(stop)
    , m_taskCameLate(std::move(taskCameLate))
{
    m_eventDrained.set();
}

void ReloadRendezvous::enter(Member& member)
{
    const std::lock_guard lock(m_mutex);
    member.m_state = Member::State::running;
    member.m_isLate = false;
    m_members.push_back(&member);
}

void ReloadRendezvous::leave(Member& member)
{
    bool cameLate = false;
    {
        const std::lock_guard lock(m_mutex);
        cameLate = std::exchange(member.m_isLate, false);
        member.m_state = Member::State::absent;
        m_members.erase(std::remove(m_members.begin(), m_members.end(), &member), m_members.end());
        reportWhenAllHeld();
    }
    if (cameLate) {
        m_taskCameLate();
    }
}

bool ReloadRendezvous::pause(Member& member)
{
    // First of all: once it is counted, this task must get through to its wait.
    if (takeLateness(member)) {
        m_taskCameLate();
    }
    {
        const std::lock_guard lock(m_mutex);
        if (!m_eventReloadRequest.isSet()) {
            return false;
        }
        ++pausedThreads;
        m_eventDrained.reset();
        setState(member, Member::State::paused);
    }

    m_clock.waitForEvents({ &m_eventStop, &m_eventReloadDone }, false,
                          core::threads::event::infinite);
    const std::lock_guard lock(m_mutex);
    setState(member, Member::State::running);
    if (--pausedThreads == 0) {
        m_eventDrained.set();
    }
    return true;
}

void ReloadRendezvous::park(Member& member)
{
    bool cameLate = false;
    {
        const std::lock_guard lock(m_mutex);
        cameLate = std::exchange(member.m_isLate, false);
        setState(member, Member::State::parked);
    }
    if (cameLate) {
        m_taskCameLate();
    }
}

void ReloadRendezvous::unpark(Member& member)
{
    const std::lock_guard lock(m_mutex);
    setState(member, Member::State::running);
}

bool ReloadRendezvous::holdTasks(std::uint32_t milliseconds)
{
    if (!waitUntilDrained(milliseconds)) {
        const std::lock_guard lock(m_mutex);
        if (pausedThreads > 0) { // not drained at the last moment
            markLate(Member::State::paused);
            return false;
        }
    }
    {
        const std::lock_guard lock(m_mutex);
        m_eventReloadDone.reset();
        m_eventReloadRequest.set();
        reportWhenAllHeld();
    }
    if (m_clock.waitForEvents({ &m_eventThreadsPaused }, false, milliseconds)
        != core::threads::wfmo_monitor::timedOut) {
        return true;
    }
    {
        const std::lock_guard lock(m_mutex);
        if (m_eventThreadsPaused.isSet()) {
            return true; // at the last moment
        }
        markLate(Member::State::running);
    }
    resumeTasks();
    return false;
}

void ReloadRendezvous::resumeTasks()
{
    const std::lock_guard lock(m_mutex);
    m_eventReloadRequest.reset();
    m_eventThreadsPaused.reset();
    m_eventReloadDone.set();
}

bool ReloadRendezvous::takeLateness(Member& member)
{
    const std::lock_guard lock(m_mutex);
    return std::exchange(member.m_isLate, false);
}

// An earlier reload may still be letting its tasks go.
bool ReloadRendezvous::waitUntilDrained(std::uint32_t milliseconds)
{
    const std::int64_t begin = m_clock.elapsedMilliseconds();
    while (m_clock.waitForEvents({ &m_eventDrained }, false, drainInterval)
           == core::threads::wfmo_monitor::timedOut) {
        qCDebug(engineCategory) << "wait!";
        if (m_clock.elapsedMilliseconds() - begin >= milliseconds) {
            return false;
        }
    }
    return true;
}

void ReloadRendezvous::markLate(Member::State state)
{
    for (Member* member : m_members) {
        member->m_isLate = member->m_state == state;
    }
}

void ReloadRendezvous::setState(Member& member, Member::State state)
{
    member.m_state = state;
    reportWhenAllHeld();
}

void ReloadRendezvous::reportWhenAllHeld()
{
    const bool nobodyRuns
        = std::none_of(m_members.begin(), m_members.end(), [](const Member* member) {
              return member->m_state == Member::State::running;
          });
    if (nobodyRuns && m_eventReloadRequest.isSet()) {
        m_eventThreadsPaused.set();
    }
}
