#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include <QImage>
#include <QSize>
#include <QString>

#include "app/ui/tray/traynotification.h"

// Takes the messages of the icon's window.
class TrayMessageReceiver {
public:
    virtual ~TrayMessageReceiver() = default;
    // The message's result; nothing when the system is to handle it.
    virtual std::optional<std::intptr_t> receive(const TrayMessage& message) = 0;
};

// The seam to Windows for the icon in the notification area: one operation each,
// no decisions. GUI thread only.
class TrayCalls {
public:
    TrayCalls() = default;
    TrayCalls(const TrayCalls&) = delete;
    TrayCalls& operator=(const TrayCalls&) = delete;
    virtual ~TrayCalls() = default;

    // Whether the shell knows TrayVersionCurrent.
    [[nodiscard]] virtual bool hasCurrentVersion() = 0;

    // A hidden window of a class that is registered for it, whose messages go to
    // the receiver until the window is destroyed. 0 when there can be none.
    [[nodiscard]] virtual TrayWindow createWindow(const QString& className, const QString& title,
                                                  TrayMessageReceiver& receiver)
        = 0;
    virtual void destroyWindow(TrayWindow window) = 0;

    // The number of the message of this name, the same for all programs; 0 when
    // there is none.
    [[nodiscard]] virtual std::uint32_t registerMessage(const QString& name) = 0;
    // Lets the message of a less privileged program through, to this window or to
    // the whole process. False when the system doesn't have the operation.
    [[nodiscard]] virtual bool allowMessageToWindow(TrayWindow window, std::uint32_t message) = 0;
    [[nodiscard]] virtual bool allowMessageToProcess(std::uint32_t message) = 0;

    // False when the shell has refused.
    [[nodiscard]] virtual bool notify(TrayAction action, const TrayNotification& notification) = 0;

    // Of the icons in the notification area, in device pixels.
    [[nodiscard]] virtual QSize smallIconSize() = 0;
    // 0 when it can't be made; else to be destroyed.
    [[nodiscard]] virtual TrayNativeIcon createIcon(const QImage& image) = 0;
    virtual void destroyIcon(TrayNativeIcon icon) = 0;
};

// The calls of the running system.
[[nodiscard]] std::unique_ptr<TrayCalls> makeTrayCalls();
