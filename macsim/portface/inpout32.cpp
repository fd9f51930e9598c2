// The C functions under which programs look up a port driver.

#include "macsim/portface/portface.h"

#if defined(_WIN32)
#define PORTFACE_EXPORT extern "C" __declspec(dllexport)
#define PORTFACE_CALL __stdcall
#else
#define PORTFACE_EXPORT extern "C" __attribute__((visibility("default")))
#define PORTFACE_CALL
#endif

namespace {

macsim::PortFace& portFace()
{
    static macsim::PortFace face;
    return face;
}

} // namespace

PORTFACE_EXPORT std::int32_t PORTFACE_CALL IsInpOutDriverOpen()
{
    return portFace().isOpen() ? 1 : 0;
}

PORTFACE_EXPORT void PORTFACE_CALL Out32(short port, short value)
{
    portFace().write(static_cast<std::uint16_t>(port), static_cast<std::uint8_t>(value & 0xFF));
}

PORTFACE_EXPORT short PORTFACE_CALL Inp32(short port)
{
    return static_cast<short>(portFace().read(static_cast<std::uint16_t>(port)));
}
