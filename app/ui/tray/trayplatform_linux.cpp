#include "app/ui/tray/trayplatform.h"

#include <QSystemTrayIcon>

#include "app/ui/tray/qtrayiconlinux.h"

std::unique_ptr<QTrayIconPlatform> makeTrayPlatform() { return std::make_unique<QTrayIconLinux>(); }

bool isTrayAvailable() { return QSystemTrayIcon::isSystemTrayAvailable(); }
