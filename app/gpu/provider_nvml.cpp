#include "app/gpu/provider_nvml.h"

#include <algorithm>
#include <utility>

#include "app/gpu/driver_text.h"
#include "core/log/log.h"

namespace GPU {

namespace {

// Beyond any real machine.
constexpr unsigned mostGpus = 64;

} // namespace

ProviderNvml::ProviderNvml(std::unique_ptr<DriverLibrary> library, QObject* parent)
    : Provider(parent)
    , m_library(std::move(library))
{
}

ProviderNvml::~ProviderNvml()
{
    if (m_isInitialized) {
        m_api.nvmlShutdown();
    }
    if (m_isLoaded) {
        m_library->unload();
    }
}

bool ProviderNvml::discoverGPUs()
{
    if (!m_isLoaded) {
        m_isLoaded = m_api.load(*m_library);
    }
    if (m_isLoaded && initialize()) {
        addGpus();
    }
    return getCount() > 0;
}

// Fails on every machine that has the library and no GPU of NVIDIA's.
bool ProviderNvml::initialize()
{
    if (!m_isInitialized) {
        const int status = m_api.nvmlInit_v2();
        m_isInitialized = status == NVML_SUCCESS;
        if (!m_isInitialized) {
            LOG_WARN("nvmlInit failed with {}", status);
        }
    }
    return m_isInitialized;
}

void ProviderNvml::addGpus()
{
    unsigned count = 0;
    if (m_api.nvmlDeviceGetCount_v2(&count) != NVML_SUCCESS) {
        LOG_ERR("nvmlDeviceGetCount failed");
        return;
    }
    LOG_INFO("nvmlDeviceGetCount {}", count);
    count = std::min(count, mostGpus);
    for (unsigned i = 0; i < count; ++i) {
        nvmlDevice device = nullptr;
        NvmlApi::Name name {};
        if (m_api.nvmlDeviceGetHandleByIndex_v2(i, &device) == NVML_SUCCESS
            && m_api.nvmlDeviceGetName(device, name.data(), static_cast<unsigned>(name.size()))
                == NVML_SUCCESS) {
            addGpu(driverText(name), device);
        }
    }
}

double ProviderNvml::getTemperature(const Info* gpu)
{
    unsigned celsius = 0;
    return gpu != nullptr && m_isInitialized
            && m_api.nvmlDeviceGetTemperature(gpu->handle, NVML_TEMPERATURE_GPU, &celsius)
                == NVML_SUCCESS
        ? celsius
        : 0.0;
}

} // namespace GPU
