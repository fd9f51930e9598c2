#pragma once

#include <QString>

#include "macsim/model/portcontroller.h"
#include "macsim/model/simulatedmac.h"

namespace macsim {

// The machine in one line: load, temperatures, each fan's actual and target speed
// with its limits and whether it is forced, control bits, protocol errors.
[[nodiscard]] QString statusLine(SimulatedMac& mac, const PortController& controller);

} // namespace macsim
