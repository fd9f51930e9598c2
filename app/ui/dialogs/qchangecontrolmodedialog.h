#pragma once

#include <cstdint>
#include <memory>

#include <QDialog>
#include <QString>

#include "app/fancontrol/fancontrolmode.h"
#include "app/ui/modaldialogparameters.h"
#include "app/ui/temperaturescale.h"
#include "core/widgets/dialogext.h"

class LastAppliedModes;
class QPushButton;
class QSettingsCache;

namespace Ui {
class ChangeControlModeDialog;
}

// The modal dialog that sets one fan to a constant speed or lets it follow a
// sensor. It works on a snapshot and leaves the engine alone: the caller reads
// resultMode() and saveToPreset() once exec() has returned Accepted. GUI thread only.
class QChangeControlModeDialog : public Widgets::DialogExT<QDialog> {
    Q_OBJECT

public:
    // mode is the fan's present one; for an automatic fan the dialog opens with what
    // it applied last. presetName names the custom preset in force, or is empty. The
    // settings and the last applied modes must outlive the dialog. A fan that the
    // snapshot doesn't have raises std::out_of_range.
    QChangeControlModeDialog(QWidget* parent, std::uint32_t fanId,
                             const ModalDialogParametersFunction& parameters,
                             const FanControlMode& mode, const QString& presetName,
                             QSettingsCache& settings, LastAppliedModes& lastAppliedModes);
    ~QChangeControlModeDialog() override;

    // What the user has chosen; invalid until the dialog was accepted, and when he
    // chose a sensor on a machine without any.
    [[nodiscard]] const FanControlMode& resultMode() const { return m_resultMode; }
    // Whether the choice goes into the custom preset in force.
    [[nodiscard]] bool saveToPreset() const { return m_saveToPreset; }

private Q_SLOTS:
    void OnFanControlChanged(bool checked);
    void OnCancel(bool checked);
    void OnApply(bool checked);
    void OnSensorChanged(int index);
    void OnIncreaseValueChanged(int value);
    void slotSliderChanged();

private:
    void initControls();
    void initSpeeds(const ModalDialogParameters::Fan& fan);
    void initSensors();
    void initButtons();
    void translate();
    void connectControls();
    void alignControls();
    void moveTabStop();
    void showLimitsError(const ModalDialogParameters::Fan& fan);

    // Empty when no sensor is to be followed.
    [[nodiscard]] QString selectedSensorKey() const;
    [[nodiscard]] FanControlMode chosenMode() const;

    QPushButton* m_buttonOK = nullptr; // child of the button box
    const std::uint32_t m_fanId;
    bool m_hasError = false; // the fan has no range to choose a speed from
    bool m_saveToPreset = false;
    const FanControlMode m_mode; // the one that the dialog opened with
    FanControlMode m_resultMode;
    const ModalDialogParameters m_parameters;
    const QString m_presetName;
    const std::unique_ptr<Ui::ChangeControlModeDialog> m_ui;
    const TemperatureScale m_scale;
    LastAppliedModes& m_lastAppliedModes;
};
