#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include <QByteArray>

namespace macsim {

// One key of the controller, with what faults and control requests did to it.
struct KeyEntry {
    QByteArray name; // four bytes
    QByteArray type; // four bytes
    quint8 attributes = 0;
    QByteArray value; // 1 to 32 bytes

    bool vanished = false; // gone from the table
    bool failing = false; // listed, but can't be read
    bool frozen = false; // the machine no longer changes the value
    std::optional<quint8> claimedLength; // what the key's info says instead of the truth

    [[nodiscard]] bool isReadable() const { return (attributes & readableBit) != 0; }
    [[nodiscard]] bool isWritable() const { return (attributes & writableBit) != 0; }

    static constexpr quint8 readableBit = 0x80;
    static constexpr quint8 writableBit = 0x40;
};

// The controller's keys, in ascending byte order of their names. Vanished keys
// keep their entry but are neither found, listed nor counted.
class KeyTable {
public:
    // Sorts the entries. Names must be unique.
    explicit KeyTable(std::vector<KeyEntry> entries = {});

    [[nodiscard]] const KeyEntry* find(const QByteArray& name) const;
    [[nodiscard]] KeyEntry* find(const QByteArray& name);
    // Finds vanished keys too.
    [[nodiscard]] KeyEntry* findAny(const QByteArray& name);
    // Null when the index is beyond the table.
    [[nodiscard]] const KeyEntry* at(quint32 index) const;
    [[nodiscard]] quint32 size() const;

    void setVanished(KeyEntry& entry, bool vanished);
    // Takes back what faults did; frozen keys stay frozen.
    void clearFaults();

private:
    std::vector<KeyEntry> m_entries;
    std::vector<std::size_t> m_visible; // indexes of the entries that are not vanished

    void listVisible();
};

} // namespace macsim
