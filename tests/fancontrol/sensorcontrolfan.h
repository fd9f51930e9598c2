#pragma once

#include <QString>

#include "app/fancontrol/fancontrolmode.h"
#include "app/fancontrol/sensorcontrol.h"
#include "tests/support/manualclock.h"

inline constexpr int tick = 1500; // milliseconds between two calls of the control task
inline constexpr int second = 1000;

// A fan of 2000 to 6000 RPM that follows a sensor between 40 and 70 degrees, so
// that one degree is worth 133 RPM.
struct ControlledFan {
    ManualClock clock;
    SensorBasedControl_Simple control { QStringLiteral("Main"), clock };
    FanSpeeds speeds { 2500, 2000, 6000 };
    FanControlMode mode = FanControlMode::sensor(QStringLiteral("TC0P"), 40, 70);

    int at(double temperature) { return control.update(speeds, mode, temperature); }
    int after(int milliseconds, double temperature)
    {
        clock.advance(milliseconds);
        return at(temperature);
    }
};

// A line of the log, as the tests' log keeps it.
inline QString line(const char* text)
{
    return QStringLiteral("info: ") + QString::fromLatin1(text);
}
