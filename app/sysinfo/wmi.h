#pragma once

#include "app/sysinfo/machine_identity.h"

// Asks the management interface of Windows. Blocks for as long as it takes to
// answer; what it doesn't tell stays empty. COM on the calling thread is left as it
// was.
[[nodiscard]] WmiSystemData readManagementData();
