#include "app/fancontrol/fanprofilestorage.h"

#include <algorithm>
#include <utility>

#include <QByteArray>

#include "app/settingskeys.h"
#include "core/latin1.h"
#include "core/log/log.h"
#include "core/settings/qsettingscache.h"

namespace {

const QLatin1String predefinedWord("Predefined");
const QLatin1String customWord("Custom");
const QLatin1String unsavedWord("Unsaved");

QString joined(const QLatin1String& word, const QString& value)
{
    return word + QLatin1Char(':') + value;
}

// The two sides of the first ":"; both are empty without one.
struct ActiveText {
    explicit ActiveText(const QString& text)
    {
        const int colon = text.indexOf(QLatin1Char(':'));
        if (colon >= 0) {
            word = text.left(colon);
            value = text.mid(colon + 1);
        }
    }

    // The value as an index, -1 when it is none.
    [[nodiscard]] int index() const
    {
        bool isNumber = false;
        const int number = value.toInt(&isNumber);
        return isNumber && number >= 0 ? number : -1;
    }

    QString word;
    QString value;
};

std::optional<FanProfile> validProfile(const QString& text)
{
    FanProfile profile = FanProfile::fromString(text);
    return profile.isValid() ? std::optional(std::move(profile)) : std::nullopt;
}

// The name in a preset string that need not be readable, for the log.
QString nameInText(const QString& text)
{
    const QString decoded = QString::fromUtf8(QByteArray::fromBase64(text.toLatin1()));
    return core::log::singleLine(decoded.section(QLatin1Char('|'), 0, 0).left(100));
}

std::optional<FanProfile> predefinedById(const std::vector<FanProfilePredefined>& predefined,
                                         int id)
{
    const auto found = std::find_if(predefined.begin(), predefined.end(),
                                    [id](const auto& profile) { return profile.id() == id; });
    return found == predefined.end() ? std::nullopt : std::optional<FanProfile>(*found);
}

// The index of a custom preset counts in the list as it was stored, so that one
// that can't be read now doesn't make another one active.
std::optional<FanProfile> customByStoredIndex(const StoredCustomPresets& custom, int index)
{
    if (index < 0 || index >= custom.texts.size()) {
        return std::nullopt;
    }
    const int profile = custom.indexes[static_cast<std::size_t>(index)];
    return profile < 0 ? std::nullopt
                       : std::optional(custom.profiles[static_cast<std::size_t>(profile)]);
}

std::optional<FanProfile> resolve(const QString& text,
                                  const std::vector<FanProfilePredefined>& predefined,
                                  const StoredCustomPresets& custom)
{
    const ActiveText active(text);
    if (active.word == predefinedWord) {
        return predefinedById(predefined, active.index());
    }
    if (active.word == customWord) {
        return customByStoredIndex(custom, active.index());
    }
    if (active.word == unsavedWord) {
        return validProfile(active.value);
    }
    return std::nullopt;
}

// The form that still means the same when the list of custom presets has
// changed: a custom preset that can't be read now is kept whole. Empty for a text
// that will never mean anything.
QString keptForm(const QString& text, const StoredCustomPresets& custom)
{
    const ActiveText active(text);
    if (active.word == unsavedWord) {
        return text;
    }
    if (active.index() < 0 || (active.word != customWord && active.word != predefinedWord)) {
        return {};
    }
    if (active.word == predefinedWord) {
        return text;
    }
    return active.index() < custom.texts.size() ? storedUnsaved(custom.texts[active.index()])
                                                : QString();
}

// The modes that earlier releases left, one setting per fan. The settings are to
// go in any case; what they held is kept when only a mode can't be read.
StoredActivePreset readLegacyModes(QSettingsCache& settings)
{
    const QString name = QStringLiteral("old_guy");
    QStringList keys;
    QVector<FanControlMode> modes(FanProfile::fanCount());
    QStringList parts { name };
    for (int fan = 0; fan < modes.size(); ++fan) {
        const QString key = QString(SettingsKeys::legacyFan).arg(fan);
        const QString text = settings.getString(key);
        if (!text.isEmpty()) {
            modes[fan] = FanControlMode::fromString(text);
            parts.append(text);
            keys.append(key);
        }
    }
    FanProfile profile(modes, name);
    if (profile.isValid() && !modes.isEmpty()) {
        return { std::move(profile), {}, keys };
    }
    if (modes.isEmpty() || parts.size() != modes.size() + 1) {
        return { std::nullopt, {}, keys };
    }
    const QByteArray text = parts.join(QLatin1Char('|')).toUtf8().toBase64();
    return { std::nullopt, storedUnsaved(QString::fromLatin1(text)), keys };
}

} // namespace

QString storedPredefined(std::uint8_t id) { return joined(predefinedWord, QString::number(id)); }

QString storedCustom(int index) { return joined(customWord, QString::number(index)); }

QString storedUnsaved(const QString& text) { return joined(unsavedWord, text); }

StoredCustomPresets readCustomPresets(QSettingsCache& settings)
{
    StoredCustomPresets result;
    result.texts = settings.getStringList(SettingsKeys::customPresets);
    const QStringList keptBefore = settings.getStringList(SettingsKeys::customPresetsKept);

    for (const QString& text : result.texts) {
        if (auto profile = validProfile(text)) {
            result.indexes.push_back(static_cast<int>(result.profiles.size()));
            result.profiles.push_back(std::move(*profile));
            continue;
        }
        result.indexes.push_back(-1);
        if (!keptBefore.contains(text) && !result.kept.contains(text)) {
            LOG_WARN("The preset \"{}\" can't be read now and is kept", nameInText(text));
            result.kept.append(text);
        }
    }
    for (const QString& text : keptBefore) {
        // A text that is stored as well is left from a run that was cut short.
        const bool isStored = result.texts.contains(text);
        auto profile = validProfile(text);
        if (!profile) {
            LOG_WARN("The preset \"{}\" still can't be read and is kept", nameInText(text));
            result.kept.append(text);
        } else if (!isStored) {
            LOG_INFO("The preset \"{}\" can be read again", nameInText(text));
            result.profiles.push_back(std::move(*profile));
        }
    }
    return result;
}

StoredActivePreset readActivePreset(QSettingsCache& settings,
                                    const std::vector<FanProfilePredefined>& predefined,
                                    const StoredCustomPresets& custom)
{
    const QString keptBefore = settings.getString(SettingsKeys::activePresetKept);
    if (!keptBefore.isEmpty()) {
        if (auto profile = resolve(keptBefore, predefined, custom)) {
            LOG_INFO("The preset that was active before can be read again");
            return { std::move(profile), {}, {} };
        }
        LOG_WARN("The preset that was active before still can't be read and is kept");
    }

    const QString text = settings.getString(SettingsKeys::activePreset);
    StoredActivePreset result;
    if (text.isEmpty()) {
        result = readLegacyModes(settings);
    } else {
        result.profile = resolve(text, predefined, custom);
        if (!result.profile && keptBefore.isEmpty()) {
            result.kept = keptForm(text, custom);
            if (result.kept.isEmpty()) {
                LOG_WARN("\"{}\" is no active preset", core::log::singleLine(text.left(100)));
            }
        }
    }
    if (!keptBefore.isEmpty()) {
        // The user's choice; what has been active since was only put in its place.
        result.kept = keptBefore;
    } else if (!result.kept.isEmpty()) {
        LOG_WARN("The active preset can't be read now and is kept");
    }
    return result;
}
