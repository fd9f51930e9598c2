#include "app/ui/dialogs/qratemedialog.h"

#include <QCheckBox>
#include <QIcon>
#include <QPushButton>

#include "app/ui/texts.h"
#include "build_config.h"
#include "core/widgets/widgethelpers.h"

QRateMeDialog::QRateMeDialog(QWidget* parent)
    : QMessageBoxEx(parent, true)
{
    setCheckBox(new QCheckBox(this));
    setText(uiText("RateMeDialog/message"));
    setInformativeText(
        uiText("RateMeDialog/informativeText").arg(QLatin1String(BuildConfig::productName)));
    m_rateButton = addButton(uiText("RateMeDialog/buttonRate"), AcceptRole);
    auto* const noThanks = addButton(uiText("RateMeDialog/buttonNoThanks"), RejectRole);
    setIconPixmap(QIcon(QStringLiteral(":/Resources/icon_128.png")).pixmap(QSize(48, 48)));
    checkBox()->setText(uiText("RateMeDialog/checkDontShowAgain"));
    setTextMinimumWidth(380);
    padButton(m_rateButton);
    padButton(noThanks);
}

RateSchedule::Answer QRateMeDialog::answer() const
{
    RateSchedule::Answer answer;
    answer.rate = clickedButton() == m_rateButton;
    answer.dontAskAgain = checkBox() != nullptr && checkBox()->isChecked();
    return answer;
}
