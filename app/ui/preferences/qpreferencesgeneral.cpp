#include "app/ui/preferences/qpreferencesgeneral.h"

#include <QSignalBlocker>

#include "app/settingskeys.h"
#include "app/ui/preferences/preferencesicons.h"
#include "app/ui/texts.h"
#include "core/language/languagestrings.h"
#include "core/settings/qsettingscache.h"
#include "ui_qpreferencesgeneral.h"

QPreferencesGeneral::QPreferencesGeneral(QWidget* parent, QSettingsCache& settings,
                                         const PreferencesHost& host)
    : QPreferencesPage(parent)
    , m_ui(std::make_unique<Ui::PreferencesGeneral>())
    , m_settings(settings)
    , m_host(host)
{
    m_ui->setupUi(this);
    m_ui->checkAutostart->setChecked(m_host.isAutostart());
    connect(m_ui->checkAutostart, &QCheckBox::toggled, this, &QPreferencesGeneral::changeAutostart);

    const bool hasUpdates = m_host.isUpdateCheckOn && m_host.setUpdateCheckOn;
    m_ui->checkUpdates->setEnabled(hasUpdates);
    m_ui->checkUpdates->setChecked(hasUpdates && m_host.isUpdateCheckOn());
    connect(m_ui->checkUpdates, &QCheckBox::toggled, this,
            [this](bool on) { m_host.setUpdateCheckOn(on); });

    m_ui->comboLanguage->load(m_host.language());
    m_ui->labelLanguage->setBuddy(m_ui->comboLanguage);
    connect(m_ui->comboLanguage, qOverload<int>(&QComboBox::currentIndexChanged), this,
            &QPreferencesGeneral::changeLanguage);

    m_ui->labelTranslate->setText(QStringLiteral("<a href=\"translate\">Translate</a>"));
    m_ui->labelTranslate->setVisible(static_cast<bool>(m_host.openTranslationPage));
    connect(m_ui->labelTranslate, &QLabel::linkActivated, this, [this](const QString& link) {
        if (link == QLatin1String("translate")) {
            m_host.openTranslationPage();
        }
    });
}

QPreferencesGeneral::~QPreferencesGeneral() = default;

QString QPreferencesGeneral::getTitle() const { return uiText("PreferencesWindow/TabGeneral"); }

QIcon QPreferencesGeneral::getIcon() const
{
    return preferencesIcon(PreferencesPageNumber::General);
}

void QPreferencesGeneral::updateLayout()
{
    m_ui->labelLanguage->setText(uiText("PreferencesWindow/staticLanguage"));
    m_ui->checkAutostart->setText(uiText("PreferencesWindow/checkSystemStart"));
    m_ui->checkUpdates->setText(uiText("PreferencesWindow/checkUpdatesOnStartup"));
    takeOwnSize();
}

void QPreferencesGeneral::changeAutostart(bool enable)
{
    m_host.setAutostart(enable);
    // The system may have refused.
    const QSignalBlocker quiet(m_ui->checkAutostart);
    m_ui->checkAutostart->setChecked(m_host.isAutostart());
}

void QPreferencesGeneral::changeLanguage()
{
    const QString selected = m_ui->comboLanguage->selectedLanguage();
    const QString fileName = selected + QLatin1String(".xml");
    if (selected.isEmpty() || fileName == m_host.language().getLanguageFileName()) {
        return;
    }
    m_host.loadLanguage(fileName);
    // Of a file that can't be read nothing remains: another language is in force.
    const QString inForce = m_host.language().getLanguageFileName();
    if (!inForce.isEmpty()) {
        m_settings.setString(SettingsKeys::interfaceLanguage, inForce);
    }
    m_ui->comboLanguage->load(m_host.language());
    Q_EMIT preferencesChanged();
    Q_EMIT needRecalculateLayout();
}
