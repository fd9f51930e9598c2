// The C functions under which programs on Linux look up the management library of
// NVIDIA's driver.

#include "macsim/gpuface/gpuface.h"
#include "macsim/gpuface/handles.h"

#define GPUFACE_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

// What the functions give back, as the library's publisher documents it.
constexpr int success = 0;
constexpr int invalidArgument = 2;
constexpr int driverNotLoaded = 9;
constexpr int unknownError = 999;

macsim::GpuFace& gpuFace()
{
    static macsim::GpuFace face;
    return face;
}

macsim::GpuHandles devices;

} // namespace

GPUFACE_EXPORT int nvmlInit_v2() { return gpuFace().count() > 0 ? success : driverNotLoaded; }

GPUFACE_EXPORT int nvmlShutdown() { return success; }

GPUFACE_EXPORT int nvmlDeviceGetCount_v2(unsigned* count)
{
    *count = gpuFace().count();
    return success;
}

GPUFACE_EXPORT int nvmlDeviceGetHandleByIndex_v2(unsigned index, void** device)
{
    if (index >= gpuFace().count()) {
        return invalidArgument;
    }
    *device = devices.of(static_cast<std::uint8_t>(index));
    return success;
}

GPUFACE_EXPORT int nvmlDeviceGetName(void* device, char* name, unsigned length)
{
    if (length == 0) {
        return invalidArgument;
    }
    const std::string text = gpuFace().name(devices.numberOf(device), length);
    name[text.copy(name, text.size())] = '\0';
    return success;
}

GPUFACE_EXPORT int nvmlDeviceGetTemperature(void* device, int sensor, unsigned* celsius)
{
    if (sensor != 0) {
        return invalidArgument;
    }
    *celsius = gpuFace().temperature(devices.numberOf(device));
    return *celsius > 0 ? success : unknownError;
}
