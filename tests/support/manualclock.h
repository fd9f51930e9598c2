#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>

#include "core/threads/clock.h"

// A clock that only the test moves. Waits of other threads end when an event is
// set or when the test has moved the clock past their end; sleep() moves the
// clock itself. Starts at 2026-01-01 00:00:00 UTC. Thread-safe.
class ManualClock final : public core::threads::Clock {
public:
    std::int64_t elapsedMilliseconds() const override;
    QDateTime now() const override;
    void sleep(std::uint32_t milliseconds) override;
    int waitForEvents(const std::vector<core::threads::event*>& events, bool waitAll,
                      std::uint32_t milliseconds) override;

    void advance(std::int64_t milliseconds);
    // How many waits are under way, and a wait (in real time) for that many;
    // false when it took longer than the time-out in milliseconds.
    [[nodiscard]] int waiterCount() const;
    [[nodiscard]] bool waitForWaiters(int count, int timeoutMilliseconds = 5000);
    // How often the time was asked for since the last call of this function.
    [[nodiscard]] int takeReadCount();

private:
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::int64_t m_elapsed = 0;
    int m_waiters = 0;
    mutable int m_reads = 0;
};
