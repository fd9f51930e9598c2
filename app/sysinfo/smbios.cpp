#include "app/sysinfo/smbios.h"

#include <algorithm>
#include <cstring>

#include <QtEndian>

namespace {

constexpr int blockHeaderSize = 8;
constexpr int structureHeaderSize = 4; // type, length of the formatted part, handle

constexpr std::uint8_t typeBios = 0;
constexpr std::uint8_t typeSystem = 1;
constexpr std::uint8_t typeBaseboard = 2;
constexpr std::uint8_t typeEnd = 127;
constexpr std::uint8_t endLength = 4;

std::uint8_t byteAt(const QByteArray& bytes, int offset)
{
    return static_cast<std::uint8_t>(bytes.at(offset));
}

} // namespace

// One structure: the formatted part and the texts after it.
class SMBIOS::Structure {
public:
    Structure(const QByteArray& formatted, const QByteArray& texts)
        : m_formatted(formatted)
        , m_texts(texts)
    {
    }

    [[nodiscard]] std::uint8_t type() const { return byteAt(m_formatted, 0); }

    // The text whose number stands at the offset of the formatted part: empty for
    // the number 0 and for one that has no text, absent when the formatted part
    // ends before the offset.
    [[nodiscard]] Text text(int offset) const
    {
        if (offset >= m_formatted.size()) {
            return std::nullopt;
        }
        return textOfNumber(byteAt(m_formatted, offset));
    }

    [[nodiscard]] std::optional<std::array<std::uint8_t, 16>> uuid(int offset) const
    {
        std::array<std::uint8_t, 16> result {};
        if (offset + static_cast<int>(result.size()) > m_formatted.size()) {
            return std::nullopt;
        }
        std::memcpy(result.data(), m_formatted.constData() + offset, result.size());
        return result;
    }

private:
    [[nodiscard]] QString textOfNumber(std::uint8_t number) const
    {
        int begin = 0;
        for (int current = 1;; ++current) {
            const int end = m_texts.indexOf('\0', begin);
            // A text that the end of the data cuts off is not taken for a whole one.
            if (end < 0) {
                return QLatin1String("");
            }
            if (current == number) {
                return QString::fromLatin1(m_texts.constData() + begin, end - begin);
            }
            begin = end + 1;
        }
    }

    const QByteArray m_formatted;
    const QByteArray m_texts;
};

SMBIOS::SMBIOS(const QByteArray& block)
{
    if (block.size() < blockHeaderSize) {
        return;
    }
    m_majorVersion = byteAt(block, 1);
    m_minorVersion = byteAt(block, 2);
    m_dmiRevision = byteAt(block, 3);
    const auto told = qFromLittleEndian<quint32>(block.constData() + 4);
    const auto present = static_cast<quint32>(block.size() - blockHeaderSize);
    readStructures(block.mid(blockHeaderSize, static_cast<int>(std::min(told, present))));
}

void SMBIOS::readStructures(const QByteArray& structures)
{
    int begin = 0;
    while (structures.size() - begin >= structureHeaderSize) {
        const std::uint8_t length = byteAt(structures, begin + 1);
        if (length < structureHeaderSize || length > structures.size() - begin) {
            return;
        }
        const int textsBegin = begin + length;
        const int terminator = structures.indexOf(QByteArray(2, '\0'), textsBegin);
        const int end = terminator < 0 ? structures.size() : terminator + 2;
        readStructure(
            Structure(structures.mid(begin, length), structures.mid(textsBegin, end - textsBegin)));
        if (byteAt(structures, begin) == typeEnd && length == endLength) {
            return;
        }
        begin = end;
    }
}

void SMBIOS::readStructure(const Structure& structure)
{
    switch (structure.type()) {
    case typeBios:
        m_bios.vendor = structure.text(4);
        m_bios.version = structure.text(5);
        m_bios.releaseDate = structure.text(8);
        break;
    case typeSystem:
        m_system.manufacturer = structure.text(4);
        m_system.product = structure.text(5);
        m_system.version = structure.text(6);
        m_system.serialNumber = structure.text(7);
        m_system.uuid = structure.uuid(8);
        m_system.sku = structure.text(0x19);
        m_system.family = structure.text(0x1A);
        break;
    case typeBaseboard:
        m_baseboard.manufacturer = structure.text(4);
        m_baseboard.product = structure.text(5);
        m_baseboard.version = structure.text(6);
        m_baseboard.serialNumber = structure.text(7);
        m_baseboard.assetTag = structure.text(8);
        break;
    default:
        break;
    }
}
