#include "app/gpu/provider_win_nvidia.h"

#include <algorithm>
#include <utility>

#include "app/gpu/driver_text.h"
#include "core/log/log.h"

namespace GPU {

ProviderWindowsNVIDIA::ProviderWindowsNVIDIA(std::unique_ptr<DriverLibrary> library,
                                             QObject* parent)
    : Provider(parent)
    , m_library(std::move(library))
{
}

bool ProviderWindowsNVIDIA::discoverGPUs()
{
    if (!m_isLoaded) {
        m_isLoaded = m_api.load(*m_library);
    }
    if (m_isLoaded && initialize()) {
        addGpus();
    }
    return getCount() > 0;
}

bool ProviderWindowsNVIDIA::initialize()
{
    std::call_once(m_initialized, [this] {
        constexpr int noImplementation = -3;
        m_initializeStatus
            = m_api.NvAPI_Initialize != nullptr ? m_api.NvAPI_Initialize() : noImplementation;
    });
    if (m_initializeStatus != NVAPI_OK) {
        LOG_ERR("NvAPI_Initialize failed");
    }
    return m_initializeStatus == NVAPI_OK;
}

void ProviderWindowsNVIDIA::addGpus()
{
    NVApi::Handles handles {};
    std::uint32_t count = 0;
    if (m_api.NvAPI_EnumPhysicalGPUs(handles.data(), &count) != NVAPI_OK) {
        LOG_ERR("NvAPI_EnumPhysicalGPUs failed");
        return;
    }
    LOG_INFO("NvAPI_EnumPhysicalGPUs {}", count);
    count = std::min(count, NVAPI_MAX_PHYSICAL_GPUS);
    for (std::uint32_t i = 0; i < count; ++i) {
        NVApi::Name name {};
        if (m_api.NvAPI_GPU_GetFullName != nullptr
            && m_api.NvAPI_GPU_GetFullName(handles[i], name.data()) == NVAPI_OK) {
            addGpu(driverText(name), handles[i]);
        }
    }
}

double ProviderWindowsNVIDIA::getTemperature(const Info* gpu)
{
    if (gpu == nullptr || m_api.NvAPI_GPU_GetThermalSettings == nullptr) {
        return 0.0;
    }
    NV_GPU_THERMAL_SETTINGS_V1 settings {};
    settings.version = NV_GPU_THERMAL_SETTINGS_V1::recordVersion;
    settings.count = NV_GPU_THERMAL_SETTINGS_V1::mostSensors;
    // The status is not looked at: required. A driver that fails leaves the record
    // without a sensor of the GPU's.
    m_api.NvAPI_GPU_GetThermalSettings(gpu->handle, NVAPI_THERMAL_TARGET_ALL, &settings);
    const auto count = std::min(settings.count, NV_GPU_THERMAL_SETTINGS_V1::mostSensors);
    const auto end = settings.sensor.begin() + count;
    const auto found = std::find_if(settings.sensor.begin(), end, [](const auto& sensor) {
        return sensor.target == NVAPI_THERMAL_TARGET_GPU;
    });
    return found == end ? 0.0 : found->currentTemp;
}

} // namespace GPU
