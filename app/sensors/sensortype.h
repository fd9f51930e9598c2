#pragma once

#include <cstdint>

enum class SensorType : std::uint32_t {
    odd = 0,
    cpu = 1,
    hdd = 2,
    ssd = 3,
    nvme = 4,
    airport = 5,
    psu = 6,
    gpu = 7,
    other = 8,
};

// Drives, whatever their kind.
[[nodiscard]] constexpr bool isDriveType(SensorType type)
{
    return type == SensorType::hdd || type == SensorType::ssd || type == SensorType::nvme;
}
