#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include <QByteArray>

// What ATA drives answer, laid out by hand.
using DriveBlock = std::array<std::uint8_t, 512>;

inline void setWord(DriveBlock& block, std::size_t word, std::uint16_t value)
{
    block.at(2 * word) = static_cast<std::uint8_t>(value & 0xFF);
    block.at(2 * word + 1) = static_cast<std::uint8_t>(value >> 8);
}

// A text of the given size in bytes, filled up with blanks; the two bytes of each
// word stand the other way round.
inline void setAtaText(DriveBlock& block, std::size_t place, int size, const QByteArray& text)
{
    const QByteArray whole = text.leftJustified(size, ' ', true);
    for (int index = 0; index < size; index += 2) {
        block.at(place + static_cast<std::size_t>(index))
            = static_cast<std::uint8_t>(whole.at(index + 1));
        block.at(place + static_cast<std::size_t>(index) + 1)
            = static_cast<std::uint8_t>(whole.at(index));
    }
}

constexpr std::uint16_t solidState = 1;
constexpr std::uint16_t turnsAt5400 = 5400;

// The answer to IDENTIFY DEVICE of a drive with its self-monitoring on.
inline DriveBlock identifyBlock(const QByteArray& model, const QByteArray& serial,
                                std::uint16_t rotationRate = turnsAt5400)
{
    DriveBlock block {};
    setAtaText(block, 20, 20, serial);
    setAtaText(block, 46, 8, "FW1.0");
    setAtaText(block, 54, 40, model);
    setWord(block, 85, 0x0001);
    setWord(block, 87, 0x4000);
    setWord(block, 217, rotationRate);
    return block;
}

// One record of the attribute table, with its first raw byte; the further ones hold
// what a drive might put there.
inline void setAttribute(DriveBlock& block, std::size_t record, std::uint8_t attribute,
                         std::uint8_t rawByte)
{
    const std::size_t place = 2 + 12 * record;
    block.at(place) = attribute;
    block.at(place + 5) = rawByte;
    block.at(place + 7) = 0x17;
    block.at(place + 9) = 0x55;
}

// The answer to SMART READ DATA of a drive with these degrees.
inline DriveBlock smartBlock(std::uint8_t celsius)
{
    DriveBlock block {};
    setWord(block, 0, 0x0010);
    setAttribute(block, 0, 1, 100);
    setAttribute(block, 1, 9, 77);
    setAttribute(block, 2, 194, celsius);
    return block;
}
