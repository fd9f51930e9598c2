// A function of the system's for tests, which keeps what it is given. Without the
// system's headers, which have it as the system's own.

#include "tests/smc/portlibrary/processinformation_windows.h"

#include <cstring>

#define SYSTEM_EXPORT extern "C" __declspec(dllexport)

namespace {

ProcessInformation received;

} // namespace

SYSTEM_EXPORT int __stdcall SetProcessInformation(void* process, int informationClass,
                                                  const void* information, unsigned size)
{
    ++received.calls;
    received.process = process;
    received.informationClass = informationClass;
    received.size = size;
    if (size == sizeof(received.powerThrottling)) {
        std::memcpy(&received.powerThrottling, information, size);
    }
    return 0; // as an older Windows does
}

SYSTEM_EXPORT const ProcessInformation* receivedProcessInformation() { return &received; }
