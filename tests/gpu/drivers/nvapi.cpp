// NVIDIA's driver library on Windows for tests: a machine with one GPU of 61
// degrees.

#include <algorithm>

#include "app/gpu/provider_win_nvidia_api.h"
#include "tests/gpu/drivers/export.h"

namespace {

int gpu = 0; // its address is the handle

int initialize() { return GPU::NVAPI_OK; }

int list(GPU::NvPhysicalGpuHandle* handles, std::uint32_t* count)
{
    handles[0] = &gpu;
    *count = 1;
    return GPU::NVAPI_OK;
}

int getName(GPU::NvPhysicalGpuHandle, char* name)
{
    constexpr char text[] = "GeForce GT 750M";
    std::copy_n(text, sizeof(text), name);
    return GPU::NVAPI_OK;
}

int getThermalSettings(GPU::NvPhysicalGpuHandle handle, std::uint32_t,
                       GPU::NV_GPU_THERMAL_SETTINGS_V1* settings)
{
    settings->count = 1;
    settings->sensor[0].target = GPU::NVAPI_THERMAL_TARGET_GPU;
    settings->sensor[0].currentTemp = handle == &gpu ? 61 : 0;
    return GPU::NVAPI_OK;
}

} // namespace

DRIVER_EXPORT void* nvapi_QueryInterface(std::uint32_t id)
{
    switch (id) {
    case 0x0150E828:
        return reinterpret_cast<void*>(&initialize);
    case 0xE5AC921F:
        return reinterpret_cast<void*>(&list);
    case 0xCEEE8E9F:
        return reinterpret_cast<void*>(&getName);
    case 0xE3640A56:
        return reinterpret_cast<void*>(&getThermalSettings);
    default:
        return nullptr;
    }
}
