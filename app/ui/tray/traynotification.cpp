#include "app/ui/tray/traynotification.h"

namespace {

constexpr std::uint32_t contextMenu = 123; // WM_CONTEXTMENU
constexpr std::uint32_t doubleClick = 515; // WM_LBUTTONDBLCLK
constexpr int wordBits = 16;
constexpr std::uint32_t wordMask = 0xFFFF;

QString shownTip(const QString& tip)
{
    QString shown = tip.left(TrayNotification::longestTip);
    // Half a character is none.
    if (!shown.isEmpty() && shown.at(shown.size() - 1).isHighSurrogate()) {
        shown.chop(1);
    }
    return shown;
}

} // namespace

TrayNotification makeTrayNotification(TrayWindow window, TrayVersion version, TrayNativeIcon icon,
                                      const QString& tip)
{
    TrayNotification notification;
    notification.window = window;
    notification.version = version;
    notification.icon = icon;
    notification.tip = shownTip(tip);
    notification.flags = TrayNotification::HasMessage | TrayNotification::ShowsTip;
    if (icon != 0) {
        notification.flags |= TrayNotification::HasIcon;
    }
    if (!notification.tip.isEmpty()) {
        notification.flags |= TrayNotification::HasTip;
    }
    return notification;
}

TrayEvent trayEvent(const TrayMessage& message, TrayVersion version, std::uint32_t taskbarCreated)
{
    if (taskbarCreated != 0 && message.number == taskbarCreated) {
        return TrayEvent::IconLost;
    }
    if (message.number != TrayNotification::message) {
        return TrayEvent::Foreign;
    }
    auto event = static_cast<std::uint32_t>(message.lParam);
    if (version == TrayVersionCurrent) {
        event &= wordMask;
    }
    switch (event) {
    case contextMenu:
        return TrayEvent::MenuRequested;
    case doubleClick:
        return TrayEvent::Activated;
    default:
        return TrayEvent::Ignored;
    }
}

QPoint trayEventPosition(const TrayMessage& message, double devicePixelRatio)
{
    // Screens left of the first one or above it have negative coordinates.
    const auto x = static_cast<std::int16_t>(message.wParam & wordMask);
    const auto y = static_cast<std::int16_t>((message.wParam >> wordBits) & wordMask);
    return QPoint(x, y) / devicePixelRatio;
}
