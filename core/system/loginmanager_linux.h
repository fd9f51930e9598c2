#pragma once

#include <memory>

#include <QDBusAbstractInterface>
#include <QDBusPendingCallWatcher>
#include <QDBusUnixFileDescriptor>

// The system's login manager on the system bus, as far as it tells of sleep and
// shutdown. Without the bus or the manager nothing is told.
class LoginManager final : public QDBusAbstractInterface {
    Q_OBJECT

public:
    LoginManager();

Q_SIGNALS:
    // Named as on the bus. True: it is about to begin; false: it is over, or nothing
    // came of it.
    void PrepareForSleep(bool begins);
    void PrepareForShutdown(bool begins);
};

// Holds the system's sleep or shutdown up for a few seconds, so that this program
// can get ready for it. The system goes on when the lock is given back, or when its
// own patience ends.
class DelayLock final : public QObject {
    Q_OBJECT

public:
    // what: "sleep" or "shutdown"; why: for the system's list of such locks. The
    // manager must outlive the lock.
    DelayLock(LoginManager& manager, const QString& what, const QString& why);

    // Asks for the lock and doesn't wait for the answer.
    void take();
    // Also gives up a lock that is still being asked for.
    void release();

Q_SIGNALS:
    // There is no such lock to be had.
    void refused(const QString& reason);

private:
    void takeAnswer(QDBusPendingCallWatcher* request);

    LoginManager& m_manager;
    const QString m_what;
    const QString m_why;
    std::unique_ptr<QDBusPendingCallWatcher> m_request; // null unless it is under way
    QDBusUnixFileDescriptor m_descriptor; // the lock: it is given back by closing it
};
