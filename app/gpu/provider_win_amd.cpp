#include "app/gpu/provider_win_amd.h"

#include <utility>

#include "app/gpu/provider_win_amd_p.h"

namespace GPU {

ProviderWindowsAMD::ProviderWindowsAMD(std::unique_ptr<DriverLibrary> library, QObject* parent)
    : Provider(parent)
    , m_library(std::move(library))
{
}

ProviderWindowsAMD::~ProviderWindowsAMD() = default;

void ProviderWindowsAMD::clear()
{
    Provider::clear();
    m_handles.clear();
    if (m_private) {
        m_private->forgetAdapters();
    }
}

bool ProviderWindowsAMD::discoverGPUs()
{
    if (!m_private) {
        m_private = std::make_unique<ProviderWindowsAMDPrivate>(*m_library);
    }
    if (m_private->initADL()) {
        const auto adapters = m_private->findAdapters();
        for (const auto& adapter : adapters) {
            m_handles.push_back(std::make_unique<AdapterHandle>(adapter.handle));
            addGpu(adapter.name, m_handles.back().get());
        }
    }
    return getCount() > 0;
}

double ProviderWindowsAMD::getTemperature(const Info* gpu)
{
    return gpu != nullptr && m_private
        ? m_private->getCoreTemperature(*static_cast<const AdapterHandle*>(gpu->handle))
        : 0.0;
}

} // namespace GPU
