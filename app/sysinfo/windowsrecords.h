#pragma once

#include <array>
#include <cstdint>
#include <iosfwd>
#include <vector>

#include <QByteArray>
#include <QString>

// What the records say in which Windows and the processor describe the machine.
// The functions take the records' contents, so that they can be tried on any
// machine's.
namespace WindowsRecords {

// The kinds of entries in the list of logical processors.
inline constexpr std::uint32_t relationCore = 0;
inline constexpr std::uint32_t relationPackage = 3;

// The number of cores among the entries' kinds, at most 255. Every kind but a core
// and a package is reported to messages. It is required, and no sign of trouble:
// every real list has such entries.
[[nodiscard]] std::uint8_t coreCount(const std::vector<std::uint32_t>& relations,
                                     std::ostream& messages);

// The brand in the registers EAX, EBX, ECX and EDX of CPUID's leaves 0x80000002,
// 0x80000003 and 0x80000004, as it stands there.
[[nodiscard]] QString processorBrand(const std::array<std::uint32_t, 12>& registers);

// The system's name, such as "Windows 10 x64". isWow64: the program, which has 32
// bits, runs on a system of 64.
[[nodiscard]] QString operatingSystemName(const QString& productVersion, bool isWow64);

// The management interface's firmware data as one block with the header that SMBIOS
// reads: not every Windows puts it before the structures. The versions are 0 where
// it lacks.
[[nodiscard]] QByteArray firmwareBlock(const QByteArray& managementData);

} // namespace WindowsRecords
