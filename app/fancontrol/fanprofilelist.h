#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include "app/fancontrol/fanprofile.h"
#include "app/fancontrol/fanprofilestorage.h"

class QSettingsCache;

// All presets, of which exactly one is active once the list has been loaded.
// Operations may be called from any thread; profilesChanged is emitted on the
// calling thread, with no lock held.
class QFanProfileList : public QObject {
    Q_OBJECT

public:
    // The settings must outlive the list.
    explicit QFanProfileList(QSettingsCache& settings, QObject* parent = nullptr);
    ~QFanProfileList() override;

    // Predefined presets come first; the modes' count becomes the fan count.
    void addPredefined(const QVector<FanControlMode>& modes, std::uint8_t id);
    // From the settings, once each, in this order, after the sensors were loaded.
    // What can't be read now is kept and tried again at the next start; an active
    // preset that was kept becomes active again then, unless setActiveProfile() or
    // saveUnsavedProfile() has been called since. Without fans the stored active
    // preset stays as it is.
    void loadCustom();
    void loadActive();
    // Writes the presets to the settings; before both loads have run it does
    // nothing, so that nothing stored is lost.
    void save();

    // A copy; an empty preset while there is none.
    [[nodiscard]] FanProfile activeProfile() const;
    [[nodiscard]] FanProfile defaultProfile() const;
    // Copies, in order. Predefined ones keep their display name and id.
    [[nodiscard]] std::vector<FanProfilePredefined> predefinedProfiles() const;
    [[nodiscard]] std::vector<FanProfile> customProfiles() const;

    // The active preset is in neither list. All four tests are false while there
    // is no active preset.
    [[nodiscard]] bool isUnsaved() const;
    [[nodiscard]] bool isActiveCustom() const;
    [[nodiscard]] bool isActiveAutomatic() const;
    [[nodiscard]] bool isActiveFullBlast() const;
    // The active preset's index in customProfiles(), or -1 when it is none of
    // them.
    [[nodiscard]] int activeCustomIndex() const;

    // The first custom preset with the same modes goes; the active one is
    // replaced by Automatic first. Without such a preset nothing happens.
    void deleteProfile(const FanProfile& profile);

    // Changes one fan's mode in the active preset, in one step, and only if that
    // mode still equals expected. False when it didn't.
    bool replaceActiveMode(std::uint8_t fan, const FanControlMode& expected,
                           const FanControlMode& replacement);

    // Set at each activation. The control task takes it, which clears it, and puts
    // it back when it had no use for it.
    [[nodiscard]] bool isForceWrite() const { return m_forceWrite; }
    [[nodiscard]] bool takeForceWrite() { return m_forceWrite.exchange(false); }
    void putBackForceWrite() { m_forceWrite = true; }

public Q_SLOTS:
    // Lands on a stored preset with the same modes, else becomes the unsaved one.
    void setActiveProfile(FanProfile profile);
    // Keeps the active preset under a name, as a custom preset that is then the
    // active one; a custom preset of that name is overwritten. A stored preset is
    // copied. Without an active preset, fans or a name nothing happens.
    void saveUnsavedProfile(QString name);
    // The first custom preset with the same modes is renamed. Without such a
    // preset or a name nothing happens.
    void renameProfile(FanProfile profile, QString newName);

Q_SIGNALS:
    void profilesChanged(QFanProfileList* profiles);

private:
    using PredefinedList = std::vector<std::unique_ptr<FanProfilePredefined>>;
    using CustomList = std::vector<std::unique_ptr<FanProfile>>;

    // These need the mutex to be held.
    [[nodiscard]] const FanProfilePredefined* activePredefined() const;
    [[nodiscard]] int indexOfActiveCustom() const;
    [[nodiscard]] CustomList::iterator findCustom(const FanProfile& profile);
    [[nodiscard]] FanProfile defaultProfileLocked() const;
    void activate(const FanProfile& profile);
    void saveLocked();
    [[nodiscard]] QString activeAsText() const;
    // An empty value removes the key.
    void writeIfChanged(const QString& key, const QStringList& texts);
    void writeIfChanged(const QString& key, const QString& text);

    QSettingsCache& m_settings;
    // Points into one of the lists or at the unsaved preset; null until the first
    // activation.
    FanProfile* m_active = nullptr;
    std::unique_ptr<FanProfile> m_unsaved; // at most one, and then the active one
    PredefinedList m_predefined;
    CustomList m_custom;
    StoredCustomPresets m_stored; // what loadCustom() has found
    QString m_keptActive; // an active preset that can't be resolved now
    bool m_customLoaded = false;
    bool m_activeLoaded = false;
    std::atomic<bool> m_forceWrite { false };
    mutable std::mutex m_mutex; // guards all of the above but m_settings
};
