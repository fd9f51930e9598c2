#include "macsim/model/keytable.h"

#include <algorithm>
#include <utility>

namespace macsim {

KeyTable::KeyTable(std::vector<KeyEntry> entries)
    : m_entries(std::move(entries))
{
    std::sort(m_entries.begin(), m_entries.end(),
              [](const KeyEntry& left, const KeyEntry& right) { return left.name < right.name; });
    listVisible();
}

void KeyTable::listVisible()
{
    m_visible.clear();
    for (std::size_t index = 0; index < m_entries.size(); ++index) {
        if (!m_entries[index].vanished) {
            m_visible.push_back(index);
        }
    }
}

KeyEntry* KeyTable::findAny(const QByteArray& name)
{
    const auto found = std::lower_bound(
        m_entries.begin(), m_entries.end(), name,
        [](const KeyEntry& entry, const QByteArray& wanted) { return entry.name < wanted; });
    return found != m_entries.end() && found->name == name ? &*found : nullptr;
}

KeyEntry* KeyTable::find(const QByteArray& name)
{
    KeyEntry* entry = findAny(name);
    return entry != nullptr && !entry->vanished ? entry : nullptr;
}

const KeyEntry* KeyTable::find(const QByteArray& name) const
{
    const auto found = std::lower_bound(
        m_entries.begin(), m_entries.end(), name,
        [](const KeyEntry& entry, const QByteArray& wanted) { return entry.name < wanted; });
    return found != m_entries.end() && found->name == name && !found->vanished ? &*found : nullptr;
}

const KeyEntry* KeyTable::at(quint32 index) const
{
    return index < m_visible.size() ? &m_entries[m_visible[index]] : nullptr;
}

quint32 KeyTable::size() const { return static_cast<quint32>(m_visible.size()); }

void KeyTable::setVanished(KeyEntry& entry, bool vanished)
{
    entry.vanished = vanished;
    listVisible();
}

void KeyTable::clearFaults()
{
    for (KeyEntry& entry : m_entries) {
        entry.vanished = false;
        entry.failing = false;
        entry.claimedLength.reset();
    }
    listVisible();
}

} // namespace macsim
