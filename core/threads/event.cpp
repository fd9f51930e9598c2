#include "core/threads/event.h"

#include <algorithm>
#include <chrono>

namespace core::threads {

event::event(bool autoReset)
    : m_autoReset(autoReset)
{
}

bool event::isSet() const { return m_isSet.load(); }

void event::set()
{
    {
        const std::lock_guard lock(m_mutex);
        m_isSet = true;
    }
    m_condition.notify_all();

    const std::lock_guard lock(m_monitorMutex);
    for (const auto& registration : m_monitors) {
        registration.monitor->notify(registration.bit);
    }
}

void event::reset()
{
    const std::lock_guard lock(m_mutex);
    m_isSet = false;
}

bool event::wait(std::uint32_t milliseconds)
{
    std::unique_lock lock(m_mutex);
    const auto isSetNow = [this] { return m_isSet.load(); };
    if (milliseconds == infinite) {
        m_condition.wait(lock, isSetNow);
    } else if (!m_condition.wait_for(lock, std::chrono::milliseconds(milliseconds), isSetNow)) {
        return false;
    }
    if (m_autoReset) {
        m_isSet = false;
    }
    return true;
}

void event::addMonitor(event_monitor* monitor, std::uint32_t bit)
{
    const std::lock_guard lock(m_monitorMutex);
    m_monitors.push_back({ monitor, bit });
}

void event::removeMonitor(event_monitor* monitor)
{
    const std::lock_guard lock(m_monitorMutex);
    std::erase_if(m_monitors,
                  [monitor](const Registration& entry) { return entry.monitor == monitor; });
}

} // namespace core::threads
