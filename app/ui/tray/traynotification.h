#pragma once

#include <cstdint>

#include <QPoint>
#include <QString>

// The notification area of Windows, as far as it needs no call to it: what the
// shell is told, and what it means by its messages.

// Large enough for every window, icon and message parameter of the system.
using TrayWindow = std::uintptr_t; // 0: none
using TrayNativeIcon = std::uintptr_t; // 0: none

// What the shell is asked to do with a notification.
enum class TrayAction : std::uint32_t { Add = 0, Modify = 1, Delete = 2, SetVersion = 4 };

// The shell's behaviour that a program is written for.
enum TrayVersion : std::uint32_t {
    TrayVersionOld = 3, // of systems before Windows Vista
    TrayVersionCurrent = 4,
};

struct TrayNotification {
    enum Flag : std::uint32_t {
        HasMessage = 0x01,
        HasIcon = 0x02,
        HasTip = 0x04,
        ShowsTip = 0x80, // else the current version leaves the tool tip to the program
    };
    static constexpr std::uint32_t recordSize = 952; // bytes, for every system
    static constexpr std::uint32_t message = 32869; // comes from the shell
    static constexpr int longestTip = 127; // characters; one more ends the text

    std::uint32_t size = recordSize;
    TrayWindow window = 0;
    std::uint32_t id = 0;
    std::uint32_t flags = 0;
    std::uint32_t callbackMessage = message;
    std::uint32_t version = TrayVersionCurrent;
    TrayNativeIcon icon = 0;
    QString tip;
};

// With the icon unless it is 0, and with the tip unless it is empty; a tip that is
// too long is cut.
[[nodiscard]] TrayNotification makeTrayNotification(TrayWindow window, TrayVersion version,
                                                    TrayNativeIcon icon = 0,
                                                    const QString& tip = {});

// A message to the icon's window.
struct TrayMessage {
    std::uint32_t number = 0;
    std::uintptr_t wParam = 0;
    std::intptr_t lParam = 0;
};

enum class TrayEvent {
    Foreign, // for the system to handle
    Ignored,
    IconLost, // the shell has started again and knows no icons
    MenuRequested,
    Activated,
};

// taskbarCreated is the number of the message of that name, or 0.
[[nodiscard]] TrayEvent trayEvent(const TrayMessage& message, TrayVersion version,
                                  std::uint32_t taskbarCreated);

// Where the event of a message of the current version took place, in the
// coordinates of windows. The ratio is the device pixels per pixel of these.
[[nodiscard]] QPoint trayEventPosition(const TrayMessage& message, double devicePixelRatio);
