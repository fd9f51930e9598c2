#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>

#include "app/sensors/drives/driveidentity.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const DriveIdentity identity = DriveIdentity::parse(std::span(data, size));
    // A drive with a serial number always has a name, and the key is made of both.
    if (identity.model.isEmpty() && !identity.serial.isEmpty()) {
        std::abort();
    }
    if (identity.key().size() != identity.model.size() + identity.serial.size() + 3) {
        std::abort();
    }
    return 0;
}
