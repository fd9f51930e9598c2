#pragma once

#include <QString>

class QSettingsCache;

// Temperatures in the scale that the user has chosen. The setting is read at every
// call, so that a change shows at once. A value class; the settings must outlive it.
class TemperatureScale {
public:
    explicit TemperatureScale(QSettingsCache& settings)
        : m_settings(&settings)
    {
    }

    [[nodiscard]] bool isFahrenheit() const;
    // The degree sign with the scale's letter.
    [[nodiscard]] QString temperatureUnit() const;

    // From degrees Celsius; whole degrees are cut toward zero.
    [[nodiscard]] double toDisplayScale(double celsius) const;
    [[nodiscard]] int toDisplayScale(int celsius) const;
    // To degrees Celsius, rounded.
    [[nodiscard]] int fromDisplayScale(int degrees) const;

private:
    QSettingsCache* m_settings;
};
