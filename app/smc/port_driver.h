#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "app/smc/port_access.h"

namespace SMC {

// What the port driver's library offers, under its own names.
enum class PortFunction { IsInpOutDriverOpen, Out32, Inp32 };

// The library that grants access to ports. A function may be called once
// resolve() has found it. One caller at a time; unload() ends all use. The
// destructor leaves the library loaded.
class PortDriver : public PortAccess {
public:
    [[nodiscard]] virtual bool load() = 0;
    [[nodiscard]] virtual bool resolve(PortFunction function) = 0;
    // Not zero when the driver is ready.
    [[nodiscard]] virtual std::uint32_t isInpOutDriverOpen() = 0;
    virtual void unload() = 0;
    // Round the bytes of one key: the sleeps between them should be as exact as the
    // system can make them.
    virtual void beginExchange() { }
    virtual void endExchange() { }
    // The system's error number of the last load() or resolve() that failed.
    [[nodiscard]] virtual std::uint32_t lastError() = 0;
    // Why load() failed or the driver isn't ready, for a person; empty when the
    // system doesn't tell.
    [[nodiscard]] virtual std::string refusal() { return {}; }
};

// The system's port driver: inpout32.dll or libinpout32.so, wherever the
// system's loader finds it.
[[nodiscard]] std::unique_ptr<PortDriver> makePortDriver();

} // namespace SMC
