#include "core/widgets/windowicon.h"

QIcon windowIcon()
{
    static const QIcon icon = [] {
        QIcon result;
        result.addFile(QStringLiteral(":/Resources/tray.png"), QSize(16, 16));
        result.addFile(QStringLiteral(":/Resources/tray@2x.png"), QSize(32, 32));
        result.addFile(QStringLiteral(":/Resources/icon_64.png"), QSize(64, 64));
        result.addFile(QStringLiteral(":/Resources/icon_128.png"), QSize(128, 128));
        return result;
    }();
    return icon;
}
