#include "smcd/fanholders.h"

namespace smcd {

void FanHolders::hold(ClientId client, const ControlBits& bits)
{
    Holder& holder = m_holders[client];
    holder.bits |= bits;
    holder.keeps = false;
    m_owed &= ~bits;
}

void FanHolders::clear(const ControlBits& bits)
{
    for (auto& [client, holder] : m_holders) {
        holder.bits &= ~bits;
    }
    m_owed &= ~bits;
}

void FanHolders::keep(ClientId client) { m_holders[client].keeps = true; }

void FanHolders::leave(ClientId client)
{
    const auto found = m_holders.find(client);
    if (found == m_holders.end()) {
        return;
    }
    const Holder gone = found->second;
    m_holders.erase(found);
    if (gone.keeps) {
        return;
    }
    ControlBits held;
    for (const auto& [other, holder] : m_holders) {
        held |= holder.bits;
    }
    m_owed |= gone.bits & ~held;
}

void FanHolders::leaveAll()
{
    while (!m_holders.empty()) {
        leave(m_holders.begin()->first);
    }
}

ControlBits FanHolders::atRisk() const
{
    ControlBits bits = m_owed;
    for (const auto& [client, holder] : m_holders) {
        if (!holder.keeps) {
            bits |= holder.bits;
        }
    }
    return bits;
}

} // namespace smcd
