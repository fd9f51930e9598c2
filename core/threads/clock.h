#pragma once

#include <cstdint>
#include <vector>

#include <QDateTime>

#include "core/threads/event.h"

namespace core::threads {

// Time as the engine, the control algorithm and the schedules see it: the
// system's, or in tests one that the test drives. All operations may be called
// from any thread.
class Clock {
public:
    Clock() = default;
    Clock(const Clock&) = delete;
    Clock& operator=(const Clock&) = delete;
    virtual ~Clock() = default;

    // Milliseconds from a fixed point of this run; never goes back, and stands
    // still while the machine sleeps.
    [[nodiscard]] virtual std::int64_t elapsedMilliseconds() const = 0;

    // The date and time in UTC as of the start of the run plus what has elapsed
    // since: setting the machine's clock does not disturb intervals taken from
    // it. For time of day, ask QDateTime.
    [[nodiscard]] virtual QDateTime now() const = 0;

    virtual void sleep(std::uint32_t milliseconds) = 0;

    // wfmo_monitor::waitForMultipleEvents on this clock's time.
    virtual int waitForEvents(const std::vector<event*>& events, bool waitAll,
                              std::uint32_t milliseconds)
        = 0;

    // The system's clock; lives as long as the process.
    static Clock& system();
};

} // namespace core::threads
