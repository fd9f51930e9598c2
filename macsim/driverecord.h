#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

// The records between the drive face and the simulator, one exchange for each
// connection. Numbers are little-endian. The first byte tells the request from
// those of other faces, which have small numbers, and of control clients, which are
// text.
//
// Request:  operation, 3 unused, data length (4), command (16), drive's name (32)
// Answer:   error number (4), data length (4), SCSI status, sense length, 6 unused,
//           sense (32); then the data
namespace macsim::driverecord {

constexpr std::uint8_t open = 0x10; // answered by an error number alone
constexpr std::uint8_t command = 0x11;

constexpr std::size_t commandSize = 16;
constexpr std::size_t nameSize = 32;
constexpr std::size_t senseSize = 32;
constexpr std::size_t mostData = 65536;

namespace place {
constexpr std::size_t dataLength = 4; // of both
constexpr std::size_t command = 8;
constexpr std::size_t name = 24;
constexpr std::size_t error = 0;
constexpr std::size_t status = 8;
constexpr std::size_t senseLength = 9;
constexpr std::size_t sense = 16;
} // namespace place

using Request = std::array<std::uint8_t, place::name + nameSize>;
using Answer = std::array<std::uint8_t, place::sense + senseSize>;

template <std::size_t size>
void putNumber(std::array<std::uint8_t, size>& record, std::size_t place, std::uint32_t number)
{
    for (std::size_t index = 0; index < sizeof(number); ++index) {
        record.at(place + index) = static_cast<std::uint8_t>(number >> (8 * index));
    }
}

template <std::size_t size>
[[nodiscard]] std::uint32_t numberAt(const std::array<std::uint8_t, size>& record,
                                     std::size_t place)
{
    std::uint32_t number = 0;
    for (std::size_t index = 0; index < sizeof(number); ++index) {
        number |= static_cast<std::uint32_t>(record.at(place + index)) << (8 * index);
    }
    return number;
}

// A longer name is cut, and then there is no such drive.
[[nodiscard]] inline Request request(std::uint8_t operation, const char* name)
{
    Request record {};
    record[0] = operation;
    std::memcpy(&record[place::name], name, strnlen(name, nameSize));
    return record;
}

} // namespace macsim::driverecord
