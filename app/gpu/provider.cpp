#include "app/gpu/provider.h"

namespace GPU {

Provider::Provider(QObject* parent)
    : QObject(parent)
{
}

Provider::~Provider() = default;

void Provider::clear() { m_gpus.clear(); }

int Provider::getCount() const { return static_cast<int>(m_gpus.size()); }

Info* Provider::getGpu(int index) const
{
    return index >= 0 && index < getCount() ? m_gpus[static_cast<std::size_t>(index)].get()
                                            : nullptr;
}

void Provider::addGpu(const QString& name, void* handle)
{
    m_gpus.push_back(std::make_unique<Info>(Info { name, this, handle }));
}

} // namespace GPU
