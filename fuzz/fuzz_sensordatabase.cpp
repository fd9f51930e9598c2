#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "app/sensors/sensordatabase.h"
#include "app/sensors/smckeys.h"
#include "app/sysinfo/sysinfo.h"
#include "tests/support/fakemachineidentity.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray input(reinterpret_cast<const char*>(data), static_cast<int>(size));
    static FakeMachineIdentity identity(QStringLiteral("MacBookPro15,1"));
    static const SystemInfo systemInfo(identity);
    const auto entries = SensorDatabase::parse(input, systemInfo);
    // A later rule replaces an earlier one for the same key.
    for (std::size_t first = 0; first < entries.size(); ++first) {
        for (std::size_t second = first + 1; second < entries.size(); ++second) {
            if (isSmcKeyEqual(entries[first].key, entries[second].key)) {
                std::abort();
            }
        }
    }
    return 0;
}
