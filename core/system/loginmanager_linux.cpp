#include "core/system/loginmanager_linux.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusPendingReply>

LoginManager::LoginManager()
    : QDBusAbstractInterface(
        QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
        "org.freedesktop.login1.Manager", QDBusConnection::systemBus(), nullptr)
{
}

DelayLock::DelayLock(LoginManager& manager, const QString& what, const QString& why)
    : m_manager(manager)
    , m_what(what)
    , m_why(why)
{
}

void DelayLock::take()
{
    const QDBusPendingCall call
        = m_manager.asyncCall(QStringLiteral("Inhibit"), m_what,
                              QCoreApplication::applicationName(), m_why, QStringLiteral("delay"));
    m_request = std::make_unique<QDBusPendingCallWatcher>(call);
    connect(m_request.get(), &QDBusPendingCallWatcher::finished, this, &DelayLock::takeAnswer);
    // Without a bus no answer comes.
    if (m_request->isFinished()) {
        takeAnswer(m_request.get());
    }
}

void DelayLock::release()
{
    m_request.reset();
    m_descriptor = QDBusUnixFileDescriptor();
}

void DelayLock::takeAnswer(QDBusPendingCallWatcher* request)
{
    if (request != m_request.get()) {
        return; // taken already
    }
    // The answer holds the lock as well as long as it lives.
    m_request.release()->deleteLater();
    const QDBusPendingReply<QDBusUnixFileDescriptor> reply(*request);
    if (reply.isError()) {
        Q_EMIT refused(reply.error().message());
    } else {
        m_descriptor = reply.value();
    }
}
