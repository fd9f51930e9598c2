#pragma once

#include <vector>

#include "core/threads/event.h"

namespace core::threads {

// A wait for several events at once.
class wfmo_monitor : public event_monitor {
public:
    static constexpr std::size_t maxEvents = 32;
    static constexpr int timedOut = 258;
    static constexpr int failed = -1;

    wfmo_monitor() = default;
    ~wfmo_monitor() override = default;

    // Waits until one of the events is set (with waitAll: until all are set at
    // the same time) or the time in milliseconds is over; event::infinite waits
    // for ever.
    //
    // The result is the lowest index of an event that is set, whether it was set
    // before the call or during it; timedOut when time ran out; failed for more
    // than maxEvents events. Events are left as they are, auto-reset ones too.
    int waitForMultipleEvents(const std::vector<event*>& events, bool waitAll,
                              std::uint32_t milliseconds);

    void notify(std::uint32_t bit) override;

private:
    std::mutex m_mutex;
    std::condition_variable m_condition;
    std::uint32_t m_notifications = 0;
};

} // namespace core::threads
