#pragma once

#include <memory>
#include <vector>

#include <QByteArray>
#include <QStringList>

#include "app/gpu/provider.h"

namespace GPU {

// AMD's GPUs on Linux: the kernel's driver shows their temperatures as files. A GPU
// that the kernel has put to sleep isn't read, which would wake it; its last
// temperature stays.
class ProviderHwmon final : public Provider {
    Q_OBJECT

public:
    // pciIdPaths: where the file of PCI identifiers may lie, which names the GPUs.
    explicit ProviderHwmon(const QStringList& pciIdPaths, QObject* parent = nullptr);

    void clear() override;
    bool discoverGPUs() override;
    [[nodiscard]] double getTemperature(const Info* gpu) override;

private:
    // A record's handle.
    struct Chip {
        QByteArray temperatureFile;
        QByteArray runtimeStatusFile;
        double celsius = 0.0; // as it was read last
    };

    const QStringList m_pciIdPaths;
    std::vector<std::unique_ptr<Chip>> m_chips;
};

} // namespace GPU
