#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include <QHash>
#include <QString>
#include <QStringList>

#include "app/fancontrol/fancontrolmode.h"
#include "app/ui/dialogs/rateschedule.h"
#include "app/ui/mainwindowhost.h"
#include "app/ui/windowplace.h"
#include "core/widgets/qmainwindowex.h"

class QAction;
class QCocoaButton;
class QFanControl;
class QFanProfileList;
class QPushButton;
class QTrayIcon;
class WindowDialogs;
struct FanSpeeds;

namespace Ui {
class BrisoraClass;
}

// The window of the program: shows what the engine reports, opens every dialog, and
// hands the user's orders to the engine. A plain close hides it; the engine runs on
// until slotExit, the end of the session or a termination signal. GUI thread only,
// but for isShown().
class QFanControlMainWindow : public QMainWindowEx {
    Q_OBJECT

public:
    // Starts the engine's initial load. The engine and the settings must outlive
    // the window's last event.
    QFanControlMainWindow(QFanControl& fanControl, QSettingsCache& settings, MainWindowHost host);
    ~QFanControlMainWindow() override;

    // Whether the user can see the window. May be called from any thread.
    [[nodiscard]] bool isShown() const { return m_shown; }

    // A start without the window: with the tray it stays hidden, else it starts
    // minimised.
    void startHidden();
    // Puts the window away: into the tray, or among the minimised windows where
    // there is no tray.
    void hideToTray() override;

    // The real close without any question or message to the user.
    void closeForTermination();

public Q_SLOTS:
    // Shows every text and value anew, in the language and the form chosen now.
    void slotUpdatePreferences();
    void slotSensorsReloadBegin();
    void slotSensorsReloadEnd();
    // A number other than 0 tells that the initial load has failed.
    void slotInitFinished(uint8_t failed);
    // Throws std::out_of_range for a fan that the machine doesn't have.
    void slotFanUpdate(uint8_t fan);
    void slotSensorUpdate(uint32_t id, double value);
    void slotShowFanDialog(uint8_t fan);
    void slotResetFanMode(uint8_t fan);
    void slotPreferences();
    void slotInfoDialog();
    void slotRestore();
    void slotExit();
    void slotHomePage();
    void slotRateApp();
    void slotFollowTwitter();
    // Puts the technical report and the log into the clipboard.
    void slotCopyTechInfo();
    void slotShowNewPresetTip();
    // Empty when the user cancels.
    [[nodiscard]] QString letUserSelectProfileName(const QStringList& existingNames,
                                                   const QString& currentName);

protected:
    [[nodiscard]] bool closeToTray() const override { return true; }
    void onClose() override;

    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void makeButtons();
    void connectEngine();
    void connectPresets();
    void connectDialogs();
    void createTrayIcon();
    void updateTrayIcon();
    void profilesChanged(QFanProfileList* profiles);
    void showFan(uint8_t fan, const FanSpeeds& speeds, const FanControlMode& mode);
    // The first rows of both tables stand side by side.
    void alignTables();
    void noteVisibility();
    [[nodiscard]] bool ensureWriteAccess();
    void askForRating();

    QFanControl* const m_fanControl;
    QTrayIcon* m_trayIcon = nullptr; // child, made after the first load
    QPushButton* m_buttonMinimize = nullptr; // children
    QPushButton* m_buttonPreferences = nullptr;
    QCocoaButton* m_buttonAbout = nullptr;
    const std::unique_ptr<Ui::BrisoraClass> m_ui;
    const MainWindowHost m_host;
    RateSchedule m_rateSchedule;
    WindowDialogs* const m_dialogs; // child
    std::unique_ptr<WindowPlace> m_place;
    QHash<uint8_t, FanControlMode> m_lastSeenModes; // what the tray's menu shows
    std::atomic<bool> m_shown { false };
    bool m_wasShown = false;
    bool m_exiting = false;
    bool m_terminating = false;
};
