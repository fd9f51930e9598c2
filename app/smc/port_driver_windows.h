#pragma once

#include "app/smc/port_driver.h"

namespace SMC {

// The system's port driver with what not every Windows has taken from another
// library than "kernel32.dll". It must be loaded when the driver has been.
[[nodiscard]] std::unique_ptr<PortDriver> makePortDriver(const wchar_t* systemLibrary);

} // namespace SMC
