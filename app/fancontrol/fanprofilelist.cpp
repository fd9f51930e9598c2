#include "app/fancontrol/fanprofilelist.h"

#include <algorithm>
#include <utility>

#include "app/settingskeys.h"
#include "core/application_flags.h"
#include "core/settings/qsettingscache.h"

QFanProfileList::QFanProfileList(QSettingsCache& settings, QObject* parent)
    : QObject(parent)
    , m_settings(settings)
{
}

QFanProfileList::~QFanProfileList() = default;

void QFanProfileList::addPredefined(const QVector<FanControlMode>& modes, std::uint8_t id)
{
    const std::lock_guard lock(m_mutex);
    FanProfile::setFanCount(static_cast<std::uint8_t>(modes.size()));
    m_predefined.push_back(std::make_unique<FanProfilePredefined>(modes, id));
}

// The settings are read with no lock held, since reading a mode asks for a
// sensor's name.
void QFanProfileList::loadCustom()
{
    StoredCustomPresets stored = readCustomPresets(m_settings);

    const std::lock_guard lock(m_mutex);
    if (m_customLoaded) {
        return;
    }
    for (const FanProfile& profile : stored.profiles) {
        m_custom.push_back(std::make_unique<FanProfile>(profile));
    }
    // What is kept is written before save() drops it from the presets, and what
    // has come back stays kept until save() has added it: nothing is lost when
    // the program is cut short in between.
    QStringList kept = m_settings.getStringList(SettingsKeys::customPresetsKept);
    for (const QString& text : qAsConst(stored.kept)) {
        if (!kept.contains(text)) {
            kept.append(text);
        }
    }
    writeIfChanged(SettingsKeys::customPresetsKept, kept);
    m_stored = std::move(stored);
    m_customLoaded = true;
}

void QFanProfileList::loadActive()
{
    StoredCustomPresets stored;
    {
        const std::lock_guard lock(m_mutex);
        stored = m_stored;
    }
    StoredActivePreset active = readActivePreset(m_settings, predefinedProfiles(), stored);
    {
        const std::lock_guard lock(m_mutex);
        m_keptActive = active.kept;
        m_activeLoaded = true;
        activate(active.profile ? *active.profile : defaultProfileLocked());
        saveLocked();
        for (const QString& key : qAsConst(active.legacyKeys)) {
            m_settings.remove(key);
        }
    }
    Q_EMIT profilesChanged(this);
}

void QFanProfileList::save()
{
    const std::lock_guard lock(m_mutex);
    saveLocked();
}

FanProfile QFanProfileList::activeProfile() const
{
    const std::lock_guard lock(m_mutex);
    return m_active == nullptr ? FanProfile() : FanProfile(*m_active);
}

FanProfile QFanProfileList::defaultProfile() const
{
    const std::lock_guard lock(m_mutex);
    return defaultProfileLocked();
}

std::vector<FanProfilePredefined> QFanProfileList::predefinedProfiles() const
{
    const std::lock_guard lock(m_mutex);
    std::vector<FanProfilePredefined> copies;
    copies.reserve(m_predefined.size());
    for (const auto& profile : m_predefined) {
        copies.push_back(*profile);
    }
    return copies;
}

std::vector<FanProfile> QFanProfileList::customProfiles() const
{
    const std::lock_guard lock(m_mutex);
    std::vector<FanProfile> copies;
    copies.reserve(m_custom.size());
    for (const auto& profile : m_custom) {
        copies.push_back(*profile);
    }
    return copies;
}

bool QFanProfileList::isUnsaved() const
{
    const std::lock_guard lock(m_mutex);
    return m_unsaved != nullptr;
}

bool QFanProfileList::isActiveCustom() const { return activeCustomIndex() >= 0; }

bool QFanProfileList::isActiveAutomatic() const
{
    const std::lock_guard lock(m_mutex);
    const FanProfilePredefined* const active = activePredefined();
    return active != nullptr && active->id() == FanProfilePredefined::automaticId;
}

bool QFanProfileList::isActiveFullBlast() const
{
    const std::lock_guard lock(m_mutex);
    const FanProfilePredefined* const active = activePredefined();
    return active != nullptr && active->id() == FanProfilePredefined::fullBlastId;
}

int QFanProfileList::activeCustomIndex() const
{
    const std::lock_guard lock(m_mutex);
    return indexOfActiveCustom();
}

void QFanProfileList::setActiveProfile(FanProfile profile)
{
    {
        const std::lock_guard lock(m_mutex);
        m_keptActive.clear();
        activate(profile);
        saveLocked();
    }
    Q_EMIT profilesChanged(this);
}

bool QFanProfileList::replaceActiveMode(std::uint8_t fan, const FanControlMode& expected,
                                        const FanControlMode& replacement)
{
    {
        const std::lock_guard lock(m_mutex);
        if (m_active == nullptr || !(m_active->mode(fan) == expected)) {
            return false;
        }
        FanProfile changed = *m_active;
        changed.setMode(fan, replacement);
        activate(changed);
        saveLocked();
    }
    Q_EMIT profilesChanged(this);
    return true;
}

void QFanProfileList::saveUnsavedProfile(QString name)
{
    {
        const std::lock_guard lock(m_mutex);
        if (m_active == nullptr || m_active->modeCount() == 0 || name.isEmpty()) {
            return;
        }
        m_keptActive.clear();
        FanProfile named = *m_active;
        named.setName(name);
        const auto sameName
            = std::find_if(m_custom.begin(), m_custom.end(),
                           [&named](const auto& custom) { return custom->name() == named.name(); });
        if (sameName != m_custom.end()) {
            **sameName = named;
            m_active = sameName->get();
        } else {
            m_custom.push_back(std::make_unique<FanProfile>(named));
            m_active = m_custom.back().get();
        }
        m_unsaved.reset();
        saveLocked();
    }
    Q_EMIT profilesChanged(this);
}

void QFanProfileList::renameProfile(FanProfile profile, QString newName)
{
    {
        const std::lock_guard lock(m_mutex);
        const auto custom = findCustom(profile);
        if (custom == m_custom.end() || newName.isEmpty()) {
            return;
        }
        (*custom)->setName(newName);
        saveLocked();
    }
    Q_EMIT profilesChanged(this);
}

void QFanProfileList::deleteProfile(const FanProfile& profile)
{
    {
        const std::lock_guard lock(m_mutex);
        const auto custom = findCustom(profile);
        if (custom == m_custom.end()) {
            return;
        }
        // The caller's preset may be the one that goes.
        const std::unique_ptr<FanProfile> removed = std::move(*custom);
        m_custom.erase(custom);
        const bool wasActive = m_active != nullptr && m_active->hasSameModes(*removed);
        if (wasActive) {
            activate(defaultProfileLocked());
        }
        saveLocked();
    }
    Q_EMIT profilesChanged(this);
}

const FanProfilePredefined* QFanProfileList::activePredefined() const
{
    for (const auto& profile : m_predefined) {
        if (profile.get() == m_active) {
            return profile.get();
        }
    }
    return nullptr;
}

int QFanProfileList::indexOfActiveCustom() const
{
    for (std::size_t i = 0; i < m_custom.size(); ++i) {
        if (m_custom[i].get() == m_active) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

QFanProfileList::CustomList::iterator QFanProfileList::findCustom(const FanProfile& profile)
{
    return std::find_if(m_custom.begin(), m_custom.end(),
                        [&profile](const auto& custom) { return custom->hasSameModes(profile); });
}

FanProfile QFanProfileList::defaultProfileLocked() const
{
    for (const auto& profile : m_predefined) {
        if (profile->id() == FanProfilePredefined::automaticId) {
            return *profile;
        }
    }
    return {};
}

// The caller's preset may be the unsaved one, which goes at the end only.
void QFanProfileList::activate(const FanProfile& profile)
{
    const std::unique_ptr<FanProfile> previous = std::move(m_unsaved);
    m_active = nullptr;
    // In both lists the last match wins: required.
    for (const auto& predefined : m_predefined) {
        if (predefined->hasSameModes(profile)) {
            m_active = predefined.get();
        }
    }
    if (m_active == nullptr) {
        for (const auto& custom : m_custom) {
            if (custom->hasSameModes(profile)) {
                m_active = custom.get();
            }
        }
    }
    if (m_active == nullptr) {
        m_unsaved = std::make_unique<FanProfile>(profile);
        m_active = m_unsaved.get();
    }
    m_forceWrite = true;
}

void QFanProfileList::saveLocked()
{
    if (!m_customLoaded || !m_activeLoaded) {
        return;
    }
    QStringList custom;
    custom.reserve(static_cast<int>(m_custom.size()));
    for (const auto& profile : m_custom) {
        custom.append(profile->toString());
    }
    if (m_settings.getStringList(SettingsKeys::customPresets) != custom) {
        m_settings.setStringList(SettingsKeys::customPresets, custom);
    }
    writeIfChanged(SettingsKeys::customPresetsKept, m_stored.kept);

    if (core::flags::isSet(core::flags::noSupport) || m_active == nullptr) {
        return;
    }
    // At each moment one of the two holds what is to be active.
    if (!m_keptActive.isEmpty()) {
        writeIfChanged(SettingsKeys::activePresetKept, m_keptActive);
    }
    if (m_active->modeCount() == 0) {
        return; // found no fans: what is stored is for the next start
    }
    writeIfChanged(SettingsKeys::activePreset, activeAsText());
    writeIfChanged(SettingsKeys::activePresetKept, m_keptActive);
}

QString QFanProfileList::activeAsText() const
{
    if (const FanProfilePredefined* const predefined = activePredefined()) {
        return storedPredefined(predefined->id());
    }
    const int index = indexOfActiveCustom();
    return index >= 0 ? storedCustom(index) : storedUnsaved(m_active->toString());
}

void QFanProfileList::writeIfChanged(const QString& key, const QStringList& texts)
{
    if (m_settings.getStringList(key) == texts) {
        return;
    }
    if (texts.isEmpty()) {
        m_settings.remove(key);
    } else {
        m_settings.setStringList(key, texts);
    }
}

void QFanProfileList::writeIfChanged(const QString& key, const QString& text)
{
    if (m_settings.getString(key) == text) {
        return;
    }
    if (text.isEmpty()) {
        m_settings.remove(key);
    } else {
        m_settings.setString(key, text);
    }
}
