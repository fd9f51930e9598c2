#pragma once

#include <QIcon>
#include <QString>

// The tray icon with these digits, or with the application's own picture when
// there are none. It is drawn anew for each size that is asked for, so that it is
// sharp in a panel of any height; the digits are as large as the size allows.
[[nodiscard]] QIcon trayIcon(const QString& digits);
