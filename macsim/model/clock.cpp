#include "macsim/model/clock.h"

namespace macsim {

MonotonicClock::MonotonicClock()
    : m_start(std::chrono::steady_clock::now())
{
}

std::chrono::microseconds MonotonicClock::now() const
{
    return std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now()
                                                                 - m_start);
}

} // namespace macsim
