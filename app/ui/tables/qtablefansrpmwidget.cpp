#include "app/ui/tables/qtablefansrpmwidget.h"

#include "app/ui/tables/knownspeed.h"

namespace {

QString plain(std::int32_t rpm)
{
    return isKnownSpeed(rpm) ? QString::number(rpm) : QStringLiteral("\u2013");
}

QString orange(const QString& text)
{
    return QStringLiteral("<font color='#FF7E00'>%1</font>").arg(text);
}

} // namespace

QTableFansRPMWidget::QTableFansRPMWidget(QWidget* parent)
    : QLabel(parent)
{
    setTextFormat(Qt::RichText);
    setAlignment(Qt::AlignCenter);
    // The cell belongs to a table and has its colour.
    setForegroundRole(QPalette::Text);
}

void QTableFansRPMWidget::showSpeeds(std::int32_t min, std::int32_t current, std::int32_t max)
{
    const bool areLimitsEqual = min == max && isKnownSpeed(min);
    const QString minText = areLimitsEqual ? orange(plain(min)) : plain(min);
    const QString maxText = areLimitsEqual ? orange(plain(max)) : plain(max);
    const QString currentText = current == 0 ? orange(plain(current)) : plain(current);
    // The second cell is not closed: required.
    const QString html
        = QStringLiteral("<div align='center'><table><tr><td style='vertical-align: middle'>"
                         "%1 \u2014 </td><td style='vertical-align: middle'>%2<td>"
                         "<td style='vertical-align: middle'>\u2014 %3</td></tr></table></div>")
              .arg(minText, QStringLiteral("<b><big>%1</big></b>").arg(currentText), maxText);
    if (html == text()) {
        return;
    }
    setText(html);
    setAccessibleName(
        QStringLiteral("%1 \u2014 %2 \u2014 %3").arg(plain(min), plain(current), plain(max)));
}
