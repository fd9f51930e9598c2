#include "app/gpu/provider_nvml_api.h"

#include "core/log/log.h"

namespace GPU {

bool NvmlApi::load(DriverLibrary& library)
{
    constexpr const char* fileName = "libnvidia-ml.so.1";
    if (!library.load(fileName)) {
        LOG_INFO("There is no {}", fileName);
        return false;
    }
    if (library.resolve("nvmlInit_v2", nvmlInit_v2) && library.resolve("nvmlShutdown", nvmlShutdown)
        && library.resolve("nvmlDeviceGetCount_v2", nvmlDeviceGetCount_v2)
        && library.resolve("nvmlDeviceGetHandleByIndex_v2", nvmlDeviceGetHandleByIndex_v2)
        && library.resolve("nvmlDeviceGetName", nvmlDeviceGetName)
        && library.resolve("nvmlDeviceGetTemperature", nvmlDeviceGetTemperature)) {
        LOG_INFO("{} loaded", fileName);
        return true;
    }
    LOG_WARN("{} lacks a function", fileName);
    library.unload();
    return false;
}

} // namespace GPU
