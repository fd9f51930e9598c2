#pragma once

#include <cstdint>

// The registers of an ATA command.
struct AtaRegisters {
    std::uint8_t features = 0;
    std::uint8_t sectorCount = 0;
    std::uint8_t sectorNumber = 0;
    std::uint8_t cylinderLow = 0;
    std::uint8_t cylinderHigh = 0;
    std::uint8_t driveHead = 0;
    std::uint8_t command = 0;
};

// The commands that drives are asked with, on every system.
namespace AtaCommands {

constexpr AtaRegisters identifyDevice { 0x00, 1, 1, 0x00, 0x00, 0xA0, 0xEC };
constexpr AtaRegisters smartReadData { 0xD0, 1, 1, 0x4F, 0xC2, 0xA0, 0xB0 };
constexpr AtaRegisters smartEnable { 0xD8, 1, 1, 0x4F, 0xC2, 0xA0, 0xB0 };
// Answers in the sector count and moves nothing.
constexpr AtaRegisters checkPowerMode { 0x00, 0, 0, 0x00, 0x00, 0xA0, 0xE5 };

} // namespace AtaCommands
