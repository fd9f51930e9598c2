#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

#include <QObject>
#include <QPointer>
#include <QString>

#include "app/fancontrol/fanprofile.h"
#include "app/ui/tray/traymenu.h"

class QAction;
class QFanControl;
class QMenu;
class QSettingsCache;
class QTrayIconPlatform;
class QWidget;
class TemperatureSensorAbstract;

// The tray icon, which keeps the program reachable while its window is hidden: a
// menu with the presets, the fans and the commands, a tool tip with the fans'
// speeds, and a picture that can show one sensor. It only asks for things, by its
// signals. GUI thread only.
class QTrayIcon : public QObject {
    Q_OBJECT

public:
    // Shows the icon. To be made once the engine has loaded: the fans are counted
    // here. The window is the parent of icon and menu; engine and settings must
    // outlive the icon.
    QTrayIcon(QWidget* window, QFanControl& fanControl, QSettingsCache& settings,
              std::unique_ptr<QTrayIconPlatform> platform, const TrayMenuOptions& options);
    ~QTrayIcon() override;

    void setVisible(bool visible);

    // Each of these asks for what is to be shown now, and changes nothing when that
    // is shown already. A menu that is open is built anew once it is closed.
    void updateIcon();
    void rebuildMenu();
    void updateToolTip();

    // The sensor that the user has chosen for the picture, or null. Valid until the
    // sensors are loaded anew.
    [[nodiscard]] TemperatureSensorAbstract* selectedSensor() const;

    // An entry that can't be used now is disabled.
    void setUpdatesAvailable(bool available);

Q_SIGNALS:
    void setActiveProfile(FanProfile profile);
    void unsavedSave();
    void unsavedDiscard();
    void showFanDialog(uint8_t fan);
    void resetFanMode(uint8_t fan);
    void showMainWindow();
    void gotoWebsite();
    void checkForUpdates();
    void showPreferences();
    void exit();
    void showAboutDialog();
    void rateApp();
    void followTwitter();
    void copyTechInfo();

protected Q_SLOTS:
    // The action's data names the fan and what is to be done: "0:control",
    // "0:reset". Anything else is ignored.
    void slotProcessFanAction(QAction* action);

private:
    void connectPlatform();
    void clearMenu();
    void fillMenu(QMenu* menu, const TrayMenuEntries& entries);
    void addCommand(QMenu* menu, const TrayMenuEntry& entry);
    void forgetShown();

    const QPointer<QMenu> m_menu; // the window's child
    QFanControl& m_fanControl;
    const std::uint8_t m_fanCount;
    const std::unique_ptr<QTrayIconPlatform> m_platform;
    QSettingsCache& m_settings;
    TrayMenuOptions m_options;

    // What is shown: the flags and digits of the picture, the tool tip, the menu.
    std::optional<std::pair<std::uint32_t, QString>> m_shownReading;
    std::optional<QString> m_shownToolTip;
    TrayMenuEntries m_shownEntries;
    bool m_rebuildPending = false; // until the menu is closed
};
