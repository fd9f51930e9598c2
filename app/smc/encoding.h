#pragma once

#include <array>
#include <cstdint>
#include <optional>

// The forms in which the controller holds what the program reads and writes.
// Byte 0 is the first byte on the wire. Free of Qt.
namespace SMC {

// The longest value of a key, in bytes. Buffers for values have this much room.
inline constexpr std::size_t valueRoom = 32;
inline constexpr std::size_t keyLength = 4;

using TwoBytes = std::array<std::uint8_t, 2>;
using FourBytes = std::array<std::uint8_t, 4>;

// "fpe2": RPM as big-endian fixed point. Reading drops the two fraction bits;
// writing wraps at 16384 RPM.
[[nodiscard]] std::uint16_t fpe2ToRpm(const TwoBytes& bytes);
[[nodiscard]] TwoBytes rpmToFpe2(std::uint16_t rpm);

// "flt " as a fan speed: a single in little-endian order. Reading cuts toward
// zero and keeps the low 16 bits; nothing comes back for a number below zero, an
// infinite one and for what isn't a number.
[[nodiscard]] std::optional<std::uint16_t> floatToRpm(const FourBytes& bytes);
[[nodiscard]] FourBytes rpmToFloat(std::uint16_t rpm);

// "sp78", degrees Celsius. There is no sign: a first byte of 128 or more gives a
// temperature that no caller takes for real.
[[nodiscard]] double sp78ToCelsius(const TwoBytes& bytes);

// "flt " as a temperature, degrees Celsius; may be infinite or not a number.
[[nodiscard]] double floatToCelsius(const FourBytes& bytes);

// A 32-bit number, most significant byte first.
[[nodiscard]] std::uint32_t bigEndianToNumber(const FourBytes& bytes);
[[nodiscard]] FourBytes numberToBigEndian(std::uint32_t number);
// The same bytes taken least significant byte first.
[[nodiscard]] std::uint32_t littleEndianToNumber(const FourBytes& bytes);

// What a transport sends of a key: its first four characters. A shorter text is
// filled up with zeros.
[[nodiscard]] FourBytes keyBytes(const char* key);

} // namespace SMC
