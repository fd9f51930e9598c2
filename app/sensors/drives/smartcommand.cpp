#include "app/sensors/drives/smartcommand.h"

#include <QtEndian>

namespace SmartCommand {

Input input(std::uint32_t bufferSize, const AtaRegisters& registers, std::int32_t diskNumber)
{
    constexpr std::size_t firstRegister = 4; // after the buffer size
    constexpr std::size_t driveNumber = 12;

    Input record {};
    qToLittleEndian(bufferSize, record.data());
    std::size_t place = firstRegister;
    for (const std::uint8_t value :
         { registers.features, registers.sectorCount, registers.sectorNumber, registers.cylinderLow,
           registers.cylinderHigh, registers.driveHead, registers.command }) {
        record.at(place) = value;
        ++place;
    }
    // The field is a byte; the driver goes by the handle.
    record[driveNumber] = static_cast<std::uint8_t>(diskNumber & 0xFF);
    return record;
}

} // namespace SmartCommand
