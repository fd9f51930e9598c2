#pragma once

#include <QMetaType>

namespace System {

// Where the machine's power comes from.
enum PowerSource { PowerSourceAC = 0, PowerSourceBattery = 1, PowerSourceUnknown = 2 };

} // namespace System

Q_DECLARE_METATYPE(System::PowerSource)

// Asks the system anew at each call. Any thread.
[[nodiscard]] System::PowerSource getPowerSource();
