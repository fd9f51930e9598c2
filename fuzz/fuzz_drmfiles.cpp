#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "app/gpu/drmfiles.h"
#include "app/sysinfo/machinefiles.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

// The bytes are what a file of the kernel's about a GPU may hold, or the names in
// the folder of graphics devices.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray input(reinterpret_cast<const char*>(data), static_cast<int>(size));
    static_cast<void>(DrmFiles::isAmd(input));

    const QStringList names = QString::fromLatin1(input).split(QLatin1Char('\n'));
    const QStringList cards = DrmFiles::cards(names);
    for (const QString& card : cards) {
        if (!names.contains(card)) {
            std::abort();
        }
    }

    const QByteArrayList lines = input.split('\n');
    static_cast<void>(MachineFiles::pciDeviceName(
        lines.value(0), lines.value(1), "1002  AMD\n\t6821  Venus XT [Radeon R9 M370X]\n"));
    return 0;
}
