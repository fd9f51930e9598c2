#pragma once

#include <array>
#include <cstdint>

#include "app/gpu/driver_library.h"

namespace GPU {

using NvPhysicalGpuHandle = void*;
inline constexpr std::uint32_t NVAPI_MAX_PHYSICAL_GPUS = 64;
inline constexpr std::size_t NVAPI_SHORT_STRING_MAX = 64; // characters
// What the driver's functions give back when they succeed.
inline constexpr int NVAPI_OK = 0;

// Which sensors are asked for, and what one of them measures.
inline constexpr std::uint32_t NVAPI_THERMAL_TARGET_ALL = 15;
inline constexpr std::int32_t NVAPI_THERMAL_TARGET_GPU = 1;

// The driver's record, as its publisher documents it.
struct NV_GPU_THERMAL_SETTINGS_V1 {
    struct Sensor {
        std::int32_t controller;
        std::uint32_t defaultMinTemp;
        std::uint32_t defaultMaxTemp;
        std::uint32_t currentTemp; // degrees Celsius
        std::int32_t target;
    };

    static constexpr std::uint32_t recordVersion = 0x00010044; // version 1, and the size
    static constexpr std::uint32_t mostSensors = 3;

    std::uint32_t version;
    std::uint32_t count;
    std::array<Sensor, mostSensors> sensor;
};
static_assert(sizeof(NV_GPU_THERMAL_SETTINGS_V1)
              == (NV_GPU_THERMAL_SETTINGS_V1::recordVersion & 0xFFFF));

// What NVIDIA's driver library offers, each null where the library lacks it.
struct NVApi {
    using Name = std::array<char, NVAPI_SHORT_STRING_MAX>;
    using Handles = std::array<NvPhysicalGpuHandle, NVAPI_MAX_PHYSICAL_GPUS>;

    // Loads the library, which stays loaded; false when there is none to be used.
    [[nodiscard]] bool load(DriverLibrary& library);

    int (*NvAPI_Initialize)() = nullptr;
    int (*NvAPI_EnumPhysicalGPUs)(NvPhysicalGpuHandle* handles, std::uint32_t* count) = nullptr;
    int (*NvAPI_GPU_GetFullName)(NvPhysicalGpuHandle gpu, char* name) = nullptr;
    int (*NvAPI_GPU_GetThermalSettings)(NvPhysicalGpuHandle gpu, std::uint32_t sensors,
                                        NV_GPU_THERMAL_SETTINGS_V1* settings)
        = nullptr;
};

} // namespace GPU
