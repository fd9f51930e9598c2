#pragma once

#include <QStringList>

#include "macsim/model/portcontroller.h"
#include "macsim/model/simulatedmac.h"

namespace macsim {

// Makes the machine faulty: a fault's name and its arguments, as faultHelp()
// tells. Faults add up until "none" ends them all, vanished keys included.
// Returns what was wrong with the request, or an empty text.
[[nodiscard]] QString applyFault(const QStringList& words, SimulatedMac& mac,
                                 PortController& controller);

// The faults with their arguments, a line each.
[[nodiscard]] QString faultHelp();

} // namespace macsim
