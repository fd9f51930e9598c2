#include "app/ui/dialogs/qinfodialog.h"

#include <QDate>
#include <QDesktopServices>
#include <QFocusEvent>
#include <QIcon>
#include <QPushButton>
#include <QUrl>

#include "app/ui/dialogs/fixedsize.h"
#include "app/ui/texts.h"
#include "app/ui/typeicons.h"
#include "build_config.h"
#include "core/log/log.h"
#include "ui_qinfodialog.h"

QInfoDialog::Info QInfoDialog::Info::current()
{
    Info info;
    info.productName = QLatin1String(BuildConfig::productName);
    info.version = QStringLiteral("%1.%2.%3")
                       .arg(QString::number(BuildConfig::versionMajor),
                            QString::number(BuildConfig::versionMinor),
                            QString::number(BuildConfig::versionPatch));
    info.build = BuildConfig::versionBuild;
    info.copyrightLine = QString::fromUtf8(BuildConfig::copyrightLine);
    info.year = QDate::currentDate().year();
    info.supportPage = QString::fromUtf8(BuildConfig::supportPage);
    return info;
}

QInfoDialog::QInfoDialog(QWidget* parent, const Info& info)
    : DialogExT(parent, Qt::Sheet)
    , m_supportPage(info.supportPage)
    , m_ui(std::make_unique<Ui::InfoDialog>())
{
    m_ui->setupUi(this);
    initCloseButton();
    connect(m_ui->labelSupport, &QLabel::linkActivated, this, &QInfoDialog::OnLinkActivated);
    m_ui->labelSupport->installEventFilter(this);
    showProduct(info);
    setWindowIcon(applicationTrayIcon());
    setWindowTitle(uiText("AboutDialog/title"));
    m_ui->labelSupport->setText(
        QStringLiteral("<a href='help'>%1</a>").arg(uiText("AboutDialog/staticOnlineHelp")));
    m_ui->labelSupport->setHidden(m_supportPage.isEmpty());
    m_ui->labelDisclamer->setText(uiText("AboutDialog/staticWarning"));
    fixSize(this);
}

QInfoDialog::~QInfoDialog() = default;

void QInfoDialog::initCloseButton()
{
    auto* const close = new QPushButton(uiText("Common/buttonClose"), this);
    close->setObjectName(QStringLiteral("buttonClose"));
    close->setDefault(true);
    close->setAutoDefault(true);
    m_ui->buttonBox->addButton(close, QDialogButtonBox::RejectRole);
    connect(close, &QPushButton::clicked, this, &QInfoDialog::accept);
    close->setFocus();
}

void QInfoDialog::showProduct(const Info& info)
{
    m_ui->m_AboutIcon->setPixmap(
        QIcon(QStringLiteral(":/Resources/icon_128.png")).pixmap(QSize(128, 128)));
    QString copyright = info.copyrightLine;
    m_ui->labelCopyright->setText(
        copyright.replace(QLatin1String("%1"), QString::number(info.year)));
    m_ui->labelAppName->setText(
        QStringLiteral("<b>%1 %2</b> Build %3")
            .arg(info.productName, info.version, QString::number(info.build)));
}

bool QInfoDialog::eventFilter(QObject* watched, QEvent* event)
{
    // A label selects its link, so that it can be seen and Enter follows it, no
    // sooner than at the second press of Tab.
    const bool isFocusChange
        = event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut;
    if (watched == m_ui->labelSupport && isFocusChange) {
        const auto reason = static_cast<QFocusEvent*>(event)->reason();
        const bool byTab = reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason;
        const bool isSelected = event->type() == QEvent::FocusIn && byTab;
        m_ui->labelSupport->setSelection(
            0, isSelected ? uiText("AboutDialog/staticOnlineHelp").size() : 0);
    }
    return DialogExT::eventFilter(watched, event);
}

void QInfoDialog::OnLinkActivated(const QString& link)
{
    if (link != QLatin1String("help")) {
        return;
    }
    if (!QDesktopServices::openUrl(QUrl(m_supportPage))) {
        LOG_WARN("No browser opens the page {}", m_supportPage);
    }
}
