#pragma once

#include <cstdint>
#include <mutex>
#include <string>

#include "macsim/portface/connection.h"

namespace macsim {

// What the driver of NVIDIA's GPUs in the simulated machine tells, whichever
// library programs look it up in. Thread-safe. Without a simulator there are none.
class GpuFace {
public:
    [[nodiscard]] std::uint32_t count();
    // Cut to fit a buffer of this length, terminator included.
    [[nodiscard]] std::string name(std::uint16_t gpu, std::size_t length);
    // Degrees Celsius; 0 while the driver fails.
    [[nodiscard]] std::uint32_t temperature(std::uint16_t gpu);

private:
    [[nodiscard]] std::uint8_t ask(std::uint8_t operation, std::uint16_t gpu, std::uint8_t value);

    std::mutex m_mutex;
    Connection m_connection;
};

} // namespace macsim
