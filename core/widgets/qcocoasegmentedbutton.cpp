#include "core/widgets/qcocoasegmentedbutton.h"

#include <algorithm>
#include <utility>
#include <vector>

#include <QHBoxLayout>
#include <QStyleOptionToolButton>
#include <QStylePainter>
#include <QToolButton>

class QCocoaSegmentedButtonPrivate {
public:
    void applySelectionKind(QToolButton* button) const
    {
        button->setCheckable(selectionKind != QCocoaSegmentedButton::SelectNone);
        button->setAutoExclusive(selectionKind == QCocoaSegmentedButton::SelectOne);
    }

    void applyStyle(QToolButton* button) const
    {
        button->setAutoRaise(segmentStyle == QCocoaSegmentedButton::Flat);
    }

    std::vector<std::unique_ptr<QToolButton>> buttons;
    QCocoaSegmentedButton::SelectionKind selectionKind = QCocoaSegmentedButton::SelectNone;
    QCocoaSegmentedButton::SegmentStyle segmentStyle = QCocoaSegmentedButton::Joined;
    QHBoxLayout* layout = nullptr;
};

namespace {

// Checked segments have the highlight's colour where the style paints buttons in the
// palette's colours: in dark ones they would look like the others.
class Segment final : public QToolButton {
public:
    using QToolButton::QToolButton;

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        QStyleOptionToolButton option;
        initStyleOption(&option);
        if (isChecked()) {
            const QPalette& colors = palette();
            option.palette.setColor(QPalette::Button, colors.color(QPalette::Highlight));
            option.palette.setColor(QPalette::ButtonText, colors.color(QPalette::HighlightedText));
        }
        QStylePainter(this).drawComplexControl(QStyle::CC_ToolButton, option);
    }
};

// The text itself when it fits, else its start with "..." for its last letters.
QString fittingText(const QString& text, const QFontMetrics& metrics, int width)
{
    QString shortened = text;
    while (!shortened.isEmpty() && metrics.horizontalAdvance(shortened) > width) {
        shortened.chop(1);
    }
    if (shortened.size() == text.size()) {
        return text;
    }
    shortened.chop(3);
    if (!shortened.isEmpty() && std::as_const(shortened).back().isHighSurrogate()) {
        shortened.chop(1);
    }
    return shortened + QLatin1String("...");
}

} // namespace

QCocoaSegmentedButton::QCocoaSegmentedButton(QWidget* parent)
    : QWidget(parent)
    , m_private(std::make_unique<QCocoaSegmentedButtonPrivate>())
{
    m_private->layout = new QHBoxLayout(this);
    m_private->layout->setContentsMargins(0, 0, 0, 0);
    m_private->layout->setSpacing(0);
}

QCocoaSegmentedButton::~QCocoaSegmentedButton() = default;

void QCocoaSegmentedButton::setSegmentCount(int count)
{
    m_private->buttons.clear();
    for (int segment = 0; segment < count; ++segment) {
        auto button = std::make_unique<Segment>(this);
        // Segments are reached by Tab and shown so.
        button->setFocusPolicy(Qt::StrongFocus);
        button->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
        m_private->applySelectionKind(button.get());
        m_private->applyStyle(button.get());
        connect(button.get(), &QToolButton::clicked, this,
                [this, segment](bool checked) { Q_EMIT clicked(segment, checked); });
        m_private->layout->addWidget(button.get());
        m_private->buttons.push_back(std::move(button));
    }
}

int QCocoaSegmentedButton::segmentCount() const
{
    return static_cast<int>(m_private->buttons.size());
}

void QCocoaSegmentedButton::setSelectionKind(SelectionKind kind)
{
    m_private->selectionKind = kind;
    for (const auto& button : m_private->buttons) {
        m_private->applySelectionKind(button.get());
    }
}

void QCocoaSegmentedButton::setSegmentStyle(SegmentStyle style)
{
    m_private->segmentStyle = style;
    for (const auto& button : m_private->buttons) {
        m_private->applyStyle(button.get());
    }
}

void QCocoaSegmentedButton::setSegmentChecked(int segment, bool checked)
{
    if (auto* const button = segmentButton(segment)) {
        button->setChecked(checked);
    }
}

bool QCocoaSegmentedButton::isSegmentChecked(int segment) const
{
    const auto* const button = segmentButton(segment);
    return button != nullptr && button->isChecked();
}

void QCocoaSegmentedButton::setSegmentWidth(int segment, int width)
{
    if (auto* const button = segmentButton(segment)) {
        button->setFixedWidth(std::max(width, 0));
    }
}

void QCocoaSegmentedButton::setSegmentToolTip(int segment, const QString& toolTip)
{
    if (auto* const button = segmentButton(segment)) {
        button->setToolTip(toolTip);
    }
}

void QCocoaSegmentedButton::setSegmentText(int segment, const QString& text)
{
    auto* const button = segmentButton(segment);
    if (button == nullptr) {
        return;
    }
    button->setAccessibleName(text);
    // A "&" in a sensor's name is no mnemonic.
    QString shown = fittingText(text, button->fontMetrics(), button->width());
    button->setText(shown.replace(QLatin1Char('&'), QLatin1String("&&")));
}

QString QCocoaSegmentedButton::segmentText(int segment) const
{
    const auto* const button = segmentButton(segment);
    return button != nullptr ? button->text().replace(QLatin1String("&&"), QLatin1String("&"))
                             : QString();
}

QToolButton* QCocoaSegmentedButton::segmentButton(int segment) const
{
    return segment >= 0 && segment < segmentCount()
        ? m_private->buttons[static_cast<std::size_t>(segment)].get()
        : nullptr;
}
