#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <vector>

namespace core::threads {

class event;

// Somebody who waits for several events and is told when one of them is set.
class event_monitor {
public:
    event_monitor() = default;
    event_monitor(const event_monitor&) = delete;
    event_monitor& operator=(const event_monitor&) = delete;
    virtual ~event_monitor() = default;

    // Called by event::set, on the setting thread and with the event's list of
    // monitors locked: it must not register or unregister anything.
    virtual void notify(std::uint32_t bit) = 0;
};

// An event that stays set until it is reset; an auto-reset one is consumed by
// the wait() that finds it set. All operations may be called from any thread.
class event {
public:
    // The time-out that means "for ever", in milliseconds.
    static constexpr std::uint32_t infinite = 65535;

    explicit event(bool autoReset = false);
    event(const event&) = delete;
    event& operator=(const event&) = delete;
    ~event() = default;

    [[nodiscard]] bool isSet() const;
    void set();
    void reset();

    // True when the event was set within the time, in milliseconds.
    bool wait(std::uint32_t milliseconds);

    // The monitor gets notify(bit) at each set() until it is removed.
    void addMonitor(event_monitor* monitor, std::uint32_t bit);
    void removeMonitor(event_monitor* monitor);

private:
    struct Registration {
        event_monitor* monitor;
        std::uint32_t bit;
    };

    std::atomic<bool> m_isSet { false };
    const bool m_autoReset;
    std::mutex m_mutex;
    std::condition_variable m_condition;
    std::mutex m_monitorMutex;
    std::vector<Registration> m_monitors;
};

} // namespace core::threads
