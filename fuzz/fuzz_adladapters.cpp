#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "app/gpu/provider_win_amd.h"
#include "tests/gpu/fakeadl.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

// What stands before the list.
struct Header {
    std::int32_t count; // as the driver claims it
    std::int32_t primary;
    std::int32_t overdriveVersion;
    std::int32_t thousandths;
    GPU::ADLSingleSensorData edge;
};

} // namespace

// The bytes are a driver's answers: numbers, and then its list of adapters.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Header header {};
    if (size < sizeof(header)) {
        return 0;
    }
    std::memcpy(&header, data, sizeof(header));
    data += sizeof(header);
    size -= sizeof(header);

    FakeAdl driver;
    driver.adapters.resize((size + sizeof(GPU::AdapterInfo) - 1) / sizeof(GPU::AdapterInfo));
    if (size > 0) {
        std::memcpy(static_cast<void*>(driver.adapters.data()), data, size);
    }
    driver.count = header.count;
    driver.primary = header.primary;
    driver.thousandths = header.thousandths;
    driver.log.sensors[GPU::ADL_PMLOG_TEMPERATURE_EDGE] = header.edge;
    for (int i = 0; i < static_cast<int>(driver.adapters.size()); ++i) {
        driver.capabilities[i].version = header.overdriveVersion;
    }

    FakeLoader loader;
    loader.libraries["atiadlxx.dll"] = FakeAdl::functions();
    GPU::ProviderWindowsAMD provider(loader.make());
    const bool found = provider.discoverGPUs();
    const int count = provider.getCount();
    if (found != (count > 0) || count > static_cast<int>(driver.adapters.size())) {
        std::abort();
    }
    for (int i = 0; i < count; ++i) {
        const GPU::Info* gpu = provider.getGpu(i);
        static_cast<void>(provider.getTemperature(gpu));
        if (gpu->name.size() > 256) {
            std::abort();
        }
    }
    return 0;
}
