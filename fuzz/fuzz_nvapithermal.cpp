#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "app/gpu/provider_win_nvidia.h"
#include "tests/gpu/fakenvapi.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

// The bytes are a driver's answers: how many GPUs there are, a record of thermal
// sensors, and a name.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::uint32_t count = 0;
    GPU::NV_GPU_THERMAL_SETTINGS_V1 settings {};
    if (size < sizeof(count) + sizeof(settings)) {
        return 0;
    }
    std::memcpy(&count, data, sizeof(count));
    std::memcpy(&settings, data + sizeof(count), sizeof(settings));
    const std::size_t used = sizeof(count) + sizeof(settings);

    FakeNvApi driver;
    driver.add(std::string(reinterpret_cast<const char*>(data + used), size - used));
    driver.claimedCount = count;
    driver.sensorCount = settings.count;
    driver.sensors.assign(settings.sensor.begin(), settings.sensor.end());

    FakeLoader loader;
    loader.libraries["nvapi.dll"] = FakeNvApi::functions();
    GPU::ProviderWindowsNVIDIA provider(loader.make());
    const bool found = provider.discoverGPUs();
    if (found != (count > 0)) {
        std::abort();
    }
    if (!found) {
        return 0;
    }
    const GPU::Info* gpu = provider.getGpu(0);
    const double celsius = provider.getTemperature(gpu);
    const bool isInTheRecord
        = std::any_of(settings.sensor.begin(), settings.sensor.end(),
                      [celsius](const auto& sensor) { return sensor.currentTemp == celsius; });
    if (gpu->name.size() > 64 || (celsius != 0.0 && !isInTheRecord)) {
        std::abort();
    }
    return 0;
}
