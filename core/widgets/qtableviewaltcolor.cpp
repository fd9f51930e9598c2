#include "core/widgets/qtableviewaltcolor.h"

#include <QHeaderView>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>

QTableViewAltColor::QTableViewAltColor(QWidget* parent)
    : QTableView(parent)
{
    setAlternatingRowColors(true);
}

void QTableViewAltColor::paintEvent(QPaintEvent* event)
{
    // A table that is scrolled has no room below its last row.
    if (verticalHeader() != nullptr && verticalScrollBar()->value() == 0) {
        paintStripes(event->rect());
    }
    QTableView::paintEvent(event);
}

void QTableViewAltColor::paintStripes(const QRect& area)
{
    const int height = verticalHeader()->defaultSectionSize();
    if (height <= 0) {
        return;
    }
    // The second, the fourth and every other row after it has the other colour.
    const int rows = model() != nullptr ? model()->rowCount(rootIndex()) : 0;
    const int first = rows % 2 != 0 ? rows : rows + 1;
    QPainter painter(viewport());
    const QBrush& brush = palette().brush(QPalette::AlternateBase);
    for (int y = first * height; y <= area.bottom(); y += 2 * height) {
        painter.fillRect(0, y, width(), height, brush);
    }
}
