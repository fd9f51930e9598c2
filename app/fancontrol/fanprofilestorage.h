#pragma once

#include <optional>
#include <vector>

#include <QString>
#include <QStringList>

#include "app/fancontrol/fanprofile.h"

class QSettingsCache;

// How presets are read from the settings: the preset list's share of work that
// needs no lock. Sensors must have been loaded, since a mode that names an
// unknown sensor can't be read.

// The custom presets. Those that can't be read now are no longer among them, but
// are kept, and are tried again at each start.
struct StoredCustomPresets {
    std::vector<FanProfile> profiles; // as stored, then those that can be read again
    QStringList texts; // all that is stored, readable or not
    std::vector<int> indexes; // for each text its index in profiles, or -1
    QStringList kept;
};

[[nodiscard]] StoredCustomPresets readCustomPresets(QSettingsCache& settings);

// The active preset; nothing when there is none or it can't be resolved now. kept
// is what to try at the next start: what the user chose last.
struct StoredActivePreset {
    std::optional<FanProfile> profile;
    QString kept;
    // The settings of earlier releases that all this came from: to be removed once
    // it is stored in the present form.
    QStringList legacyKeys;
};

[[nodiscard]] StoredActivePreset
readActivePreset(QSettingsCache& settings, const std::vector<FanProfilePredefined>& predefined,
                 const StoredCustomPresets& custom);

// The stored forms of the active preset.
[[nodiscard]] QString storedPredefined(std::uint8_t id);
[[nodiscard]] QString storedCustom(int index);
[[nodiscard]] QString storedUnsaved(const QString& text);
