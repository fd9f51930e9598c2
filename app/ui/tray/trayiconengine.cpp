#include "app/ui/tray/trayiconengine.h"

#include <algorithm>

#include <QIconEngine>
#include <QPainter>
#include <QPixmap>

#include "app/ui/tray/traydrawing.h"

namespace {

int side(const QSize& size) { return std::min(size.width(), size.height()); }

class TrayIconEngine final : public QIconEngine {
public:
    explicit TrayIconEngine(const QString& digits)
        : m_digits(digits)
    {
    }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override
    {
        const double ratio = painter->device()->devicePixelRatioF();
        QPixmap picture = pixmap(rect.size() * ratio, mode, state);
        picture.setDevicePixelRatio(ratio);
        QRectF place(QPointF(), QSizeF(picture.size()) / ratio);
        place.moveCenter(QRectF(rect).center());
        painter->drawPixmap(place.topLeft(), picture);
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        Q_UNUSED(mode)
        Q_UNUSED(state)
        return QPixmap::fromImage(drawTrayPicture(m_digits, side(size), side(size)));
    }

    QSize actualSize(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        Q_UNUSED(mode)
        Q_UNUSED(state)
        return { side(size), side(size) };
    }

    // Those of usual panels, once and twice as dense. Trays that take pictures over
    // the bus get one for each.
    QList<QSize> availableSizes(QIcon::Mode mode, QIcon::State state) const override
    {
        Q_UNUSED(mode)
        Q_UNUSED(state)
        QList<QSize> sizes;
        for (const int size : { 16, 22, 24, 32, 44, 48, 64 }) {
            sizes.append(QSize(size, size));
        }
        return sizes;
    }

    QIconEngine* clone() const override { return new TrayIconEngine(*this); }

private:
    const QString m_digits;
};

} // namespace

QIcon trayIcon(const QString& digits) { return QIcon(new TrayIconEngine(digits)); }
