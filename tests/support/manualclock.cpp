#include "tests/support/manualclock.h"

#include <chrono>

#include "core/threads/wfmo_monitor.h"

namespace {

// How long a waiting thread lets an event or a move of the clock wait, in
// milliseconds of real time.
constexpr std::uint32_t pollInterval = 1;

} // namespace

std::int64_t ManualClock::elapsedMilliseconds() const
{
    const std::lock_guard lock(m_mutex);
    ++m_reads;
    return m_elapsed;
}

QDateTime ManualClock::now() const
{
    static const QDateTime start(QDate(2026, 1, 1), QTime(0, 0), Qt::UTC);
    const std::lock_guard lock(m_mutex);
    ++m_reads;
    return start.addMSecs(m_elapsed);
}

void ManualClock::sleep(std::uint32_t milliseconds) { advance(milliseconds); }

int ManualClock::waitForEvents(const std::vector<core::threads::event*>& events, bool waitAll,
                               std::uint32_t milliseconds)
{
    std::unique_lock lock(m_mutex);
    const std::int64_t end = m_elapsed + milliseconds;
    ++m_waiters;
    m_changed.notify_all();
    int result = core::threads::wfmo_monitor::timedOut;
    for (;;) {
        lock.unlock();
        core::threads::wfmo_monitor monitor;
        result = monitor.waitForMultipleEvents(events, waitAll, pollInterval);
        lock.lock();
        const bool timeIsOver = milliseconds != core::threads::event::infinite && m_elapsed >= end;
        if (result != core::threads::wfmo_monitor::timedOut || timeIsOver) {
            break;
        }
    }
    --m_waiters;
    m_changed.notify_all();
    return result;
}

void ManualClock::advance(std::int64_t milliseconds)
{
    const std::lock_guard lock(m_mutex);
    m_elapsed += milliseconds;
}

int ManualClock::waiterCount() const
{
    const std::lock_guard lock(m_mutex);
    return m_waiters;
}

bool ManualClock::waitForWaiters(int count, int timeoutMilliseconds)
{
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, std::chrono::milliseconds(timeoutMilliseconds),
                              [this, count] { return m_waiters == count; });
}

int ManualClock::takeReadCount()
{
    const std::lock_guard lock(m_mutex);
    const int reads = m_reads;
    m_reads = 0;
    return reads;
}
