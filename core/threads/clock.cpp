#include "core/threads/clock.h"

#include <chrono>
#include <thread>

#include "core/threads/wfmo_monitor.h"

namespace core::threads {

namespace {

class SystemClock final : public Clock {
public:
    std::int64_t elapsedMilliseconds() const override
    {
        const auto elapsed = std::chrono::steady_clock::now() - m_start;
        return std::chrono::duration_cast<std::chrono::milliseconds>(elapsed).count();
    }

    QDateTime now() const override { return m_startDate.addMSecs(elapsedMilliseconds()); }

    void sleep(std::uint32_t milliseconds) override
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    }

    int waitForEvents(const std::vector<event*>& events, bool waitAll,
                      std::uint32_t milliseconds) override
    {
        wfmo_monitor monitor;
        return monitor.waitForMultipleEvents(events, waitAll, milliseconds);
    }

private:
    const std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
    const QDateTime m_startDate = QDateTime::currentDateTimeUtc();
};

} // namespace

Clock& Clock::system()
{
    static SystemClock clock;
    return clock;
}

} // namespace core::threads
