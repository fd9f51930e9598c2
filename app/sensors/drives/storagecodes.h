#pragma once

#include <cstdint>

// The control codes of Windows' storage drivers, and the numbers that go with
// their records.
namespace StorageCodes {

constexpr std::uint32_t getVolumeDiskExtents = 0x00560000;
constexpr std::uint32_t queryProperty = 0x002D1400;
constexpr std::uint32_t smartGetVersion = 0x00074080;
constexpr std::uint32_t smartSendDriveCommand = 0x0007C084;
constexpr std::uint32_t smartReceiveDriveData = 0x0007C088;

constexpr std::uint32_t fixedDrive = 3; // a drive type
constexpr std::uint32_t usbBus = 7; // a bus type
constexpr std::uint32_t takesSmartCommands = 4; // a capability
constexpr std::uint32_t moreData = 234; // an error: the buffer is full, there is more

} // namespace StorageCodes
