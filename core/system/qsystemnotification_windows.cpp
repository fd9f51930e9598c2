#include "core/system/qsystemnotification.h"

#include <utility>

#include <windows.h>

#include <QAbstractNativeEventFilter>
#include <QCoreApplication>

#include "core/system/darkmodewatcher_windows.h"
#include "core/system/powersourcewatcher_windows.h"
#include "core/system/systemmessages.h"

// Takes sleep and wake from the messages to the program's windows. They go on.
class QSystemNotificationPrivate final : public QAbstractNativeEventFilter {
public:
    QSystemNotificationPrivate(QSystemNotification& owner,
                               System::PowerSourceWatcher::Reader readPowerSource)
        : notification(owner)
        , powerSourceWatcher(std::move(readPowerSource))
    {
    }

    bool nativeEventFilter(const QByteArray& eventType, void* message, long* result) override
    {
        Q_UNUSED(result)
        if (eventType != "windows_generic_MSG") {
            return false;
        }
        const auto& received = *static_cast<const MSG*>(message);
        switch (System::meaningOfMessage(received.message, received.wParam, received.lParam)) {
        case System::MessageMeaning::EnterSleepMode:
            Q_EMIT notification.enterSleepMode();
            break;
        case System::MessageMeaning::WakeUp:
            Q_EMIT notification.wakeUp();
            break;
        default: // a log-off is told by SessionEnd, before any window closes
            break;
        }
        return false;
    }

    QSystemNotification& notification;
    bool filterInstalled = false;
    System::WindowsPowerSourceWatcher powerSourceWatcher;
    System::WindowsDarkModeWatcher darkModeWatcher;
};

QSystemNotification::QSystemNotification(QObject* parent,
                                         System::PowerSourceWatcher::Reader readPowerSource)
    : QObject(parent)
    , m_private(std::make_unique<QSystemNotificationPrivate>(*this, std::move(readPowerSource)))
{
    connect(&m_private->powerSourceWatcher, &System::PowerSourceWatcher::powerSourceChanged, this,
            &QSystemNotification::powerSourceChanged);
    // From the watcher's task, and so through the queue.
    connect(&m_private->darkModeWatcher, &System::DarkModeWatcher::darkModeChanged, this,
            &QSystemNotification::darkModeChanged);
}

// The filter takes itself out, the watchers stop.
QSystemNotification::~QSystemNotification() = default;

// The system doesn't wait for more than the message's return.
void QSystemNotification::sleepPrepared() { }

void QSystemNotification::startSleepEvents(bool isPreparedFor)
{
    Q_UNUSED(isPreparedFor)
    if (!std::exchange(m_private->filterInstalled, true)) {
        QCoreApplication::instance()->installNativeEventFilter(m_private.get());
    }
}

void QSystemNotification::startDarkModeWatcher() { m_private->darkModeWatcher.start(); }

void QSystemNotification::startPowerSourceWatcher() { m_private->powerSourceWatcher.start(); }
