// NVIDIA's driver library on Linux for tests: a machine with one GPU of 61
// degrees.

#include <algorithm>

#include "app/gpu/provider_nvml_api.h"
#include "tests/gpu/drivers/export.h"

namespace {

int gpu = 0; // its address is the handle

} // namespace

DRIVER_EXPORT int nvmlInit_v2() { return GPU::NVML_SUCCESS; }

DRIVER_EXPORT int nvmlShutdown() { return GPU::NVML_SUCCESS; }

DRIVER_EXPORT int nvmlDeviceGetCount_v2(unsigned* count)
{
    *count = 1;
    return GPU::NVML_SUCCESS;
}

DRIVER_EXPORT int nvmlDeviceGetHandleByIndex_v2(unsigned, GPU::nvmlDevice* device)
{
    *device = &gpu;
    return GPU::NVML_SUCCESS;
}

DRIVER_EXPORT int nvmlDeviceGetName(GPU::nvmlDevice, char* name, unsigned length)
{
    constexpr char text[] = "GeForce GT 750M";
    std::copy_n(text, std::min<std::size_t>(length, sizeof(text)), name);
    return GPU::NVML_SUCCESS;
}

DRIVER_EXPORT int nvmlDeviceGetTemperature(GPU::nvmlDevice device, int, unsigned* celsius)
{
    *celsius = device == &gpu ? 61 : 0;
    return GPU::NVML_SUCCESS;
}
