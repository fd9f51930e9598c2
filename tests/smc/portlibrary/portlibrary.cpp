// A port driver library for tests: a memory of bytes in the place of the ports.
// Without Out32 when it is built with WITHOUT_OUT32.

#include <array>

#if defined(_WIN32)
#define PORT_EXPORT extern "C" __declspec(dllexport)
#define PORT_CALL __stdcall
#else
#define PORT_EXPORT extern "C" __attribute__((visibility("default")))
#define PORT_CALL
#endif

namespace {

std::array<short, 0x400> bytes = {};

} // namespace

PORT_EXPORT unsigned PORT_CALL IsInpOutDriverOpen() { return 7; }

#ifndef WITHOUT_OUT32
PORT_EXPORT void PORT_CALL Out32(short port, short value)
{
    bytes.at(static_cast<unsigned short>(port)) = value;
}
#endif

PORT_EXPORT short PORT_CALL Inp32(short port)
{
    return bytes.at(static_cast<unsigned short>(port));
}
