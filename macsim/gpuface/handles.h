#pragma once

#include <array>
#include <cstdint>

namespace macsim {

// The handles that a driver gives out for its GPUs: addresses in a row.
class GpuHandles {
public:
    // For the first 256 GPUs.
    [[nodiscard]] void* of(std::uint8_t gpu) { return &m_row.at(gpu); }
    [[nodiscard]] std::uint16_t numberOf(const void* handle) const
    {
        return static_cast<std::uint16_t>(static_cast<const char*>(handle) - m_row.data());
    }

private:
    std::array<char, 256> m_row {};
};

} // namespace macsim
