#include "macsim/model/driveblocks.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>

namespace macsim {

namespace {

constexpr int blockSize = 512;

void setByte(QByteArray& block, int place, int value)
{
    block[place] = static_cast<char>(static_cast<quint8>(value & 0xFF));
}

void setWord(QByteArray& block, int word, int value)
{
    setByte(block, 2 * word, value);
    setByte(block, 2 * word + 1, value >> 8);
}

// Texts are filled up with blanks, the two bytes of each word turned round.
void setText(QByteArray& block, int firstWord, int words, const QString& text)
{
    const QByteArray bytes = text.toLatin1().leftJustified(2 * words, ' ', true);
    for (int word = 0; word < words; ++word) {
        setWord(block, firstWord + word,
                (static_cast<quint8>(bytes.at(2 * word)) << 8)
                    | static_cast<quint8>(bytes.at(2 * word + 1)));
    }
}

// The last byte makes the sum of all bytes 0.
void addChecksum(QByteArray& block)
{
    int sum = 0;
    for (int place = 0; place < blockSize - 1; ++place) {
        sum += static_cast<quint8>(block.at(place));
    }
    setByte(block, blockSize - 1, -sum);
}

struct Attribute {
    int number;
    int normalized;
    int worst;
    std::initializer_list<int> raw; // bytes
};

void setAttribute(QByteArray& block, int record, const Attribute& attribute)
{
    constexpr int recordSize = 12;
    constexpr int keptByTheDrive = 0x0032; // flags
    int place = 2 + record * recordSize;
    setByte(block, place, attribute.number);
    setByte(block, place + 1, keptByTheDrive);
    setByte(block, place + 2, keptByTheDrive >> 8);
    setByte(block, place + 3, attribute.normalized);
    setByte(block, place + 4, attribute.worst);
    place += 5;
    for (const int byte : attribute.raw) {
        setByte(block, place, byte);
        ++place;
    }
}

int wholeDegrees(double celsius)
{
    return static_cast<int>(std::lround(std::clamp(celsius, 1.0, 255.0)));
}

} // namespace

QByteArray identifyBlock(const DriveDescription& drive, bool isSmartEnabled)
{
    constexpr int smart = 0x0001;
    constexpr int valid = 0x4000;
    QByteArray block(blockSize, '\0');
    setWord(block, 0, 0x0040); // a fixed drive
    setText(block, 10, 10, drive.serial);
    setText(block, 23, 4, drive.firmware);
    setText(block, 27, 20, drive.model);
    setWord(block, 49, 0x0300);
    setWord(block, 80, 0x01F0); // versions of the standard
    setWord(block, 82, smart);
    setWord(block, 83, valid);
    setWord(block, 84, valid);
    setWord(block, 85, isSmartEnabled ? smart : 0);
    setWord(block, 87, valid);
    setWord(block, 217, drive.rotation);
    setByte(block, 510, 0xA5);
    addChecksum(block);
    return block;
}

QByteArray smartBlock(const DriveDescription& drive, double celsius, double highest)
{
    QByteArray block(blockSize, '\0');
    setWord(block, 0, 0x0010);
    setAttribute(block, 0, { 1, 117, 99, { 0x40, 0x9C, 0x3B, 0x07 } });
    setAttribute(block, 1, { 5, 100, 100, { 0 } });
    setAttribute(block, 2, { 9, 91, 91, { 0x5E, 0x20 } });
    setAttribute(block, 3, { 12, 97, 97, { 0x9D, 0x0D } });
    if (drive.attribute != 0) {
        const int now = wholeDegrees(celsius);
        setAttribute(block, 4,
                     { drive.attribute,
                       100 - now,
                       100 - wholeDegrees(highest),
                       { now, 0, 17, 0, wholeDegrees(highest), 0 } });
    }
    setAttribute(block, 5, { 197, 100, 100, { 0 } });
    setAttribute(block, 6, { 199, 200, 200, { 0 } });
    addChecksum(block);
    return block;
}

} // namespace macsim
