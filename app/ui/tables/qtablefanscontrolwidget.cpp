#include "app/ui/tables/qtablefanscontrolwidget.h"

#include <algorithm>

#include <QHBoxLayout>
#include <QResizeEvent>

#include "app/ui/tables/qcocoafanssegmentedbutton.h"
#include "app/ui/texts.h"
#include "core/widgets/widgethelpers.h"

namespace {

enum Segment { AutomaticSegment, CustomSegment, SegmentCount };

// Pixels.
constexpr int segmentMargin = 4;
constexpr int unusedWidth = 40;
constexpr int automaticSegmentLimit = 100;
constexpr int customSegmentLimit = 300;
constexpr int buttonPadding = 16;

} // namespace

QTableFansControlWidget::QTableFansControlWidget(std::uint8_t fan, QWidget* parent)
    : QWidget(parent)
    , m_button(new QCocoaFansSegmentedButton(this))
    , m_fan(fan)
{
    m_button->setSegmentCount(SegmentCount);
    m_button->setSelectionKind(QCocoaSegmentedButton::SelectOne);
    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_button);
    // The segments stay side by side in the middle, and apart from the next row's.
    m_button->layout()->setAlignment(Qt::AlignHCenter);
    m_button->layout()->setContentsMargins(0, scaled(segmentMargin), 0, scaled(segmentMargin));
    connect(m_button, &QCocoaSegmentedButton::clicked, this, &QTableFansControlWidget::slotClicked);
    translate();
}

void QTableFansControlWidget::showMode(const FanControlMode& mode, bool force)
{
    if (mode.type() == FanControlInvalid || (mode == m_mode && !force)) {
        return;
    }
    m_button->setVisible(true);
    m_mode = mode;
    if (mode.isAutomatic()) {
        m_button->setSegmentChecked(AutomaticSegment, true);
        m_text = uiText("MainWindow/buttonFanControlCustom");
        setSegment(CustomSegment, m_text, uiText("MainWindow/buttonFanControlCustomInfo"));
    } else {
        m_button->setSegmentChecked(CustomSegment, true);
        m_text = mode.displayText(false);
        setSegment(CustomSegment, m_text, m_text);
    }
}

void QTableFansControlWidget::translate()
{
    setSegment(AutomaticSegment, FanControlMode::automatic().displayText(false),
               uiText("MainWindow/fanControlAutomaticInfo"));
    showLastMode();
}

void QTableFansControlWidget::setSegment(int segment, const QString& text, const QString& toolTip)
{
    m_button->setSegmentText(segment, text);
    m_button->setSegmentToolTip(segment, toolTip);
}

void QTableFansControlWidget::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    const int width = event->size().width() - unusedWidth;
    if (width > 0) {
        const int automaticWidth = std::min(width / 2, automaticSegmentLimit);
        m_button->setSegmentWidth(AutomaticSegment, automaticWidth);
        m_button->setSegmentWidth(CustomSegment,
                                  std::min(width - automaticWidth, customSegmentLimit));
    }
    // The texts are cut to the segments' widths.
    translate();
}

int QTableFansControlWidget::widthForButtons(const QFontMetrics& metrics)
{
    int widest = 0;
    for (const QString& text : { FanControlMode::automatic().displayText(false),
                                 uiText("MainWindow/buttonFanControlCustom") }) {
        widest = std::max(widest, metrics.horizontalAdvance(text) + buttonPadding);
    }
    return unusedWidth + std::min(widest, automaticSegmentLimit)
        + std::min(widest, customSegmentLimit);
}

void QTableFansControlWidget::slotClicked(int segment)
{
    if (segment == AutomaticSegment) {
        Q_EMIT fanAutoModeClicked(m_fan);
    } else {
        Q_EMIT fanManualModeClicked(m_fan);
    }
}
