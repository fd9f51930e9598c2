#include "core/widgets/seasonaldecoration.h"

#include <utility>

#include <QIcon>
#include <QImageReader>
#include <QPainter>
#include <QWidget>

namespace {

// The picture at its own size, in the form for the screen's pixels.
QPixmap loadFor(const QWidget* surface, const QString& picture)
{
    return QIcon(picture).pixmap(surface->window()->windowHandle(), QImageReader(picture).size());
}

} // namespace

SeasonalDecoration::SeasonalDecoration(const QString& picture, Today today)
    : m_picture(picture)
    , m_today(std::move(today))
{
}

void SeasonalDecoration::paint(QWidget* surface, const QRect& area)
{
    if (!m_isSeason) {
        const QDate today = m_today();
        m_isSeason = today.month() == 12 && today.day() >= 24; // December has 31 days
        if (*m_isSeason) {
            m_pixmap = loadFor(surface, m_picture);
        }
    }
    if (m_pixmap.isNull()) {
        return;
    }
    QRectF place(QPointF(), QSizeF(m_pixmap.size()) / m_pixmap.devicePixelRatio());
    place.moveCenter(QRectF(area).center());
    QPainter painter(surface);
    painter.setOpacity(0.05);
    painter.drawPixmap(place.topLeft().toPoint(), m_pixmap);
}
