#include "core/system/qsystemnotification.h"

#include <QMetaMethod>

#include "core/system/sessionend.h"

void QSystemNotification::connectNotify(const QMetaMethod& signal)
{
    const auto is
        = [&signal](auto candidate) { return signal == QMetaMethod::fromSignal(candidate); };
    if (is(&QSystemNotification::enterSleepMode)) {
        startSleepEvents(true);
    } else if (is(&QSystemNotification::wakeUp)) {
        startSleepEvents(false);
    } else if (is(&QSystemNotification::userLoggedOut)) {
        startSessionEvents();
    } else if (is(&QSystemNotification::darkModeChanged)) {
        startDarkModeWatcher();
    } else if (is(&QSystemNotification::powerSourceChanged)) {
        startPowerSourceWatcher();
    }
}

void QSystemNotification::startSessionEvents()
{
    if (!m_sessionEnd) {
        m_sessionEnd = SessionEnd::shared();
        connect(m_sessionEnd.get(), &SessionEnd::loggingOff, this,
                &QSystemNotification::userLoggedOut);
    }
}
