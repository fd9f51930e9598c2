#pragma once

#include <memory>

#include <QObject>

#include "core/system/powersource.h"
#include "core/system/powersourcewatcher.h"

class QSystemNotificationPrivate;
class SessionEnd;

// Tells what happens to the system around the program. Nothing is asked of the
// system before somebody listens to a signal, and what can't be had from it is never
// told. Several objects may live side by side. GUI thread; signals too are emitted
// there.
class QSystemNotification : public QObject {
    Q_OBJECT

public:
    // The reader gives the power source when the system says that it may have
    // changed.
    explicit QSystemNotification(QObject* parent = nullptr,
                                 System::PowerSourceWatcher::Reader readPowerSource
                                 = &getPowerSource);
    ~QSystemNotification() override;

    // To be called when the program is ready for the sleep that enterSleepMode has
    // told of. Where the system waits for that, it does so for three seconds at most.
    void sleepPrepared();

Q_SIGNALS:
    // The machine is about to sleep; the machine is awake again.
    void enterSleepMode();
    void wakeUp();
    // The session ends by a log-off. Comes before windows close because of it.
    void userLoggedOut();
    // The user prefers the other look now, light or dark: see isDarkModeEnabled().
    void darkModeChanged();
    void powerSourceChanged(System::PowerSource source);

protected:
    // Starts what the signal needs.
    void connectNotify(const QMetaMethod& signal) override;

private:
    void startSleepEvents(bool isPreparedFor);
    void startSessionEvents();
    void startDarkModeWatcher();
    void startPowerSourceWatcher();

    const std::unique_ptr<QSystemNotificationPrivate> m_private;
    std::shared_ptr<SessionEnd> m_sessionEnd; // null unless somebody listens
};
