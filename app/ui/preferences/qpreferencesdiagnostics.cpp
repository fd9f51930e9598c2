#include "app/ui/preferences/qpreferencesdiagnostics.h"

#include <utility>

#include <QApplication>
#include <QClipboard>

#include "app/settingskeys.h"
#include "app/ui/texts.h"
#include "core/settings/qsettingscache.h"
#include "core/widgets/revealfile.h"
#include "core/widgets/widgethelpers.h"
#include "ui_qpreferencesdiagnostics.h"

QPreferencesDiagnostics::QPreferencesDiagnostics(QWidget* parent, QSettingsCache& settings,
                                                 const QString& logFile,
                                                 std::function<QString()> techInfo)
    : QPreferencesPage(parent)
    , m_ui(std::make_unique<Ui::PreferencesDiagnostics>())
{
    m_ui->setupUi(this);
    m_ui->checkLog->setChecked(settings.getInt(SettingsKeys::enableLog) == 1);
    connect(m_ui->checkLog, &QCheckBox::toggled, this,
            [cache = &settings](bool on) { cache->setInt(SettingsKeys::enableLog, on ? 1 : 0); });
    connect(m_ui->labelBrowseLog, &QLabel::linkActivated, this, [logFile](const QString& link) {
        if (link == QLatin1String("browse")) {
            revealFile(logFile, false);
        }
    });
    connect(m_ui->buttonCopy, &QPushButton::clicked, this, [report = std::move(techInfo)] {
        if (auto* const clipboard = QApplication::clipboard()) {
            clipboard->setText(report());
        }
    });
}

QPreferencesDiagnostics::~QPreferencesDiagnostics() = default;

QString QPreferencesDiagnostics::getTitle() const
{
    return uiText("PreferencesWindow/tabDiagnostics");
}

void QPreferencesDiagnostics::updateLayout()
{
    m_ui->checkLog->setText(uiText("PreferencesWindow/checkLog"));
    m_ui->labelBrowseLog->setText(
        QStringLiteral("<a href='browse'>%1</a>").arg(uiText("PreferencesWindow/browseLog")));
    m_ui->buttonCopy->setText(uiText("PreferencesWindow/buttonCopyTechInfo"));
    padButton(m_ui->buttonCopy);
    takeOwnSize();
}
