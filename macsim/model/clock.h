#pragma once

#include <chrono>

namespace macsim {

// The clock that the simulator lives by. Tests drive one of their own.
class Clock {
public:
    virtual ~Clock() = default;
    // Time since an arbitrary start; never goes back.
    [[nodiscard]] virtual std::chrono::microseconds now() const = 0;
};

class MonotonicClock final : public Clock {
public:
    MonotonicClock();
    [[nodiscard]] std::chrono::microseconds now() const override;

private:
    std::chrono::steady_clock::time_point m_start;
};

} // namespace macsim
