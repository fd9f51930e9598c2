#include "macsim/run/dmitable.h"

#include <numeric>

#include <QCryptographicHash>

namespace macsim {

namespace {

// One structure: a formatted part whose string fields hold numbers, and the
// strings that they number, from 1.
class Structure {
public:
    Structure(quint8 type, quint16 handle)
    {
        byte(type);
        byte(0); // the length, set at the end
        word(handle);
    }

    void byte(quint8 value) { m_formatted.append(static_cast<char>(value)); }

    void word(quint16 value)
    {
        byte(static_cast<quint8>(value & 0xFF));
        byte(static_cast<quint8>(value >> 8));
    }

    void bytes(const QByteArray& values) { m_formatted.append(values); }

    void zeros(int count) { m_formatted.append(QByteArray(count, '\0')); }

    void text(const QString& value)
    {
        if (value.isEmpty()) {
            byte(0);
            return;
        }
        m_strings.append(value.toLatin1() + '\0');
        ++m_stringCount;
        byte(m_stringCount);
    }

    [[nodiscard]] QByteArray finished() const
    {
        QByteArray result = m_formatted;
        result[1] = static_cast<char>(m_formatted.size());
        // Without strings the area still holds two zero bytes.
        return result + (m_strings.isEmpty() ? QByteArray(1, '\0') : m_strings) + '\0';
    }

private:
    QByteArray m_formatted;
    QByteArray m_strings;
    quint8 m_stringCount = 0;
};

QByteArray firmware(const MachineDescription& machine)
{
    Structure structure(0, 0x0000);
    structure.text(machine.dmi.value(QStringLiteral("bios_vendor")));
    structure.text(machine.dmi.value(QStringLiteral("bios_version")));
    structure.word(0); // start segment
    structure.text(machine.dmi.value(QStringLiteral("bios_date")));
    structure.byte(0x7F); // 8 MB of ROM
    structure.zeros(8 + 2 + 2 + 2); // characteristics, releases
    return structure.finished();
}

QByteArray system(const MachineDescription& machine)
{
    Structure structure(1, 0x0001);
    structure.text(machine.dmi.value(QStringLiteral("sys_vendor")));
    structure.text(machine.dmi.value(QStringLiteral("product_name")));
    structure.text(machine.dmi.value(QStringLiteral("product_version")));
    structure.text(machine.dmi.value(QStringLiteral("product_serial")));
    structure.bytes(QCryptographicHash::hash(machine.name.toUtf8(), QCryptographicHash::Md5));
    structure.byte(0x06); // woken by the power switch
    structure.text(machine.dmi.value(QStringLiteral("product_sku")));
    structure.text(machine.dmi.value(QStringLiteral("product_family")));
    return structure.finished();
}

QByteArray board(const MachineDescription& machine)
{
    Structure structure(2, 0x0002);
    structure.text(machine.dmi.value(QStringLiteral("board_vendor")));
    structure.text(machine.dmi.value(QStringLiteral("board_name")));
    structure.text(machine.dmi.value(QStringLiteral("board_version")));
    structure.text(machine.dmi.value(QStringLiteral("board_serial")));
    structure.text(machine.dmi.value(QStringLiteral("board_asset_tag")));
    structure.byte(0x01); // hosting board
    structure.text(QString()); // place in the chassis
    structure.word(0x0003); // chassis handle
    structure.byte(0x0A); // motherboard
    structure.byte(0); // contained objects
    return structure.finished();
}

void appendNumber(QByteArray& bytes, quint64 value, int size)
{
    for (int shift = 0; shift < 8 * size; shift += 8) {
        bytes.append(static_cast<char>((value >> shift) & 0xFF));
    }
}

} // namespace

QByteArray dmiTable(const MachineDescription& machine)
{
    return firmware(machine) + system(machine) + board(machine) + Structure(127, 0x0004).finished();
}

QByteArray dmiEntryPoint(const QByteArray& table)
{
    constexpr int checksumPlace = 5;
    QByteArray entry("_SM3_");
    entry.append('\0'); // checksum, set at the end
    entry.append('\x18'); // length of this entry point
    entry.append(QByteArray::fromHex("030000")); // version 3.0
    entry.append('\x01'); // revision of the entry point
    entry.append('\0');
    appendNumber(entry, static_cast<quint64>(table.size()), 4);
    appendNumber(entry, 0xE0000, 8); // address, which nobody can look at
    const int sum = std::accumulate(entry.begin(), entry.end(), 0, [](int total, char byte) {
        return total + static_cast<quint8>(byte);
    });
    entry[checksumPlace] = static_cast<char>(-sum & 0xFF);
    return entry;
}

} // namespace macsim
