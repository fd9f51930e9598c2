#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>

#include "app/sensors/drives/smartattributes.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // A temperature of 0 is none.
    if (smartTemperature(std::span(data, size)) == std::uint8_t { 0 }) {
        std::abort();
    }
    return 0;
}
