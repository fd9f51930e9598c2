#pragma once

#include <functional>
#include <optional>

#include <QObject>
#include <QString>
#include <QStringList>

#include "app/fancontrol/fancontrolmode.h"
#include "app/ui/dialogs/lastappliedmodes.h"
#include "app/ui/dialogs/rateschedule.h"
#include "app/ui/modaldialogparameters.h"

class QFanControl;
class QSettingsCache;
class QWidget;
struct PreferencesHost;

// The dialogs over the main window, one at a time: each of them closes the one that
// is open. All wait for the user. GUI thread only.
class WindowDialogs : public QObject {
    Q_OBJECT

public:
    // The window owns it. The engine, the settings and the host must outlive the
    // window.
    WindowDialogs(QWidget* window, QFanControl& fanControl, QSettingsCache& settings);
    ~WindowDialogs() override;

    // Until then the engine's fans and sensors belong to the load, and the dialogs
    // know of none.
    void noteLoaded() { m_isLoaded = true; }

    // Closes the dialog in front, and all of them.
    static void closeActive();
    static void closeAll();
    // For a message: the window if it can be seen.
    [[nodiscard]] QWidget* parentWidget() const;

    struct FanOrder {
        FanControlMode mode;
        bool saveToPreset = false;
    };
    // Empty when the user cancels, or leaves the fan as it is.
    [[nodiscard]] std::optional<FanOrder> askFanMode(uint8_t fan);
    void showPreferences(const PreferencesHost& host);
    void showInfo();
    // How a preset comes about. On a machine with one fan it offers that fan's
    // dialog by customFanWanted().
    void showNewPresetTip();
    // Empty when the user cancels.
    [[nodiscard]] QString askPresetName(const QStringList& existingNames,
                                        const QString& currentName);
    [[nodiscard]] RateSchedule::Answer askForRating();

Q_SIGNALS:
    void preferencesChanged();
    void customFanWanted();

private:
    [[nodiscard]] ModalDialogParameters parameters() const;

    QWidget* const m_window;
    QFanControl& m_fanControl;
    QSettingsCache& m_settings;
    LastAppliedModes m_lastAppliedModes;
    int m_lastPreferencesPage = 0;
    bool m_isLoaded = false;
};
