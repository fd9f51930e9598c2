#pragma once

#include <array>
#include <cstdint>

// The records between the port face and the simulator. A request is four bytes:
// the operation, the port (low byte first) and the value, 0 where there is none.
// Each request is answered by one byte: the value read, or 1 for "done".
// Connections whose first byte is not an operation carry control requests.
//
// The driver face of NVIDIA's GPUs uses the same records, with the number of a GPU
// of that maker's in the place of the port.
namespace macsim::portrecord {

constexpr std::uint8_t openQuery = 1;
constexpr std::uint8_t out = 2;
constexpr std::uint8_t in = 3;
// How many such GPUs there are.
constexpr std::uint8_t gpuCount = 4;
// A character of its name, at the value's position; 0 behind the end.
constexpr std::uint8_t gpuName = 5;
// Whole degrees Celsius; 0 while the driver fails.
constexpr std::uint8_t gpuTemperature = 6;
constexpr std::uint8_t lastOperation = gpuTemperature;

using Request = std::array<std::uint8_t, 4>;

[[nodiscard]] inline Request request(std::uint8_t operation, std::uint16_t port, std::uint8_t value)
{
    return { operation, static_cast<std::uint8_t>(port & 0xFF),
             static_cast<std::uint8_t>(port >> 8), value };
}

} // namespace macsim::portrecord
