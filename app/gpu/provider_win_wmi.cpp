#include "app/gpu/provider_win_wmi.h"

namespace GPU {

ProviderWindowsWMI::ProviderWindowsWMI(const QStringList& names, QObject* parent)
    : Provider(parent)
    , m_names(names)
{
}

bool ProviderWindowsWMI::discoverGPUs()
{
    for (const QString& name : m_names) {
        addGpu(name, nullptr);
    }
    return getCount() > 0;
}

double ProviderWindowsWMI::getTemperature(const Info* /*gpu*/) { return 0.0; }

} // namespace GPU
