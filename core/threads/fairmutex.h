#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace core::threads {

// A mutex that lets its callers in in the order in which they came. For what is
// held for long and taken again at once, where a plain mutex may let the others
// wait for ever. Not recursive; for std::lock_guard and its like.
class FairMutex {
public:
    FairMutex() = default;
    FairMutex(const FairMutex&) = delete;
    FairMutex& operator=(const FairMutex&) = delete;

    void lock()
    {
        std::unique_lock guard(m_mutex);
        const std::uint64_t ticket = m_nextTicket++;
        m_turn.wait(guard, [this, ticket] { return m_served == ticket; });
    }

    void unlock()
    {
        // Notified within: the next owner may destroy this object.
        const std::lock_guard guard(m_mutex);
        ++m_served;
        m_turn.notify_all();
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_turn;
    std::uint64_t m_nextTicket = 0;
    std::uint64_t m_served = 0; // the ticket whose turn it is
};

} // namespace core::threads
