#pragma once

#include <QByteArray>

#include "macsim/model/drivedescription.h"

namespace macsim {

// The 512 bytes that an ATA drive answers to IDENTIFY DEVICE.
[[nodiscard]] QByteArray identifyBlock(const DriveDescription& drive, bool isSmartEnabled);

// The 512 bytes that it answers to SMART READ DATA at this temperature. The lowest
// and highest temperature stand behind the present one.
[[nodiscard]] QByteArray smartBlock(const DriveDescription& drive, double celsius, double highest);

} // namespace macsim
