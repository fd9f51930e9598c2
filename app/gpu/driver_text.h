#pragma once

#include <algorithm>
#include <array>
#include <cstddef>

#include <QString>

namespace GPU {

// A text that a driver has put into a buffer, in the system's encoding. Without a
// terminator it is as long as the buffer.
template <std::size_t size> [[nodiscard]] QString driverText(const std::array<char, size>& buffer)
{
    const auto end = std::find(buffer.begin(), buffer.end(), '\0');
    return QString::fromLocal8Bit(buffer.data(), static_cast<int>(end - buffer.begin()));
}

} // namespace GPU
