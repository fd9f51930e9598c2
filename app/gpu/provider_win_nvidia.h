#pragma once

#include <memory>
#include <mutex>

#include "app/gpu/provider.h"
#include "app/gpu/provider_win_nvidia_api.h"

namespace GPU {

// NVIDIA's GPUs through the driver's own library, which stays loaded.
class ProviderWindowsNVIDIA final : public Provider {
    Q_OBJECT

public:
    explicit ProviderWindowsNVIDIA(std::unique_ptr<DriverLibrary> library,
                                   QObject* parent = nullptr);

    bool discoverGPUs() override;
    [[nodiscard]] double getTemperature(const Info* gpu) override;

private:
    [[nodiscard]] bool initialize();
    void addGpus();

    const std::unique_ptr<DriverLibrary> m_library;
    NVApi m_api;
    bool m_isLoaded = false;
    std::once_flag m_initialized; // there is one such provider in a process
    int m_initializeStatus = NVAPI_OK;
};

} // namespace GPU
