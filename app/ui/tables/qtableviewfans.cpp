#include "app/ui/tables/qtableviewfans.h"

#include <algorithm>
#include <utility>

#include <QHeaderView>
#include <QItemDelegate>
#include <QLabel>
#include <QToolButton>

#include "app/fancontrol/fancontrol.h"
#include "app/fancontrol/fanprofilelist.h"
#include "app/ui/tables/qtablefanscontrolwidget.h"
#include "app/ui/tables/qtablefansrpmwidget.h"
#include "app/ui/tables/qtableviewfansmodel.h"
#include "app/ui/texts.h"
#include "app/ui/typeicons.h"
#include "core/language/markup.h"
#include "core/widgets/nodrawfocusdelegate.h"
#include "core/widgets/widgethelpers.h"

namespace {

// Pixels.
constexpr int leastHeight = 160;
constexpr int leastWidth = 500;
constexpr int overlayHeight = 40;
constexpr int nameMargins = 8;

} // namespace

QTableViewFans::QTableViewFans(QWidget* parent, SeasonalDecoration::Today today)
    : NoTabKeyWidget(parent)
    , m_rowHeight(scaled(36))
    , m_model(new QTableViewFansModel(this))
    , m_decoration(QStringLiteral(":/Resources/christmas_santa.png"), std::move(today))
{
    setModel(m_model);
    setItemDelegate(new Widgets::NoDrawFocusDelegate<QItemDelegate>(this));
    setIconSize(QSize(scaled(32), scaled(32)));
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setShowGrid(false);
    setWordWrap(false);
    setCornerButtonEnabled(false);

    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setMinimumSectionSize(1);
    verticalHeader()->setDefaultSectionSize(m_rowHeight);
    horizontalHeader()->setSectionsClickable(false);
    horizontalHeader()->setSectionResizeMode(QTableViewFansModel::ControlColumn,
                                             QHeaderView::Stretch);
}

void QTableViewFans::initialize(const QFanControl& fanControl, bool isPassive)
{
    m_isPassive = isPassive;
    m_model->clear();
    for (const FanRecord& fan : fanControl.getFans()) {
        m_model->addRow(fan.name(), fanIcon(fan.location(), true));
    }
    m_model->refresh();

    const int rows = m_model->rowCount();
    setMinimumHeight(
        std::max(horizontalHeader()->sizeHint().height() + m_rowHeight * (rows + 1), leastHeight));
    setMinimumWidth(leastWidth);
    makeCells(fanControl.getFans());
    recomputeColumns();
    updateGeometry();
    if (rows == 0) {
        showOverlay();
    }
}

void QTableViewFans::makeCells(const std::vector<FanRecord>& fans)
{
    QWidget* previous = this;
    for (int row = 0; row < m_model->rowCount(); ++row) {
        const auto fan = static_cast<std::uint8_t>(row);
        auto* const control = new QTableFansControlWidget(fan, viewport());
        control->setAccessibleName(fans[fan].name());
        connect(control, &QTableFansControlWidget::fanManualModeClicked, this,
                &QTableViewFans::fanManualModeClicked);
        connect(control, &QTableFansControlWidget::fanAutoModeClicked, this,
                &QTableViewFans::fanAutoModeClicked);
        setIndexWidget(m_model->index(row, QTableViewFansModel::ControlColumn), control);
        auto* const speeds = new QTableFansRPMWidget(viewport());
        speeds->setAccessibleDescription(fans[fan].name());
        setIndexWidget(m_model->index(row, QTableViewFansModel::RpmColumn), speeds);

        // Tab goes from the table through its rows, and not to the end of the window.
        const auto segments = control->findChildren<QToolButton*>();
        for (QToolButton* const segment : segments) {
            setTabOrder(previous, segment);
            previous = segment;
        }
    }
}

void QTableViewFans::updateRow(std::uint8_t fan, std::int32_t min, std::int32_t current,
                               std::int32_t max, const FanControlMode& mode)
{
    m_model->updateRow(fan, min, current, max, mode);
}

QTableFansControlWidget* QTableViewFans::getControlCell(int fan) const
{
    return qobject_cast<QTableFansControlWidget*>(
        indexWidget(m_model->index(fan, QTableViewFansModel::ControlColumn)));
}

QTableFansRPMWidget* QTableViewFans::getRpmCell(int fan) const
{
    return qobject_cast<QTableFansRPMWidget*>(
        indexWidget(m_model->index(fan, QTableViewFansModel::RpmColumn)));
}

QSize QTableViewFans::sizeHint() const
{
    return { nameWidth() + headerWidth() + QTableFansControlWidget::widthForButtons(fontMetrics())
                 + 2 * frameWidth(),
             NoTabKeyWidget::sizeHint().height() };
}

int QTableViewFans::nameWidth() const
{
    // Before the load, a name as most machines have.
    const QString longest = FanRecord::longestFanName();
    return m_rowHeight + scaled(nameMargins)
        + fontMetrics().horizontalAdvance(longest.isEmpty() ? QStringLiteral("Right side")
                                                            : longest);
}

int QTableViewFans::headerWidth() const
{
    const int textWidth
        = horizontalHeader()->fontMetrics().horizontalAdvance(uiText("MainWindow/listColumnRPM"));
    return std::max(textWidth + 30, 100);
}

void QTableViewFans::recomputeColumns()
{
    int width = headerWidth();
    for (int row = 0; row < m_model->rowCount(); ++row) {
        if (const auto* const cell = getRpmCell(row)) {
            width = std::max(width, cell->sizeHint().width());
        }
    }
    setColumnWidth(QTableViewFansModel::RpmColumn, width);
    horizontalHeader()->setSectionResizeMode(QTableViewFansModel::FanColumn,
                                             QHeaderView::ResizeToContents);
}

void QTableViewFans::translate()
{
    m_model->refresh();
    recomputeColumns();
    for (int row = 0; row < m_model->rowCount(); ++row) {
        if (auto* const cell = getControlCell(row)) {
            cell->translate();
        }
    }
    if (m_overlay != nullptr) {
        m_overlay->setText(overlayText());
    }
}

void QTableViewFans::slotProfilesChanged(QFanProfileList* profiles)
{
    const FanProfile active = profiles->activeProfile();
    for (int row = 0; row < m_model->rowCount(); ++row) {
        auto* const cell = row != m_fanUnderDialog ? getControlCell(row) : nullptr;
        if (cell != nullptr) {
            cell->showMode(active.mode(static_cast<std::uint8_t>(row)));
        }
    }
}

void QTableViewFans::dataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight,
                                 const QVector<int>& roles)
{
    // For several cells at once the base class paints the whole table.
    for (int row = topLeft.row(); row <= bottomRight.row(); ++row) {
        for (int column = topLeft.column(); column <= bottomRight.column(); ++column) {
            const QModelIndex cell = model()->index(row, column);
            NoTabKeyWidget::dataChanged(cell, cell, roles);
        }
    }
}

void QTableViewFans::paintEvent(QPaintEvent* event)
{
    NoTabKeyWidget::paintEvent(event);
    m_decoration.paint(viewport(), rect());
}

void QTableViewFans::resizeEvent(QResizeEvent* event)
{
    NoTabKeyWidget::resizeEvent(event);
    placeOverlay();
}

bool QTableViewFans::viewportEvent(QEvent* event)
{
    // The contents of cells have changed, or may have while nobody looked.
    if (event->type() == QEvent::LayoutRequest || event->type() == QEvent::Show) {
        recomputeColumns();
    }
    return NoTabKeyWidget::viewportEvent(event);
}

void QTableViewFans::showOverlay()
{
    if (m_overlay == nullptr) {
        m_overlay = new QLabel(this);
        m_overlay->setObjectName(QStringLiteral("labelNoFans"));
        m_overlay->setTextFormat(Qt::RichText);
        m_overlay->setOpenExternalLinks(true);
        m_overlay->setTextInteractionFlags(Qt::LinksAccessibleByMouse
                                           | Qt::LinksAccessibleByKeyboard);
        m_overlay->setAlignment(Qt::AlignCenter);
        m_overlay->setWordWrap(true);
        m_overlay->setFixedHeight(overlayHeight);
        m_overlay->setAttribute(Qt::WA_TranslucentBackground);
        const bool isDark = palette().color(QPalette::Base).lightness() < 128;
        m_overlay->setStyleSheet(isDark ? QStringLiteral("QLabel { color : #ffffff; }")
                                        : QStringLiteral("QLabel { color : #293956; }"));
        QFont font = m_overlay->font();
        font.setWeight(QFont::Bold);
        m_overlay->setFont(font);
        setTabOrder(this, m_overlay);
    }
    m_overlay->setText(overlayText());
    placeOverlay();
    m_overlay->show();
}

void QTableViewFans::placeOverlay()
{
    if (m_overlay != nullptr) {
        m_overlay->resize(width(), overlayHeight);
        m_overlay->move(rect().center() - m_overlay->rect().center());
    }
}

QString QTableViewFans::overlayText() const
{
    return markupToHtml(m_isPassive ? uiText("MainWindow/messageNoFansAvailable")
                                    : uiText("MainWindow/messageNoFansDetected"));
}
