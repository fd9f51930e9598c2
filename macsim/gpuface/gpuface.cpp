#include "macsim/gpuface/gpuface.h"

#include <algorithm>

namespace macsim {

std::uint8_t GpuFace::ask(std::uint8_t operation, std::uint16_t gpu, std::uint8_t value)
{
    const std::lock_guard lock(m_mutex);
    return m_connection.exchange(portrecord::request(operation, gpu, value)).value_or(0);
}

std::uint32_t GpuFace::count() { return ask(portrecord::gpuCount, 0, 0); }

std::string GpuFace::name(std::uint16_t gpu, std::size_t length)
{
    constexpr std::size_t longest = 256; // positions are bytes
    std::string result;
    while (result.size() + 1 < std::min(length, longest)) {
        const std::uint8_t character
            = ask(portrecord::gpuName, gpu, static_cast<std::uint8_t>(result.size()));
        if (character == 0) {
            break;
        }
        result += static_cast<char>(character);
    }
    return result;
}

std::uint32_t GpuFace::temperature(std::uint16_t gpu)
{
    return ask(portrecord::gpuTemperature, gpu, 0);
}

} // namespace macsim
