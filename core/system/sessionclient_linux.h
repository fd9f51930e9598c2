#pragma once

#include <memory>

#include <QDBusAbstractInterface>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>

// This program as the desktop's session manager sees it, on the session bus.
class SessionClientProxy final : public QDBusAbstractInterface {
    Q_OBJECT

public:
    explicit SessionClientProxy(const QDBusObjectPath& client);

    // Tells that the session may go on to end as far as this program goes.
    void agree();

Q_SIGNALS:
    // Named as on the bus.
    void QueryEndSession(uint flags);
    void EndSession(uint flags);
};

// Takes part in the end of a session of the desktops that manage theirs over the
// session bus. Without such a manager nothing happens.
class SessionClient final : public QObject {
    Q_OBJECT

public:
    // Registers with the session manager and doesn't wait for the answer.
    SessionClient();
    ~SessionClient() override;

Q_SIGNALS:
    // The session ends. When the slots return, the manager is told to go on.
    void sessionEnds();

private:
    void takeAnswer();

    std::unique_ptr<QDBusPendingCallWatcher> m_request; // null unless it is under way
    std::unique_ptr<SessionClientProxy> m_proxy; // null unless registered
};
