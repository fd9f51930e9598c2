#include "app/ui/tray/qtrayiconwin.h"

#include <algorithm>

#include <QCursor>
#include <QGuiApplication>
#include <QMenu>
#include <QScreen>

#include "app/ui/tray/traydrawing.h"
#include "core/log/log.h"

namespace {

// The largest font in pixels for an icon of this size: 8 points, at 72 to the inch
// of 96 pixels, for each 16 pixels.
int largestFont(int size) { return qRound(size / 16.0 * 8 * 96 / 72); }

} // namespace

QTrayIconWin::QTrayIconWin(std::unique_ptr<TrayCalls> calls)
    : m_calls(std::move(calls))
    , m_version(m_calls->hasCurrentVersion() ? TrayVersionCurrent : TrayVersionOld)
    , m_window(m_calls->createWindow(QStringLiteral("QTrayIconWinClass"),
                                     QStringLiteral("QTrayIconWinWindow"), *this))
    , m_taskbarCreated(m_calls->registerMessage(QStringLiteral("TaskbarCreated")))
{
    allowMessage(m_taskbarCreated);
}

QTrayIconWin::~QTrayIconWin()
{
    notify(TrayAction::Delete);
    if (m_window != 0) {
        m_calls->destroyWindow(m_window);
    }
}

void QTrayIconWin::setVisible(bool visible)
{
    m_visible = visible;
    notify(visible ? TrayAction::Add : TrayAction::Delete);
}

void QTrayIconWin::setIcon(std::uint32_t flags, double value)
{
    const QSize iconSize = m_calls->smallIconSize();
    const int size = std::min(iconSize.width(), iconSize.height());
    const QImage picture = drawTrayPicture(trayReadingText(flags, value), size, largestFont(size));
    if (picture.isNull()) {
        return;
    }
    const TrayNativeIcon icon = m_calls->createIcon(picture);
    if (icon == 0) {
        LOG_WARN("The tray's picture can't be made into an icon");
        return;
    }
    notify(TrayAction::Modify, icon);
    m_calls->destroyIcon(icon);
}

void QTrayIconWin::setToolTip(const QString& toolTip) { notify(TrayAction::Modify, 0, toolTip); }

void QTrayIconWin::setContextMenu(QMenu* menu) { m_menu = menu; }

std::optional<std::intptr_t> QTrayIconWin::receive(const TrayMessage& message)
{
    switch (trayEvent(message, m_version, m_taskbarCreated)) {
    case TrayEvent::Foreign:
        return std::nullopt;
    case TrayEvent::Ignored:
        break;
    case TrayEvent::IconLost:
        // Not while the program ends and has taken the icon away.
        if (m_visible) {
            notify(TrayAction::Add);
            Q_EMIT iconRestored();
        }
        break;
    case TrayEvent::MenuRequested:
        showMenu(message);
        break;
    case TrayEvent::Activated:
        Q_EMIT activated();
        break;
    }
    return 0;
}

void QTrayIconWin::allowMessage(std::uint32_t message)
{
    // Without it a program with more rights than the shell never hears of the
    // shell's new start.
    if (!m_calls->allowMessageToWindow(m_window, message)
        && !m_calls->allowMessageToProcess(message)) {
        LOG_WARN("The tray icon won't come back after a new start of the shell");
    }
}

void QTrayIconWin::notify(TrayAction action, TrayNativeIcon icon, const QString& tip)
{
    const TrayNotification notification = makeTrayNotification(m_window, m_version, icon, tip);
    const bool done = m_calls->notify(action, notification);
    if (action != TrayAction::Add) {
        return;
    }
    if (!done) {
        LOG_WARN("The notification area takes no icon now");
        return;
    }
    // Before the shell has been told, its messages have the oldest form.
    if (!m_calls->notify(TrayAction::SetVersion, notification)) {
        LOG_WARN("The notification area doesn't know version {}", notification.version);
    }
}

void QTrayIconWin::showMenu(const TrayMessage& message)
{
    if (m_menu.isNull()) {
        return;
    }
    const auto* screen = QGuiApplication::primaryScreen();
    const double ratio = screen != nullptr ? screen->devicePixelRatio() : 1.0;
    m_menu->popup(m_version == TrayVersionCurrent ? trayEventPosition(message, ratio)
                                                  : QCursor::pos());
    // A menu of a program in the background would stay when the user turns away.
    m_menu->activateWindow();
}
