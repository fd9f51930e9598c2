#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "app/fancontrol/fancontrolmode.h"

// The mode that the fan control dialog applied last to each fan during this run of
// the program; an invalid mode where it has applied none. Not persisted. A fan past
// the last one raises std::out_of_range.
class LastAppliedModes {
public:
    static constexpr std::size_t fanCount = 100;

    [[nodiscard]] const FanControlMode& mode(std::uint32_t fan) const { return m_modes.at(fan); }
    void setMode(std::uint32_t fan, const FanControlMode& mode) { m_modes.at(fan) = mode; }

private:
    std::array<FanControlMode, fanCount> m_modes;
};
