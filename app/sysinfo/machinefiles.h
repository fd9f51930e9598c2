#pragma once

#include <cstdint>

#include <QByteArray>
#include <QString>

// What the files say in which Linux describes the machine. The functions take
// the files' contents, so that they can be tried on any machine's.
namespace MachineFiles {

// Of /proc/cpuinfo: the first processor's brand, empty when it names none.
[[nodiscard]] QString processorBrand(const QByteArray& cpuInfo);
// Of /proc/cpuinfo: the number of physical cores, as far as it tells them from
// threads, else of processors; at most 255.
[[nodiscard]] std::uint8_t coreCount(const QByteArray& cpuInfo);

// The firmware's structures as one block with the header that SMBIOS reads; the
// versions are the entry point's, 0 when it can't be understood. Empty without
// structures.
[[nodiscard]] QByteArray firmwareBlock(const QByteArray& entryPoint, const QByteArray& structures);

// Whether a PCI device's class text, such as "0x030000", is a display's.
[[nodiscard]] bool isDisplayClass(const QByteArray& classText);
// What the PCI identifiers file calls the device: its market name where that is
// given, else the name of the chip; "8086:0d26" for a device that it doesn't
// know. The name begins with the maker's where that is a known maker of GPUs.
// Vendor and device are texts such as "0x8086".
[[nodiscard]] QString pciDeviceName(const QByteArray& vendor, const QByteArray& device,
                                    const QByteArray& pciIds);

} // namespace MachineFiles
