#include "inpout32/inpout32.h"

#include "inpout32/port_gate.h"

namespace {

inpout32::PortGate& gate()
{
    thread_local inpout32::PortGate threadsGate(inpout32::portSystem());
    return threadsGate;
}

} // namespace

unsigned IsInpOutDriverOpen() { return gate().open() ? 1 : 0; }

void Out32(short port, short value)
{
    gate().write(static_cast<std::uint16_t>(port), static_cast<std::uint8_t>(value & 0xFF));
}

const char* InpOutRefusal() { return gate().refusal().c_str(); }

short Inp32(short port) { return gate().read(static_cast<std::uint16_t>(port)); }
