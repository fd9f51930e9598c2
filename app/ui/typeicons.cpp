#include "app/ui/typeicons.h"

#include <QPixmap>

#include "core/widgets/widgethelpers.h"

namespace {

QString fanPicture(FanLocation location)
{
    switch (location) {
    case FanLocationOdd:
        return QStringLiteral(":/Resources/disc.png");
    case FanLocationHdd:
        return QStringLiteral(":/Resources/drive.png");
    case FanLocationCpu:
        return QStringLiteral(":/Resources/processor.png");
    case FanLocationOther:
        break;
    }
    return QStringLiteral(":/Resources/fan.png");
}

// Empty for a type without one.
QString sensorPicture(SensorType type)
{
    switch (type) {
    case SensorType::odd:
        return QStringLiteral(":/Resources/disc.png");
    case SensorType::cpu:
        return QStringLiteral(":/Resources/processor.png");
    case SensorType::hdd:
        return QStringLiteral(":/Resources/drive.png");
    case SensorType::ssd:
        return QStringLiteral(":/Resources/drive_ssd.png");
    case SensorType::nvme:
        return QStringLiteral(":/Resources/drive_nvme.png");
    case SensorType::airport:
        return QStringLiteral(":/Resources/airport.png");
    case SensorType::psu:
        return QStringLiteral(":/Resources/power-supply.png");
    case SensorType::gpu:
        return QStringLiteral(":/Resources/gpu.png");
    case SensorType::other:
        break;
    }
    return {};
}

} // namespace

QIcon fanIcon(FanLocation location, bool big)
{
    QString picture = fanPicture(location);
    if (big) {
        picture.replace(QLatin1String(".png"), QLatin1String("_big.png"));
    }
    return QIcon(picture);
}

QIcon sensorIcon(SensorType type)
{
    const QString picture = sensorPicture(type);
    return picture.isEmpty() ? transparentIcon(scaled(16)) : QIcon(picture);
}

QIcon applicationTrayIcon()
{
    QIcon icon;
    icon.addFile(QStringLiteral(":/Resources/tray.png"), QSize(16, 16));
    icon.addFile(QStringLiteral(":/Resources/tray@2x.png"), QSize(32, 32));
    return icon;
}

QIcon transparentIcon(int size)
{
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    return QIcon(pixmap);
}

QIcon applicationIcon()
{
    QIcon icon;
    icon.addFile(QStringLiteral(":/Resources/tray.png"), QSize(16, 16));
    icon.addFile(QStringLiteral(":/Resources/tray@2x.png"), QSize(32, 32));
    icon.addFile(QStringLiteral(":/Resources/icon_64.png"), QSize(64, 64));
    icon.addFile(QStringLiteral(":/Resources/icon_128.png"), QSize(128, 128));
    icon.addFile(QStringLiteral(":/Resources/icon_128@2x.png"), QSize(256, 256));
    return icon;
}
