#pragma once

#include <memory>

#include <QStringList>

#include "app/gpu/provider.h"

namespace GPU {

// The provider that the program holds: a facade over one for each vendor's driver
// and one that knows names only, which is asked when the drivers know no GPU.
class ProviderWindows final : public Provider {
    Q_OBJECT

public:
    // With the providers of this system. The names are those of the display
    // devices, as the system's own records have them.
    [[nodiscard]] static std::unique_ptr<ProviderWindows> create(const QStringList& deviceNames);

    ProviderWindows(std::unique_ptr<Provider> amd, std::unique_ptr<Provider> nvidia,
                    std::unique_ptr<Provider> names, QObject* parent = nullptr);

    void clear() override;
    [[nodiscard]] int getCount() const override;
    [[nodiscard]] Info* getGpu(int index) const override;
    // Does nothing but answer while GPUs are known.
    bool discoverGPUs() override;
    [[nodiscard]] double getTemperature(const Info* gpu) override;

private:
    Provider* adopt(std::unique_ptr<Provider> provider);

    Provider* const m_amd; // children
    Provider* const m_nvidia;
    Provider* const m_names;
};

} // namespace GPU
