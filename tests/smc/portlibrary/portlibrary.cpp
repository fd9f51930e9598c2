// A port driver library for tests: a memory of bytes in the place of the ports.
// Without Out32 when it is built with WITHOUT_OUT32.

#include <array>

namespace {

std::array<short, 0x400> bytes = {};

} // namespace

extern "C" {

__attribute__((visibility("default"))) unsigned IsInpOutDriverOpen() { return 7; }

#ifndef WITHOUT_OUT32
__attribute__((visibility("default"))) void Out32(short port, short value)
{
    bytes.at(static_cast<unsigned short>(port)) = value;
}
#endif

__attribute__((visibility("default"))) short Inp32(short port)
{
    return bytes.at(static_cast<unsigned short>(port));
}
}
