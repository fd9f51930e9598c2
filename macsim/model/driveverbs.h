#pragma once

#include <functional>

#include <QStringList>

#include "macsim/model/simulatedmac.h"

namespace macsim {

// Makes the system's files list the drive or not; false when they can't be written.
using DriveSwitch = std::function<bool(const QString& drive, bool isPlugged)>;

// Does something to a drive: its name and what, as driveHelp() tells. Returns what
// was wrong with the request, or an empty text.
[[nodiscard]] QString applyToDrive(const QStringList& words, SimulatedMac& mac,
                                   const DriveSwitch& driveSwitch);

// What can be done to drives, a line each.
[[nodiscard]] QString driveHelp();

} // namespace macsim
