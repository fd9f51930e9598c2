#include "app/ui/preferences/qpreferencesmenubar.h"

#include <utility>

#include <QSignalBlocker>

#include "app/settingskeys.h"
#include "app/ui/preferences/preferencesicons.h"
#include "app/ui/texts.h"
#include "app/ui/typeicons.h"
#include "core/settings/qsettingscache.h"
#include "core/widgets/widgethelpers.h"
#include "ui_qpreferencesmenubar.h"

QPreferencesMenubar::QPreferencesMenubar(QWidget* parent, QSettingsCache& settings,
                                         ModalDialogParametersFunction parameters)
    : QPreferencesPage(parent)
    , m_ui(std::make_unique<Ui::PreferencesMenuBar>())
    , m_settings(settings)
    , m_makeParameters(std::move(parameters))
    , m_parameters(m_makeParameters())
{
    m_ui->setupUi(this);
    const std::initializer_list<QWidget*> withoutEffect
        = { m_ui->labelIcon, m_ui->comboIcon, m_ui->labelFan, m_ui->comboFan, m_ui->checkTwoLines };
    for (auto* const widget : withoutEffect) {
        widget->hide();
    }
    m_ui->labelSensor->setBuddy(m_ui->comboSensor);
    m_ui->labelFan->setBuddy(m_ui->comboFan);
    m_ui->labelIcon->setBuddy(m_ui->comboIcon);
    fillSensors();
    connect(m_ui->comboSensor, qOverload<int>(&QComboBox::currentIndexChanged), this,
            &QPreferencesMenubar::changeSensor);
}

QPreferencesMenubar::~QPreferencesMenubar() = default;

QString QPreferencesMenubar::getTitle() const { return uiText("PreferencesWindow/tabTrayIcon"); }

QIcon QPreferencesMenubar::getIcon() const
{
    return preferencesIcon(PreferencesPageNumber::Menubar);
}

void QPreferencesMenubar::updateLayout()
{
    m_parameters = m_makeParameters();
    fillSensors();
    m_ui->labelSensor->setText(uiText("PreferencesWindow/staticSensor"));
    m_ui->labelFan->setText(uiText("PreferencesWindow/staticFan"));
    m_ui->labelIcon->setText(uiText("PreferencesWindow/staticIcon"));
    m_ui->staticCelsius->setText(uiText("PreferencesWindow/staticCelsiusOnlyOnWindows"));
    m_ui->checkTwoLines->setText(uiText("PreferencesWindow/checkTwoLines"));
    m_ui->comboFan->clear();
    m_ui->comboFan->addItem(uiText("PreferencesWindow/comboOptionNone"));
    m_ui->comboIcon->clear();
    m_ui->comboIcon->addItems({ uiText("PreferencesWindow/comboIconOptionShow"),
                                uiText("PreferencesWindow/comboIconOptionShowBW") });
    takeOwnSize();
}

void QPreferencesMenubar::fillSensors()
{
    const QSignalBlocker quiet(m_ui->comboSensor);
    auto* const combo = m_ui->comboSensor;
    combo->clear();
    combo->addItem(transparentIcon(scaled(16)), uiText("PreferencesWindow/comboOptionNone"));
    for (const auto& sensor : m_parameters.sensors) {
        combo->addItem(sensor.icon, sensor.name, sensor.key);
    }
    combo->setCurrentIndex(0);
    const QString chosen = m_settings.getString(SettingsKeys::traySensor);
    const int index = chosen.isEmpty()
        ? -1
        : combo->findData(chosen, Qt::UserRole, Qt::MatchExactly | Qt::MatchCaseSensitive);
    if (index > 0) {
        combo->setCurrentIndex(index);
    }
}

void QPreferencesMenubar::changeSensor(int index)
{
    m_settings.setString(SettingsKeys::traySensor,
                         index >= 1 ? m_ui->comboSensor->itemData(index).toString() : QString());
    Q_EMIT preferencesChanged();
}
