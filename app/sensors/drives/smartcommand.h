#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "app/sensors/drives/atacommands.h"

// The records that Windows' storage driver takes and gives for ATA commands.
namespace SmartCommand {

constexpr std::size_t inputSize = 33;
constexpr std::size_t outputHeaderSize = 16; // what was read comes after it
constexpr std::size_t dataSize = 512;

using Input = std::array<std::uint8_t, inputSize>;
// Of a command that reads.
using ReadOutput = std::array<std::uint8_t, outputHeaderSize + dataSize>;
// Of a command that moves nothing.
using PlainOutput = std::array<std::uint8_t, outputHeaderSize + 1>;

// bufferSize is the number of bytes to be read.
[[nodiscard]] Input input(std::uint32_t bufferSize, const AtaRegisters& registers,
                          std::int32_t diskNumber);

} // namespace SmartCommand
