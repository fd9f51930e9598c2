#pragma once

#include <bitset>
#include <cstddef>

#include "smcd/controller.h"

namespace smcd {

// Machines keep what forces their fans in the bits of "FS! ", or in a key "F{}Md" for
// each fan. A set of such bits has room for both.
inline constexpr std::size_t maskFans = 8; // that "FS! " has bits for
inline constexpr std::size_t mostFans = 10; // whose number is one digit

using ControlBits = std::bitset<maskFans + mostFans>;

[[nodiscard]] inline constexpr std::size_t maskPlace(std::size_t fan) { return fan; }
[[nodiscard]] inline constexpr std::size_t modePlace(std::size_t fan) { return maskFans + fan; }

inline constexpr Key maskKey { 'F', 'S', '!', ' ' };
inline constexpr Key fanCountKey { 'F', 'N', 'u', 'm' };
inline constexpr std::size_t maskLength = 2; // bytes; the bits are in the second one

// fanKey(1, 'T', 'g') is "F1Tg".
[[nodiscard]] inline constexpr Key fanKey(std::size_t fan, char first, char second)
{
    return { 'F', static_cast<char>('0' + fan), first, second };
}

} // namespace smcd
