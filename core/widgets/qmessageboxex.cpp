#include "core/widgets/qmessageboxex.h"

#include <QLabel>
#include <QTextDocument>

namespace {

// Qt's own names of the labels.
const QString textLabelName = QStringLiteral("qt_msgbox_label");
const QString informativeLabelName = QStringLiteral("qt_msgbox_informativelabel");

// What shows in bold as the text would show by itself.
QString asRichText(const QString& text, Qt::TextFormat format)
{
    const bool isPlain
        = format == Qt::PlainText || (format == Qt::AutoText && !Qt::mightBeRichText(text));
    return isPlain ? text.toHtmlEscaped().replace(QLatin1Char('\n'), QLatin1String("<br>")) : text;
}

// As wide as its text is without a break that the text doesn't have.
void widenToText(QLabel* label)
{
    const bool wraps = label->wordWrap();
    label->setWordWrap(false);
    // Never below the present minimum.
    label->setMinimumWidth(label->sizeHint().width());
    label->setWordWrap(wraps);
}

} // namespace

QMessageBoxEx::QMessageBoxEx(QWidget* parent, bool boldText, bool fixLabelWidths)
    : QMessageBoxLocalized(parent)
    , m_fixLabelWidths(fixLabelWidths)
    , m_boldText(boldText)
{
}

void QMessageBoxEx::setTextMinimumWidth(int width)
{
    if (auto* const label = findChild<QLabel*>(textLabelName)) {
        label->setMinimumWidth(width);
    }
}

void QMessageBoxEx::setInformativeTextMaximumWidth(int width)
{
    if (auto* const label = findChild<QLabel*>(informativeLabelName)) {
        label->setMaximumWidth(width);
    }
}

void QMessageBoxEx::makeBold(QLabel* label)
{
    // A box that is shown again has it bold already.
    if (label->text().isEmpty() || label->text() == m_boldened) {
        return;
    }
    m_boldened = QStringLiteral("<b>%1</b>").arg(asRichText(label->text(), label->textFormat()));
    if (label->textFormat() == Qt::PlainText) {
        label->setTextFormat(Qt::AutoText);
    }
    label->setText(m_boldened);
}

void QMessageBoxEx::showEvent(QShowEvent* event)
{
    QMessageBoxLocalized::showEvent(event);
    auto* const textLabel = findChild<QLabel*>(textLabelName);
    auto* const informativeLabel = findChild<QLabel*>(informativeLabelName);
    if (m_boldText && textLabel != nullptr) {
        makeBold(textLabel);
    }
    if (!m_fixLabelWidths) {
        return;
    }
    for (auto* const label : { textLabel, informativeLabel }) {
        if (label != nullptr) {
            widenToText(label);
        }
    }
}
