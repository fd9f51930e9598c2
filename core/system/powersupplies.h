#pragma once

#include <vector>

#include <QString>

#include "core/system/powersource.h"

// One supply as the kernel lists it; what it doesn't tell is empty.
struct PowerSupply {
    QString type; // "Mains", "USB", "Battery" ...
    QString scope; // "Device" for that of a mouse or the like
    QString online; // "0" or more
    QString status; // "Discharging", "Charging", "Full" ...
};

// A mains supply decides, any one of several that is on; without one, batteries
// decide by what they do.
[[nodiscard]] System::PowerSource powerSourceOf(const std::vector<PowerSupply>& supplies);
