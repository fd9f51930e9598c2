#pragma once

#include <memory>
#include <vector>

#include "app/gpu/driver_library.h"
#include "app/gpu/provider.h"

namespace GPU {

struct AdapterHandle;
class ProviderWindowsAMDPrivate;

// AMD's GPUs through the driver's own library.
class ProviderWindowsAMD final : public Provider {
    Q_OBJECT

public:
    explicit ProviderWindowsAMD(std::unique_ptr<DriverLibrary> library, QObject* parent = nullptr);
    // Unloads the library.
    ~ProviderWindowsAMD() override;

    void clear() override;
    bool discoverGPUs() override;
    [[nodiscard]] double getTemperature(const Info* gpu) override;

private:
    const std::unique_ptr<DriverLibrary> m_library;
    std::unique_ptr<ProviderWindowsAMDPrivate> m_private; // made at the first discovery
    std::vector<std::unique_ptr<AdapterHandle>> m_handles;
};

} // namespace GPU
