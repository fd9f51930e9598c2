#pragma once

#include <cstdint>
#include <memory>

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QtTest>

#include "app/settingskeys.h"
#include "app/ui/dialogs/lastappliedmodes.h"
#include "app/ui/dialogs/qchangecontrolmodedialog.h"
#include "core/settings/qsettingscache.h"
#include "tests/support/interfacetexts.h"

inline QPixmap plainPixmap(Qt::GlobalColor colour)
{
    QPixmap pixmap(16, 16);
    pixmap.fill(colour);
    return pixmap;
}

// The fan control dialog on a machine of two fans, "Left side" of 1200 to 6000 RPM
// at 2500 and "Exhaust" of 800 to 3000 RPM at 900, and three sensors: "TC0P" of 50
// to 90 degrees Celsius, "TG0P" of 45 to 85, "tc0p" of 30 to 60. A test may change
// it before it opens the dialog.
class ControlModeBench {
public:
    ControlModeBench()
        : settings(std::make_unique<QSettings>(m_folder.filePath(QStringLiteral("settings.ini")),
                                               QSettings::IniFormat))
    {
        setFahrenheit(false);
        machine.fans = { fan("Left side", 1200, 2500, 6000), fan("Exhaust", 800, 900, 3000) };
        machine.sensors
            = { sensor("CPU proximity", "TC0P", 50, 90), sensor("GPU proximity", "TG0P", 45, 85),
                sensor("Ambient", "tc0p", 30, 60) };
    }

    static ModalDialogParameters::Fan fan(const char* name, std::uint16_t min,
                                          std::uint16_t current, std::uint16_t max)
    {
        ModalDialogParameters::Fan result;
        result.name = QLatin1String(name);
        result.icon = QIcon(plainPixmap(Qt::blue));
        result.min = min;
        result.current = current;
        result.max = max;
        return result;
    }
    static ModalDialogParameters::Sensor sensor(const char* name, const char* key, int min, int max)
    {
        ModalDialogParameters::Sensor result;
        result.name = QLatin1String(name);
        result.key = QLatin1String(key);
        result.icon = QIcon(plainPixmap(Qt::red));
        result.minTemperature = min;
        result.maxTemperature = max;
        return result;
    }
    static FanControlMode follow(const char* key, int start, int max)
    {
        return FanControlMode::sensor(QLatin1String(key), start, max);
    }

    void setFahrenheit(bool fahrenheit)
    {
        settings.setInt(SettingsKeys::fahrenheit, fahrenheit ? 1 : 0);
    }

    // Replaces the dialog by a new one, which isn't shown yet.
    QChangeControlModeDialog& make(const FanControlMode& mode,
                                   const QString& presetName = QString(), std::uint32_t fanId = 0)
    {
        dialog = std::make_unique<QChangeControlModeDialog>(
            nullptr, fanId, [this] { return machine; }, mode, presetName, settings, lastApplied);
        return *dialog;
    }
    // The dialog in front of the user, with the keyboard.
    QChangeControlModeDialog& show(const FanControlMode& mode,
                                   const QString& presetName = QString(), std::uint32_t fanId = 0)
    {
        make(mode, presetName, fanId).show();
        [this] { QVERIFY(QTest::qWaitForWindowActive(dialog.get())); }();
        return *dialog;
    }

    [[nodiscard]] QRadioButton* radioConstant() const
    {
        return find<QRadioButton>("radioConstant");
    }
    [[nodiscard]] QRadioButton* radioSensor() const { return find<QRadioButton>("radioSensor"); }
    [[nodiscard]] QSlider* slider() const { return find<QSlider>("sliderRPM"); }
    [[nodiscard]] QSpinBox* spinConstant() const { return find<QSpinBox>("spinConstant"); }
    [[nodiscard]] QComboBox* combo() const { return find<QComboBox>("comboSensor"); }
    [[nodiscard]] QSpinBox* spinIncrease() const { return find<QSpinBox>("spinIncrease"); }
    [[nodiscard]] QSpinBox* spinMax() const { return find<QSpinBox>("spinMax"); }
    [[nodiscard]] QCheckBox* checkSave() const { return find<QCheckBox>("checkSaveProfile"); }
    [[nodiscard]] QLabel* footer() const { return find<QLabel>("labelFooter"); }
    [[nodiscard]] QPushButton* ok() const { return button(QDialogButtonBox::AcceptRole); }
    [[nodiscard]] QPushButton* cancel() const { return button(QDialogButtonBox::RejectRole); }
    // Clicks the round part of a radio button.
    static void choose(QRadioButton* radio)
    {
        QTest::mouseClick(radio, Qt::LeftButton, Qt::NoModifier, QPoint(8, radio->height() / 2));
        QVERIFY(radio->isChecked());
    }
    // As "50-90", in the scale on screen.
    [[nodiscard]] QString temperatures() const
    {
        return QStringLiteral("%1-%2").arg(spinIncrease()->value()).arg(spinMax()->value());
    }
    // The sensor that the user sees.
    [[nodiscard]] QString sensorKey() const { return combo()->currentData().toString(); }

    template <typename Widget> [[nodiscard]] Widget* find(const char* name) const
    {
        return dialog->findChild<Widget*>(QLatin1String(name));
    }

private:
    [[nodiscard]] QPushButton* button(QDialogButtonBox::ButtonRole role) const
    {
        const auto* const box = find<QDialogButtonBox>("buttonBox");
        const QList<QAbstractButton*> buttons = box->buttons();
        for (auto* const candidate : buttons) {
            if (box->buttonRole(candidate) == role) {
                return qobject_cast<QPushButton*>(candidate);
            }
        }
        return nullptr;
    }

    QTemporaryDir m_folder;

public:
    QSettingsCache settings;
    LastAppliedModes lastApplied;
    ModalDialogParameters machine;
    std::unique_ptr<QChangeControlModeDialog> dialog;
};
