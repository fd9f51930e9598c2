#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include <QByteArray>

#include "app/fancontrol/fannames.h"
#include "app/sysinfo/sysinfo.h"
#include "tests/support/fakemachineidentity.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static FakeMachineIdentity identity(QStringLiteral("MacBookPro15,1"));
    static const SystemInfo systemInfo(identity);
    const QByteArray xml(reinterpret_cast<const char*>(data), static_cast<int>(size));
    if (parseFanNames(xml, systemInfo).size() > 4) {
        std::abort();
    }
    return 0;
}
