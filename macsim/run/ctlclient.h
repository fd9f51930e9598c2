#pragma once

#include <QStringList>

#include "macsim/model/controlverbs.h"

namespace macsim {

// Sends a control request to the simulator that listens at the path and waits
// for its reply, for at most ten seconds. No simulator: a reply that isn't ok.
[[nodiscard]] ControlReply requestControl(const QString& socketPath, const QStringList& words);

} // namespace macsim
