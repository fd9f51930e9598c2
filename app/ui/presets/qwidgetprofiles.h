#pragma once

#include <functional>
#include <memory>
#include <vector>

#include <QString>
#include <QStringList>
#include <QWidget>

#include "app/fancontrol/fanprofile.h"

class QAction;
class QActionGroup;
class QCocoaButtonActionMenu;
class QFanProfileList;
class QLabel;
class QMenu;

// The bar above the fans table: a button with the active preset's name, which opens
// the list of presets, and one for what can be done with the present state. The bar
// changes nothing by itself; it emits what the user wants. An entry of a menu takes
// effect once the menu is gone and control is back in the event loop, so that
// whatever follows may change the menus. GUI thread only.
class QWidgetProfiles : public QWidget {
    Q_OBJECT

public:
    // Asks the user for a preset's name; an empty answer means cancelled. The current
    // name is empty for a new preset.
    using NameCallback
        = std::function<QString(const QStringList& existingNames, const QString& currentName)>;

    // Both buttons are disabled until the first slotProfilesChanged().
    explicit QWidgetProfiles(QWidget* parent = nullptr);
    ~QWidgetProfiles() override;

    // Both right after the construction. The list must outlive the bar.
    void setProfiles(const QFanProfileList& profiles);
    void setNameCallback(NameCallback callback);

    // Shows all texts in the interface's present language.
    void translate();

Q_SIGNALS:
    // Also emitted on behalf of the tray icon.
    void setActiveProfile(FanProfile preset);
    void deleteProfile(FanProfile preset);
    void saveUnsavedProfile(QString name);
    void renameProfile(FanProfile preset, QString newName);
    // The user wants a new preset, and there is nothing that could be saved as one.
    void showCreateNewPresetMessage();

public Q_SLOTS:
    // Shows the presets as they are now. While a menu is open that waits until it is
    // closed. Without fans both buttons are disabled.
    void slotProfilesChanged();
    // These two ask for a name. Without a callback they throw std::bad_function_call.
    void slotSave();
    void slotRename(FanProfile preset);
    // Asks for automatic control of all fans.
    void slotDiscard();

protected:
    void changeEvent(QEvent* event) override;

private:
    void buildMenuActions();
    void buildMenuPresets();
    void addPredefinedPresets();
    void addCustomPresets();
    void addUnsavedState();
    void addHeading(const char* key);
    QAction* addEntry(QMenu* menu, const QString& text, std::function<void()> effect);
    void addRenameAndDelete(QMenu* menu, const FanProfile& preset);
    void markActive(QAction* entry, const QString& name);
    void showActiveName();
    void fitButtonPresets();
    void rebuildIfWaiting();
    [[nodiscard]] QStringList customNames() const;

    const QFanProfileList* m_profiles = nullptr;
    NameCallback m_nameCallback;
    QLabel* const m_labelActive;
    QCocoaButtonActionMenu* const m_buttonPresets;
    QCocoaButtonActionMenu* const m_buttonActions;
    QMenu* const m_menuPresets;
    QMenu* const m_menuActions;
    std::vector<std::unique_ptr<QMenu>> m_presetMenus; // submenus of the custom presets
    std::unique_ptr<QActionGroup> m_activeEntry; // holds the entry of the active preset
    QString m_activeName; // as it is shown; empty when no preset is active
    bool m_rebuildWaits = false;
};
