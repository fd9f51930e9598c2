#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>

#include <QHash>
#include <QString>

#include "core/widgets/qmainwindowex.h"

class QFanControl;
class QTableWidget;

namespace Ui {
class BrisoraClass;
}

// The window of the program: shows what the engine reports. A plain close hides
// it; the engine runs on until slotExit, the end of the session or a termination
// signal. GUI thread only, but for isShown().
class QFanControlMainWindow : public QMainWindowEx {
    Q_OBJECT

public:
    struct Texts {
        QString productTitle; // product name and version
        QString machineName;
    };

    // Starts the engine's initial load. The engine and the settings must outlive
    // the window's last event; readLog gives the log of this run.
    QFanControlMainWindow(QFanControl& fanControl, QSettingsCache& settings, const Texts& texts,
                          std::function<QString()> readLog);
    ~QFanControlMainWindow() override;

    // Whether the user can see the window. May be called from any thread.
    [[nodiscard]] bool isShown() const { return m_shown; }

    // The real close without any question or message to the user.
    void closeForTermination();

public Q_SLOTS:
    void slotSensorsReloadBegin();
    void slotSensorsReloadEnd();
    // A number other than 0 tells that the initial load has failed.
    void slotInitFinished(uint8_t failed);
    void slotFanUpdate(uint8_t fan);
    void slotSensorUpdate(uint32_t id, double value);
    void slotRestore();
    void slotExit();
    // Puts the technical report and the log into the clipboard.
    void slotCopyTechInfo();

protected:
    [[nodiscard]] bool closeToTray() const override { return true; }
    void onClose() override;

    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void connectEngine();
    void translate();
    void restorePlace();
    void savePlace();
    void fillFans();
    void fillSensors();
    [[nodiscard]] QString activePresetName() const;
    void showActivePreset();
    void firstShow();

    QFanControl& m_fanControl;
    const Texts m_texts;
    const std::function<QString()> m_readLog;
    const std::unique_ptr<Ui::BrisoraClass> m_ui;
    QHash<std::uint32_t, int> m_sensorRows; // by the sensors' ids
    std::atomic<bool> m_shown { false };
    bool m_exiting = false;
    bool m_terminating = false;
};
