#pragma once

#include "app/ui/tray/qtrayiconplatform.h"

class QSystemTrayIcon;

// The icon in the tray of a Linux desktop, through whichever protocol the desktop
// has.
class QTrayIconLinux final : public QTrayIconPlatform {
    Q_OBJECT

public:
    QTrayIconLinux();

    void setVisible(bool visible) override;
    void setIcon(std::uint32_t flags, double value) override;
    void setToolTip(const QString& toolTip) override;
    void setContextMenu(QMenu* menu) override;

private:
    QSystemTrayIcon* const m_icon; // child
};
