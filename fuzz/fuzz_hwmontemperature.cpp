#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "core/system/hwmontemperature.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto* const text = static_cast<const char*>(static_cast<const void*>(data));
    const auto celsius = hwmonTemperature(std::string_view(text, size));
    if (celsius && !std::isfinite(*celsius)) {
        std::abort();
    }
    return 0;
}
