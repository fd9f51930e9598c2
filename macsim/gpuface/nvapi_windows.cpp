// The C function under which programs on Windows look up NVIDIA's driver, and those
// that it gives by their numbers.

#include "macsim/gpuface/gpuface.h"
#include "macsim/gpuface/handles.h"

namespace {

// As the library's publisher documents them.
constexpr int success = 0;
constexpr int failure = -1;
constexpr int deviceNotFound = -6;
constexpr std::uint32_t mostGpus = 64;
constexpr std::size_t longestName = 64;
constexpr std::uint32_t thermalSettingsVersion = 0x00010044;
constexpr std::int32_t gpuTarget = 1;

struct ThermalSettings {
    struct Sensor {
        std::int32_t controller;
        std::uint32_t lowest;
        std::uint32_t highest;
        std::uint32_t celsius;
        std::int32_t target;
    };

    std::uint32_t version;
    std::uint32_t count;
    Sensor sensors[3];
};
static_assert(sizeof(ThermalSettings) == (thermalSettingsVersion & 0xFFFF));

macsim::GpuFace& gpuFace()
{
    static macsim::GpuFace face;
    return face;
}

macsim::GpuHandles gpus;

int initialize() { return gpuFace().count() > 0 ? success : deviceNotFound; }

int list(void** handles, std::uint32_t* count)
{
    *count = gpuFace().count();
    if (*count > mostGpus) {
        return failure;
    }
    for (std::uint32_t i = 0; i < *count; ++i) {
        handles[i] = gpus.of(static_cast<std::uint8_t>(i));
    }
    return success;
}

int getName(void* gpu, char* name)
{
    const std::string text = gpuFace().name(gpus.numberOf(gpu), longestName);
    name[text.copy(name, text.size())] = '\0';
    return success;
}

int getThermalSettings(void* gpu, std::uint32_t, ThermalSettings* settings)
{
    const std::uint32_t celsius = gpuFace().temperature(gpus.numberOf(gpu));
    if (settings->version != thermalSettingsVersion || celsius == 0) {
        settings->count = 0;
        return failure;
    }
    settings->count = 1;
    settings->sensors[0] = { 0, 0, 127, celsius, gpuTarget };
    return success;
}

} // namespace

extern "C" __declspec(dllexport) void* nvapi_QueryInterface(std::uint32_t id)
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
