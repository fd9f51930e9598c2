#pragma once

#include <cstdint>
#include <functional>

#include <QMetaType>
#include <QString>

enum FanControlType : std::uint32_t {
    FanControlInvalid = 0,
    FanControlNotAssigned = 1,
    FanControlAutomatic = 2, // the SMC decides
    FanControlConstant = 3, // hold a speed
    FanControlSensor = 4, // follow a sensor between two temperatures
};

// How one fan is controlled. A value type.
class FanControlMode {
public:
    // Gives the display name of the sensor with a persistent key, or an empty
    // text when there is no such sensor.
    using SensorNameFunction = std::function<QString(const QString& sensorKey)>;

    FanControlMode() = default; // FanControlInvalid

    [[nodiscard]] static FanControlMode automatic();
    [[nodiscard]] static FanControlMode notAssigned();
    [[nodiscard]] static FanControlMode constant(std::uint32_t rpm);
    // Whole degrees Celsius: at tempLow the fan leaves its minimum, at tempHigh
    // it reaches its maximum.
    [[nodiscard]] static FanControlMode sensor(const QString& sensorKey, std::int32_t tempLow,
                                               std::int32_t tempHigh);

    // The text form that presets are stored in. fromString gives an invalid mode
    // for a text that can't be read, or that names a sensor which the machine
    // doesn't have now.
    [[nodiscard]] QString toString() const;
    [[nodiscard]] static FanControlMode fromString(const QString& text);

    // The text for the interface, in the interface's language.
    [[nodiscard]] QString displayText(bool shortForm) const;

    [[nodiscard]] bool isAutomatic() const { return m_type == FanControlAutomatic; }
    [[nodiscard]] FanControlType type() const { return m_type; }
    [[nodiscard]] std::uint32_t rpm() const { return m_rpm; }
    [[nodiscard]] std::int32_t tempLow() const { return m_tempLow; }
    [[nodiscard]] std::int32_t tempHigh() const { return m_tempHigh; }
    [[nodiscard]] const QString& sensorKey() const { return m_sensorKey; }

    friend bool operator==(const FanControlMode& left, const FanControlMode& right);

    // The one name function of the process: set by the engine's constructor and
    // cleared (with an empty function) by its destructor. Reading a sensor mode
    // or showing one while it is empty throws std::bad_function_call.
    static void setSensorNameFunction(SensorNameFunction function);

private:
    FanControlType m_type = FanControlInvalid;
    std::uint32_t m_rpm = 0;
    std::int32_t m_tempLow = 0;
    std::int32_t m_tempHigh = 0;
    QString m_sensorKey;
};

Q_DECLARE_METATYPE(FanControlMode)
