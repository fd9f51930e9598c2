#pragma once

#include <cstdint>
#include <optional>
#include <span>

// The drive's temperature in degrees Celsius, of what it answers to SMART READ DATA.
// Nothing when it has no attribute for it or gives none. Takes any bytes.
[[nodiscard]] std::optional<std::uint8_t> smartTemperature(std::span<const std::uint8_t> smartData);
