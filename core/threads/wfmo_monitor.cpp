#include "core/threads/wfmo_monitor.h"

#include <algorithm>
#include <chrono>

namespace core::threads {

namespace {

// The index that ends the wait, or -1 to go on waiting.
int satisfiedBy(const std::vector<event*>& events, bool waitAll)
{
    const auto isSet = [](const event* candidate) { return candidate->isSet(); };
    if (waitAll) {
        const bool all = !events.empty() && std::all_of(events.begin(), events.end(), isSet);
        return all ? 0 : -1;
    }
    const auto found = std::find_if(events.begin(), events.end(), isSet);
    return found == events.end() ? -1 : static_cast<int>(found - events.begin());
}

} // namespace

int wfmo_monitor::waitForMultipleEvents(const std::vector<event*>& events, bool waitAll,
                                        std::uint32_t milliseconds)
{
    if (events.size() > maxEvents) {
        return failed;
    }

    for (std::size_t index = 0; index < events.size(); ++index) {
        events[index]->addMonitor(this, static_cast<std::uint32_t>(index));
    }

    // The events are tested only after the registration, so that a set() can't
    // slip in between the test and the wait.
    const auto deadline
        = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    int result = timedOut;
    {
        std::unique_lock lock(m_mutex);
        for (;;) {
            const auto seen = m_notifications;
            lock.unlock();
            const int index = satisfiedBy(events, waitAll);
            lock.lock();
            if (index >= 0) {
                result = index;
                break;
            }
            const auto notified = [this, seen] { return m_notifications != seen; };
            if (milliseconds == event::infinite) {
                m_condition.wait(lock, notified);
            } else if (!m_condition.wait_until(lock, deadline, notified)) {
                break;
            }
        }
    }

    for (auto* registered : events) {
        registered->removeMonitor(this);
    }
    return result;
}

void wfmo_monitor::notify(std::uint32_t /*bit*/)
{
    {
        const std::lock_guard lock(m_mutex);
        ++m_notifications;
    }
    m_condition.notify_all();
}

} // namespace core::threads
