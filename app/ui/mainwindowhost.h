#pragma once

#include <functional>
#include <memory>

#include <QDateTime>
#include <QString>

#include "app/ui/preferences/preferenceshost.h"
#include "app/ui/tray/qtrayiconplatform.h"

class QWidget;

// What the main window asks of the application around it. The functions are called
// on the GUI thread.
struct MainWindowHost {
    QString productTitle; // product name and version
    QString machineName; // the model identifier
    bool isPassive = false; // the machine has no fans

    std::function<QString()> readLog; // the log of this run
    std::function<QDateTime()> now = &QDateTime::currentDateTime;

    // Write access to the controller; installing it may give a reason for the user
    // when it fails.
    std::function<bool()> hasWriteAccess;
    std::function<bool(QString& error)> installWriteAccess;
    std::function<void(const QString& error, QWidget* parent)> showWriteAccessError;

    PreferencesHost preferences;

    // Whether the desktop has a tray now.
    std::function<bool()> isTrayAvailable;
    std::function<std::unique_ptr<QTrayIconPlatform>()> makeTrayPlatform;
};
