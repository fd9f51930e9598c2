#include "app/sensors/drives/smartattributes.h"

#include <cstddef>

namespace {

constexpr std::size_t firstRecord = 2; // after the revision
constexpr std::size_t recordSize = 12;
constexpr std::size_t recordCount = 30;
constexpr std::size_t rawValue = 5; // its first byte, in a record

constexpr std::uint8_t temperature = 194;
constexpr std::uint8_t airflowTemperature = 190;

// The first byte of the attribute's raw value. The others hold the highest and
// lowest temperature, each drive's in its own way.
std::optional<std::uint8_t> rawByteOf(std::span<const std::uint8_t> data, std::uint8_t attribute)
{
    for (std::size_t index = 0; index < recordCount; ++index) {
        const std::size_t place = firstRecord + index * recordSize;
        if (place + recordSize > data.size()) {
            break;
        }
        if (data[place] == attribute) {
            return data[place + rawValue];
        }
    }
    return std::nullopt;
}

} // namespace

std::optional<std::uint8_t> smartTemperature(std::span<const std::uint8_t> smartData)
{
    std::optional<std::uint8_t> celsius = rawByteOf(smartData, temperature);
    if (!celsius) {
        celsius = rawByteOf(smartData, airflowTemperature);
    }
    return celsius == std::uint8_t { 0 } ? std::nullopt : celsius;
}
