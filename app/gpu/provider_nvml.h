#pragma once

#include <memory>

#include "app/gpu/provider.h"
#include "app/gpu/provider_nvml_api.h"

namespace GPU {

// NVIDIA's GPUs on Linux, through the management library of the vendor's own
// driver.
class ProviderNvml final : public Provider {
    Q_OBJECT

public:
    explicit ProviderNvml(std::unique_ptr<DriverLibrary> library, QObject* parent = nullptr);
    // Unloads the library.
    ~ProviderNvml() override;

    bool discoverGPUs() override;
    [[nodiscard]] double getTemperature(const Info* gpu) override;

private:
    [[nodiscard]] bool initialize();
    void addGpus();

    const std::unique_ptr<DriverLibrary> m_library;
    NvmlApi m_api;
    bool m_isLoaded = false;
    bool m_isInitialized = false;
};

} // namespace GPU
