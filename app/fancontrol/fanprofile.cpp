#include "app/fancontrol/fanprofile.h"

#include <algorithm>
#include <atomic>

#include <QByteArray>
#include <QStringList>

#include "core/language/languagestrings.h"
#include "core/log/log.h"

namespace {

constexpr QLatin1Char separator('|');

std::atomic<std::uint8_t>& fanCountOfMachine()
{
    static std::atomic<std::uint8_t> count { 0 };
    return count;
}

// The separator would break the stored form.
QString storableName(QString name) { return name.replace(separator, QLatin1Char('-')); }

} // namespace

FanProfile::FanProfile(const QVector<FanControlMode>& modes, const QString& name)
    : m_name(storableName(name))
    , m_modes(modes)
{
}

FanProfile::FanProfile(const FanProfile& other) { assign(other); }

FanProfile& FanProfile::operator=(const FanProfile& other)
{
    assign(other);
    return *this;
}

QString FanProfile::name() const { return m_name; }

void FanProfile::setName(const QString& name) { m_name = storableName(name); }

void FanProfile::assign(const FanProfile& other)
{
    m_modes = other.m_modes;
    m_name = other.m_name.isEmpty() ? QStringLiteral("UNSAVED") : other.m_name;
}

bool FanProfile::isValid() const
{
    return m_modes.size() == fanCount() && !name().isEmpty()
        && std::none_of(m_modes.begin(), m_modes.end(), [](const FanControlMode& mode) {
               return mode.type() == FanControlInvalid;
           });
}

bool FanProfile::hasSameModes(const FanProfile& other) const { return m_modes == other.m_modes; }

FanControlMode FanProfile::mode(std::uint8_t fan) const { return m_modes.value(fan); }

void FanProfile::setMode(std::uint8_t fan, const FanControlMode& mode)
{
    if (fan < m_modes.size()) {
        m_modes[fan] = mode;
    }
}

QString FanProfile::toString() const
{
    QString text = name();
    for (const FanControlMode& mode : m_modes) {
        text += separator + mode.toString();
    }
    return QString::fromLatin1(text.toUtf8().toBase64());
}

FanProfile FanProfile::fromString(const QString& text)
{
    const QString decoded = QString::fromUtf8(QByteArray::fromBase64(text.toLatin1()));
    const QStringList parts = decoded.split(separator, Qt::SkipEmptyParts);
    if (parts.size() != fanCount() + 1) {
        // The "%1" is written as it stands.
        LOG_WARN("Unexpected profile string: %1");
        return {};
    }
    QVector<FanControlMode> modes;
    modes.reserve(parts.size() - 1);
    for (int i = 1; i < parts.size(); ++i) {
        modes.append(FanControlMode::fromString(parts[i]));
        if (modes.last().type() == FanControlInvalid) {
            return {};
        }
    }
    return FanProfile(modes, parts.first());
}

std::uint8_t FanProfile::fanCount() { return fanCountOfMachine(); }

void FanProfile::setFanCount(std::uint8_t count) { fanCountOfMachine() = count; }

FanProfilePredefined::FanProfilePredefined(const QVector<FanControlMode>& modes, std::uint8_t id)
    : FanProfile(modes, QString())
    , m_id(id)
{
}

QString FanProfilePredefined::name() const
{
    switch (m_id) {
    case automaticId:
        return LanguageStrings::text(QStringLiteral("Presets/presetAutomatic"));
    case fullBlastId:
        return LanguageStrings::text(QStringLiteral("Presets/presetFullBlast"));
    default:
        return QStringLiteral("Invalid");
    }
}
