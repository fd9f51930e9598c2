#include "app/gpu/provider_win.h"

#include <utility>

namespace GPU {

ProviderWindows::ProviderWindows(std::unique_ptr<Provider> amd, std::unique_ptr<Provider> nvidia,
                                 std::unique_ptr<Provider> names, QObject* parent)
    : Provider(parent)
    , m_amd(adopt(std::move(amd)))
    , m_nvidia(adopt(std::move(nvidia)))
    , m_names(adopt(std::move(names)))
{
}

Provider* ProviderWindows::adopt(std::unique_ptr<Provider> provider)
{
    provider->setParent(this);
    connect(provider.get(), &Provider::gpuListReloadRequired, this,
            &Provider::gpuListReloadRequired);
    return provider.release();
}

void ProviderWindows::clear()
{
    for (Provider* provider : { m_amd, m_nvidia, m_names }) {
        provider->clear();
    }
}

int ProviderWindows::getCount() const
{
    return m_amd->getCount() + m_nvidia->getCount() + m_names->getCount();
}

Info* ProviderWindows::getGpu(int index) const
{
    const int amdCount = m_amd->getCount();
    const int nvidiaCount = m_nvidia->getCount();
    if (amdCount + nvidiaCount == 0) {
        return m_names->getGpu(index);
    }
    return index < amdCount ? m_amd->getGpu(index) : m_nvidia->getGpu(index - amdCount);
}

bool ProviderWindows::discoverGPUs()
{
    if (getCount() == 0) {
        const bool byAmd = m_amd->discoverGPUs();
        const bool byNvidia = m_nvidia->discoverGPUs();
        if (!byAmd && !byNvidia) {
            m_names->discoverGPUs();
        }
    }
    return getCount() > 0;
}

double ProviderWindows::getTemperature(const Info* gpu)
{
    return gpu != nullptr ? gpu->provider->getTemperature(gpu) : 0.0;
}

} // namespace GPU
