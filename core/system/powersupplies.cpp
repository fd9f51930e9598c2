#include "core/system/powersupplies.h"

namespace {

bool feedsTheMachine(const PowerSupply& supply) { return supply.scope != QLatin1String("Device"); }

// Other than AC adapters, chargers at USB ports count as mains as well.
bool isMains(const PowerSupply& supply)
{
    return supply.type == QLatin1String("Mains") || supply.type.startsWith(QLatin1String("USB"));
}

} // namespace

System::PowerSource powerSourceOf(const std::vector<PowerSupply>& supplies)
{
    bool hasMains = false;
    bool isDischarging = false;
    bool isFed = false;
    for (const PowerSupply& supply : supplies) {
        if (!feedsTheMachine(supply)) {
            continue;
        }
        if (isMains(supply)) {
            if (supply.online.toInt() > 0) {
                return System::PowerSourceAC;
            }
            hasMains = hasMains || !supply.online.isEmpty();
        } else if (supply.type == QLatin1String("Battery")) {
            isDischarging = isDischarging || supply.status == QLatin1String("Discharging");
            isFed = isFed || supply.status == QLatin1String("Charging")
                || supply.status == QLatin1String("Full")
                || supply.status == QLatin1String("Not charging");
        }
    }
    if (hasMains || isDischarging) {
        return System::PowerSourceBattery;
    }
    return isFed ? System::PowerSourceAC : System::PowerSourceUnknown;
}
