#include "core/system/powersource.h"

#include <windows.h>

System::PowerSource getPowerSource()
{
    SYSTEM_POWER_STATUS status {};
    if (GetSystemPowerStatus(&status) == 0) {
        return System::PowerSourceUnknown;
    }
    switch (status.ACLineStatus) {
    case AC_LINE_OFFLINE:
        return System::PowerSourceBattery;
    case AC_LINE_ONLINE:
        return System::PowerSourceAC;
    default:
        return System::PowerSourceUnknown;
    }
}
