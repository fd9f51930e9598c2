#pragma once

#include <cstdint>

#include "app/fancontrol/fanspeeds.h"

// Whether a number stands for a speed in RPM: -1 and 65535 stand for one that is
// not known.
[[nodiscard]] inline bool isKnownSpeed(std::int32_t rpm)
{
    return rpm >= 0 && rpm != FanSpeeds::unread;
}
