#include <cstddef>
#include <cstdint>

#include "app/sysinfo/machinefiles.h"
#include "app/sysinfo/smbios.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray input(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const SMBIOS direct(input);

    // The first bytes as the entry point, the rest as the structures.
    const QByteArray block = MachineFiles::firmwareBlock(input.left(32), input.mid(32));
    const SMBIOS assembled(block);

    static_cast<void>(MachineFiles::processorBrand(input));
    static_cast<void>(MachineFiles::coreCount(input));
    static_cast<void>(MachineFiles::pciDeviceName("0x8086", "0x0d26", input));
    return 0;
}
