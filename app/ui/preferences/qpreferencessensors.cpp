#include "app/ui/preferences/qpreferencessensors.h"

#include "app/settingskeys.h"
#include "app/ui/preferences/preferencesicons.h"
#include "app/ui/texts.h"
#include "core/settings/qsettingscache.h"
#include "ui_qpreferencessensors.h"

QPreferencesSensors::QPreferencesSensors(QWidget* parent, QSettingsCache& settings,
                                         bool isEGpuCapable)
    : QPreferencesPage(parent)
    , m_ui(std::make_unique<Ui::PreferencesSensors>())
    , m_settings(settings)
{
    using namespace SettingsKeys;
    m_ui->setupUi(this);
    m_ui->checkPrecise->setChecked(m_settings.getInt(preciseTemperature) != 0);
    m_ui->checkFahrenheit->setChecked(m_settings.getInt(fahrenheit) == 1);
    m_ui->checkDrivesSmart->setChecked(m_settings.getInt(showSmartDrives) == 1);
    m_ui->checkDrivesNVMe->setChecked(m_settings.getInt(showNvmeDrives) == 1);
    connectBox(m_ui->checkPrecise, preciseTemperature, &QPreferencesSensors::preferencesChanged);
    connectBox(m_ui->checkFahrenheit, fahrenheit, &QPreferencesSensors::preferencesChanged);
    connectBox(m_ui->checkDrivesSmart, showSmartDrives,
               &QPreferencesSensors::sensorsReloadRequired);
    connectBox(m_ui->checkDrivesNVMe, showNvmeDrives, &QPreferencesSensors::sensorsReloadRequired);

    // It tells what the machine can do, whatever the setting: required.
    m_ui->checkGPUThunderbolt->setEnabled(false);
    m_ui->checkGPUThunderbolt->setChecked(isEGpuCapable);
    connectBox(m_ui->checkGPUThunderbolt, showEGpuTemp,
               &QPreferencesSensors::sensorsReloadRequired);
}

QPreferencesSensors::~QPreferencesSensors() = default;

QString QPreferencesSensors::getTitle() const
{
    return QStringLiteral("T\u00B0 %1").arg(uiText("PreferencesWindow/tabSensors"));
}

QIcon QPreferencesSensors::getIcon() const
{
    return preferencesIcon(PreferencesPageNumber::Sensors);
}

void QPreferencesSensors::updateLayout()
{
    m_ui->checkFahrenheit->setText(uiText("PreferencesWindow/checkFahrenheit"));
    m_ui->checkPrecise->setText(uiText("PreferencesWindow/checkPrecise"));
    m_ui->labelSensors->setText(uiText("PreferencesWindow/labelSensors"));
    m_ui->checkGPUThunderbolt->setText(uiText("PreferencesWindow/checkExternalGPU"));
    m_ui->checkDrivesSmart->setText(uiText("PreferencesWindow/checkSATADrives"));
    m_ui->checkDrivesNVMe->setText(uiText("PreferencesWindow/checkNVMeDrives"));
    takeOwnSize();
}

void QPreferencesSensors::connectBox(QCheckBox* box, QLatin1String key,
                                     void (QPreferencesSensors::*signal)())
{
    connect(box, &QCheckBox::toggled, this, [this, key, signal](bool on) {
        m_settings.setInt(key, on ? 1 : 0);
        Q_EMIT(this->*signal)();
    });
}
