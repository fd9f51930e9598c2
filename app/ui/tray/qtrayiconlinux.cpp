#include "app/ui/tray/qtrayiconlinux.h"

#include <QSystemTrayIcon>

#include "app/ui/tray/traydrawing.h"
#include "app/ui/tray/trayiconengine.h"

QTrayIconLinux::QTrayIconLinux()
    : m_icon(new QSystemTrayIcon(this))
{
    // Without a picture the icon can't be shown.
    setIcon(TrayIconAlways, -1.0);
    connect(m_icon, &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                // Not every desktop tells a double click, and the others tell its
                // first click before it.
                if (reason == QSystemTrayIcon::Trigger) {
                    Q_EMIT activated();
                }
            });
}

void QTrayIconLinux::setVisible(bool visible) { m_icon->setVisible(visible); }

void QTrayIconLinux::setIcon(std::uint32_t flags, double value)
{
    m_icon->setIcon(trayIcon(trayReadingText(flags, value)));
}

void QTrayIconLinux::setToolTip(const QString& toolTip) { m_icon->setToolTip(toolTip); }

void QTrayIconLinux::setContextMenu(QMenu* menu) { m_icon->setContextMenu(menu); }
