#pragma once

#include <QString>

#include "core/system/powersource.h"

class FanHardware;
class SystemInfo;

// The parts of the technical report that tell of the machine and of its fans.
class TechInfo {
public:
    // The power source is told for machines with a battery only.
    [[nodiscard]] static QString header(const SystemInfo& systemInfo, System::PowerSource source);
    // One line for each fan.
    [[nodiscard]] static QString fans(const FanHardware& hardware);
};
