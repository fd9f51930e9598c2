#include "app/ui/windowdialogs.h"

#include <QApplication>
#include <QPushButton>

#include "app/fancontrol/fancontrol.h"
#include "app/fancontrol/fanprofilelist.h"
#include "app/sensors/tempsensorabstract.h"
#include "app/sensors/tempsensorprovider.h"
#include "app/ui/dialogs/qchangecontrolmodedialog.h"
#include "app/ui/dialogs/qinfodialog.h"
#include "app/ui/dialogs/qratemedialog.h"
#include "app/ui/preferences/qpreferencesdialog.h"
#include "app/ui/presets/qsaveeditprofiledialog.h"
#include "app/ui/texts.h"
#include "app/ui/typeicons.h"
#include "core/widgets/qmessageboxex.h"

WindowDialogs::WindowDialogs(QWidget* window, QFanControl& fanControl, QSettingsCache& settings)
    : QObject(window)
    , m_window(window)
    , m_fanControl(fanControl)
    , m_settings(settings)
{
}

WindowDialogs::~WindowDialogs() = default;

void WindowDialogs::closeActive()
{
    if (auto* const modal = QApplication::activeModalWidget()) {
        modal->close();
    }
}

void WindowDialogs::closeAll()
{
    while (auto* const modal = QApplication::activeModalWidget()) {
        if (!modal->close()) {
            return;
        }
    }
}

QWidget* WindowDialogs::parentWidget() const
{
    return m_window->isVisible() && !m_window->isMinimized() ? m_window : nullptr;
}

ModalDialogParameters WindowDialogs::parameters() const
{
    ModalDialogParameters parameters;
    parameters.techInfo = [engine = &m_fanControl] { return engine->getTechInfo(); };
    if (!m_isLoaded) {
        return parameters;
    }
    for (const auto* sensor : m_fanControl.sensorProvider()->getSensors()) {
        parameters.sensors.push_back({ sensor->displayName(), sensor->key(),
                                       sensorIcon(sensor->type()), sensor->getMinTemperature(),
                                       sensor->getMaxTemperature() });
    }
    for (const FanRecord& fan : m_fanControl.getFans()) {
        const FanSpeeds speeds = fan.speeds();
        parameters.fans.push_back({ fan.name(), QString::number(parameters.fans.size()),
                                    fanIcon(fan.location(), false), speeds.current, speeds.min,
                                    speeds.max });
    }
    return parameters;
}

std::optional<WindowDialogs::FanOrder> WindowDialogs::askFanMode(uint8_t fan)
{
    const auto* const profiles = m_fanControl.profiles();
    const QString presetName
        = profiles->isActiveCustom() ? profiles->activeProfile().name() : QString();
    const FanControlMode mode = m_fanControl.getFanMode(fan);
    QChangeControlModeDialog dialog(
        parentWidget(), fan, [this] { return parameters(); }, mode, presetName, m_settings,
        m_lastAppliedModes);
    if (dialog.exec() != QDialog::Accepted || dialog.resultMode() == mode) {
        return {};
    }
    return FanOrder { dialog.resultMode(), dialog.saveToPreset() };
}

void WindowDialogs::showPreferences(const PreferencesHost& host)
{
    closeActive();
    // Over the window, whether it can be seen or not.
    QPreferencesDialog dialog(
        m_window, m_settings, host, [this] { return parameters(); }, m_lastPreferencesPage);
    connect(&dialog, &QPreferencesDialog::preferencesChanged, this,
            &WindowDialogs::preferencesChanged);
    connect(&dialog, &QPreferencesDialog::sensorsReloadRequired, &m_fanControl,
            &QFanControl::slotSensorsReload);
    dialog.exec();
}

void WindowDialogs::showInfo()
{
    closeActive();
    QInfoDialog(parentWidget(), QInfoDialog::Info::current()).exec();
}

void WindowDialogs::showNewPresetTip()
{
    closeActive();
    QMessageBoxEx box(parentWidget());
    if (FanProfile::fanCount() == 1) {
        // Whoever dismisses the tip wants nothing.
        box.setEscapeButton(box.addButton(QMessageBox::Ok));
        auto* const custom = box.addButton(
            uiText("Presets/presetCreateNewButton").arg(m_fanControl.getFans().front().name()),
            QMessageBox::NoRole);
        connect(custom, &QPushButton::clicked, this, &WindowDialogs::customFanWanted);
    }
    box.setIcon(QMessageBox::Information);
    box.setText(uiText("Presets/presetCreateNewTitle"));
    box.setInformativeText(
        m_fanControl.profiles()->isActiveFullBlast()
            ? uiText("Presets/presetCreateNewMessage2").arg(uiText("Presets/presetFullBlast"))
            : uiText("Presets/presetCreateNewMessage"));
    box.exec();
}

QString WindowDialogs::askPresetName(const QStringList& existingNames, const QString& currentName)
{
    closeActive();
    QSaveEditProfileDialog dialog(parentWidget(), existingNames, currentName);
    return dialog.exec() == QDialog::Accepted ? dialog.resultName() : QString();
}

RateSchedule::Answer WindowDialogs::askForRating()
{
    QRateMeDialog dialog(m_window);
    dialog.exec();
    return dialog.answer();
}
