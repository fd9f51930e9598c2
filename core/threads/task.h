#pragma once

#include <functional>
#include <future>
#include <string>
#include <thread>

#include "core/threads/event.h"

namespace core::threads {

// A task on a thread of its own, with a future. The owner starts it, may ask
// whether it still runs, and joins it: at the latest in the destructor, which
// waits for the end, so the owner must have asked the task to stop before.
// Owned and used by one thread.
class Task {
public:
    Task();
    Task(const Task&) = delete;
    Task& operator=(const Task&) = delete;
    ~Task();

    // Starts body under the given thread name (at most 15 characters are shown
    // by the system). A task that still runs is left alone, and false comes back.
    // An exception out of body ends the task; it is logged.
    bool start(const std::string& name, std::function<void()> body);

    // True from start() until body has returned. May be called from any thread
    // once the task has been started.
    [[nodiscard]] bool isRunning() const;

    // Set whenever the task doesn't run, for a wait on a Clock's time. Once it is
    // set, isRunning() gives false. Only to be waited for.
    [[nodiscard]] event& ended() { return m_ended; }

    // Waits for the end of the task, if one was started.
    void join();

private:
    event m_ended;
    std::thread m_thread;
    std::shared_future<void> m_finished;
};

} // namespace core::threads
