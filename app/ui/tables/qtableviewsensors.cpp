#include "app/ui/tables/qtableviewsensors.h"

#include <algorithm>
#include <utility>

#include <QHeaderView>
#include <QItemDelegate>
#include <QScrollBar>

#include "app/ui/tables/qtableviewsensorsmodel.h"
#include "core/widgets/nodrawfocusdelegate.h"
#include "core/widgets/widgethelpers.h"

QTableViewSensors::QTableViewSensors(QWidget* parent, SeasonalDecoration::Today today,
                                     std::function<QDateTime()> now)
    : NoTabKeyWidget(parent)
    , m_model(new QTableViewSensorsModel(this, std::move(now)))
    , m_decoration(QStringLiteral(":/Resources/christmas_snowflake.png"), std::move(today))
{
    setModel(m_model);
    setItemDelegate(new Widgets::NoDrawFocusDelegate<QItemDelegate>(this));
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setShowGrid(false);
    setWordWrap(false);
    setCornerButtonEnabled(false);

    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setMinimumSectionSize(1);
    verticalHeader()->setDefaultSectionSize(scaled(18));
    horizontalHeader()->setSectionsClickable(false);
    horizontalHeader()->setSectionResizeMode(QTableViewSensorsModel::ValueColumn,
                                             QHeaderView::Stretch);
}

void QTableViewSensors::setSettings(QSettingsCache& settings) { m_model->setSettings(settings); }

void QTableViewSensors::load(const TemperatureSensorProvider& provider)
{
    QFont smaller = font();
    if (smaller.pointSize() > 1) {
        smaller.setPointSize(smaller.pointSize() - 1);
    }
    m_model->setSeparatorFont(smaller);
    m_model->load(provider);
}

void QTableViewSensors::update(std::uint32_t id, double value) { m_model->update(id, value); }

void QTableViewSensors::clear() { m_model->clear(); }

void QTableViewSensors::slotUpdatePreferences()
{
    m_model->refresh();
    recomputeColumns();
}

void QTableViewSensors::paintEvent(QPaintEvent* event)
{
    NoTabKeyWidget::paintEvent(event);
    m_decoration.paint(viewport(), rect());
}

void QTableViewSensors::resizeEvent(QResizeEvent* event)
{
    NoTabKeyWidget::resizeEvent(event);
    recomputeColumns();
}

void QTableViewSensors::recomputeColumns()
{
    const QString text
        = m_model->headerData(QTableViewSensorsModel::ValueColumn, Qt::Horizontal).toString();
    const int valueWidth = horizontalHeader()->fontMetrics().horizontalAdvance(text) + 20;
    const int barWidth = verticalScrollBar()->isVisible() ? verticalScrollBar()->width() : 0;
    setColumnWidth(QTableViewSensorsModel::ValueColumn, valueWidth);
    setColumnWidth(QTableViewSensorsModel::SensorColumn,
                   std::max(width() - valueWidth - barWidth, 0));
}
