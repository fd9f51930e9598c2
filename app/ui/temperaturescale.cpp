#include "app/ui/temperaturescale.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "app/settingskeys.h"
#include "core/settings/qsettingscache.h"

namespace {

double toFahrenheit(double celsius) { return celsius * 9.0 / 5.0 + 32.0; }

// Cut toward zero; the nearest number for one that is out of range.
int toWhole(double degrees)
{
    return static_cast<int>(std::clamp<double>(degrees, std::numeric_limits<int>::min(),
                                               std::numeric_limits<int>::max()));
}

} // namespace

bool TemperatureScale::isFahrenheit() const
{
    return m_settings->getInt(SettingsKeys::fahrenheit, -1) != 0;
}

QString TemperatureScale::temperatureUnit() const
{
    return isFahrenheit() ? QStringLiteral("\u00B0F") : QStringLiteral("\u00B0C");
}

double TemperatureScale::toDisplayScale(double celsius) const
{
    return isFahrenheit() ? toFahrenheit(celsius) : celsius;
}

int TemperatureScale::toDisplayScale(int celsius) const
{
    return isFahrenheit() ? toWhole(toFahrenheit(celsius)) : celsius;
}

int TemperatureScale::fromDisplayScale(int degrees) const
{
    return isFahrenheit() ? toWhole(std::round((degrees - 32.0) * 5.0 / 9.0)) : degrees;
}
