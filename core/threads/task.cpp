#include "core/threads/task.h"

#include <chrono>
#include <exception>
#include <utility>

#include "core/log/log.h"
#include "core/threads/thread_name.h"

namespace core::threads {

Task::Task() { m_ended.set(); }

Task::~Task() { join(); }

bool Task::start(const std::string& name, std::function<void()> body)
{
    if (isRunning()) {
        return false;
    }
    join();

    std::packaged_task<void()> work([name, run = std::move(body)] {
        setCurrentThreadName(name);
        try {
            run();
        } catch (const std::exception& error) {
            LOG_ERR("Task {} ended with an exception: {}", name, error.what());
        } catch (...) {
            LOG_ERR("Task {} ended with an unknown exception", name);
        }
    });
    m_finished = work.get_future().share();
    m_ended.reset();
    try {
        m_thread = std::thread([this, run = std::move(work)]() mutable {
            run();
            m_ended.set();
        });
    } catch (...) {
        m_ended.set();
        throw;
    }
    return true;
}

bool Task::isRunning() const
{
    return m_finished.valid()
        && m_finished.wait_for(std::chrono::seconds::zero()) != std::future_status::ready;
}

void Task::join()
{
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

} // namespace core::threads
