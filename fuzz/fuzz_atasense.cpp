#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "app/sensors/drives/atapassthrough.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

// The first bytes are what the kernel says about a command, the rest what the drive
// does.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t header = 4;
    if (size < header) {
        return 0;
    }
    ScsiOutcome outcome;
    outcome.status = data[0];
    outcome.hostStatus = data[1];
    outcome.driverStatus = data[2];
    outcome.senseSize = data[3]; // which may claim more than there is
    std::copy_n(data + header, std::min(size - header, outcome.sense.size()),
                outcome.sense.begin());
    static_cast<void>(AtaPassThrough::returnedSectorCount(outcome));
    static_cast<void>(AtaPassThrough::succeeded(outcome));
    return 0;
}
