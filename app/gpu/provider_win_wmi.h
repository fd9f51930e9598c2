#pragma once

#include <QStringList>

#include "app/gpu/provider.h"

namespace GPU {

// GPUs of which no more than their names is known: their temperatures come from
// the controller.
class ProviderWindowsWMI final : public Provider {
    Q_OBJECT

public:
    // The names as the management interface told them.
    explicit ProviderWindowsWMI(const QStringList& names, QObject* parent = nullptr);

    bool discoverGPUs() override;
    // Always 0.
    [[nodiscard]] double getTemperature(const Info* gpu) override;

private:
    const QStringList m_names;
};

} // namespace GPU
