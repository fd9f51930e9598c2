#pragma once

#include <cstdint>

// A fan's speeds in RPM at one moment. 65535 stands for a speed that could not
// be read.
struct FanSpeeds {
    static constexpr std::uint16_t unread = 65535;

    std::uint16_t current = unread;
    std::uint16_t min = unread;
    std::uint16_t max = unread;
};
