#include "app/fancontrol/fancontrolmode.h"

#include <utility>

#include <QLoggingCategory>
#include <QStringList>

#include "core/language/languagestrings.h"
#include "core/log/log.h"

namespace {

Q_LOGGING_CATEGORY(fanControlCategory, "brisora.fancontrol")

FanControlMode::SensorNameFunction& sensorNameFunction()
{
    static FanControlMode::SensorNameFunction function;
    return function;
}

FanControlMode parseConstant(const QStringList& parts)
{
    // Without a speed there is nothing to hold.
    return parts.size() < 2 ? FanControlMode() : FanControlMode::constant(parts[1].toUInt());
}

FanControlMode parseSensor(const QStringList& parts)
{
    if (parts.size() != 4 || sensorNameFunction()(parts[1]).isEmpty()) {
        return {};
    }
    return FanControlMode::sensor(parts[1], parts[2].toInt(), parts[3].toInt());
}

} // namespace

FanControlMode FanControlMode::automatic()
{
    FanControlMode mode;
    mode.m_type = FanControlAutomatic;
    return mode;
}

FanControlMode FanControlMode::notAssigned()
{
    FanControlMode mode;
    mode.m_type = FanControlNotAssigned;
    return mode;
}

FanControlMode FanControlMode::constant(std::uint32_t rpm)
{
    FanControlMode mode;
    mode.m_type = FanControlConstant;
    mode.m_rpm = rpm;
    return mode;
}

FanControlMode FanControlMode::sensor(const QString& sensorKey, std::int32_t tempLow,
                                      std::int32_t tempHigh)
{
    if (sensorKey.contains(QLatin1Char(',')) || sensorKey.contains(QLatin1Char('|'))) {
        LOG_WARN("A preset with the sensor key \"{}\" can't be read back, for its separator",
                 core::log::singleLine(sensorKey));
    }
    FanControlMode mode;
    mode.m_type = FanControlSensor;
    mode.m_sensorKey = sensorKey;
    mode.m_tempLow = tempLow;
    mode.m_tempHigh = tempHigh;
    return mode;
}

QString FanControlMode::toString() const
{
    switch (m_type) {
    case FanControlInvalid:
        break;
    case FanControlNotAssigned:
        qCDebug(fanControlCategory, "FanControlMode::toString() - FanControlNotAssigned!");
        return {};
    case FanControlAutomatic:
        return QStringLiteral("0");
    case FanControlConstant:
        return QStringLiteral("1,%1").arg(m_rpm);
    case FanControlSensor:
        return QStringLiteral("2,%1,%2,%3")
            .arg(m_sensorKey, QString::number(m_tempLow), QString::number(m_tempHigh));
    }
    return QStringLiteral("INVALID");
}

FanControlMode FanControlMode::fromString(const QString& text)
{
    // Any single character reads as automatic, "1" included: required, stored
    // presets depend on it.
    if (text.size() == 1) {
        return automatic();
    }
    if (text.startsWith(QLatin1Char('1'))) {
        return parseConstant(text.split(QLatin1Char(',')));
    }
    if (text.startsWith(QLatin1Char('2'))) {
        return parseSensor(text.split(QLatin1Char(',')));
    }
    return {};
}

QString FanControlMode::displayText(bool shortForm) const
{
    switch (m_type) {
    case FanControlInvalid:
        break;
    case FanControlNotAssigned:
        return LanguageStrings::text(QStringLiteral("MainWindow/fanControlUnknown"));
    case FanControlAutomatic:
        return LanguageStrings::text(QStringLiteral("MainWindow/fanControlAutomatic"));
    case FanControlConstant:
        return LanguageStrings::text(QStringLiteral("MainWindow/fanControlConstant")).arg(m_rpm);
    case FanControlSensor:
        if (shortForm) {
            return LanguageStrings::text(QStringLiteral("TrayMenu/itemSensorBased"));
        }
        return LanguageStrings::text(QStringLiteral("MainWindow/fanControlSensor"))
            .arg(sensorNameFunction()(m_sensorKey));
    }
    return QStringLiteral("n/a");
}

bool operator==(const FanControlMode& left, const FanControlMode& right)
{
    if (left.m_type != right.m_type) {
        return false;
    }
    switch (left.m_type) {
    case FanControlInvalid:
    case FanControlNotAssigned:
    case FanControlAutomatic:
        return true;
    case FanControlConstant:
        return left.m_rpm == right.m_rpm;
    case FanControlSensor:
        return left.m_sensorKey == right.m_sensorKey && left.m_tempLow == right.m_tempLow
            && left.m_tempHigh == right.m_tempHigh;
    }
    return false;
}

void FanControlMode::setSensorNameFunction(SensorNameFunction function)
{
    sensorNameFunction() = std::move(function);
}
