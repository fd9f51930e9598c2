#pragma once

#include <array>

#include "app/gpu/driver_library.h"

namespace GPU {

using nvmlDevice = void*;
// What the driver's functions give back when they succeed.
inline constexpr int NVML_SUCCESS = 0;
inline constexpr int NVML_TEMPERATURE_GPU = 0;

// What NVIDIA's management library on Linux offers.
struct NvmlApi {
    using Name = std::array<char, 96>;

    // Loads the library; false unless it has all of the functions.
    [[nodiscard]] bool load(DriverLibrary& library);

    int (*nvmlInit_v2)() = nullptr;
    int (*nvmlShutdown)() = nullptr;
    int (*nvmlDeviceGetCount_v2)(unsigned* count) = nullptr;
    int (*nvmlDeviceGetHandleByIndex_v2)(unsigned index, nvmlDevice* device) = nullptr;
    int (*nvmlDeviceGetName)(nvmlDevice device, char* name, unsigned length) = nullptr;
    int (*nvmlDeviceGetTemperature)(nvmlDevice device, int sensor, unsigned* celsius) = nullptr;
};

} // namespace GPU
