#include "core/system/sessionclient_linux.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingReply>

namespace {

QString serviceName() { return QStringLiteral("org.gnome.SessionManager"); }

QDBusMessage managerCall(const QString& method)
{
    QDBusMessage message
        = QDBusMessage::createMethodCall(serviceName(), QStringLiteral("/org/gnome/SessionManager"),
                                         QStringLiteral("org.gnome.SessionManager"), method);
    message.setAutoStartService(false);
    return message;
}

} // namespace

SessionClientProxy::SessionClientProxy(const QDBusObjectPath& client)
    : QDBusAbstractInterface(serviceName(), client.path(), "org.gnome.SessionManager.ClientPrivate",
                             QDBusConnection::sessionBus(), nullptr)
{
}

void SessionClientProxy::agree()
{
    asyncCall(QStringLiteral("EndSessionResponse"), true, QString());
}

SessionClient::SessionClient()
{
    QDBusMessage message = managerCall(QStringLiteral("RegisterClient"));
    message << QCoreApplication::applicationName() << qEnvironmentVariable("DESKTOP_AUTOSTART_ID");
    // Not for the programs that this one starts.
    qunsetenv("DESKTOP_AUTOSTART_ID");
    m_request = std::make_unique<QDBusPendingCallWatcher>(
        QDBusConnection::sessionBus().asyncCall(message));
    connect(m_request.get(), &QDBusPendingCallWatcher::finished, this, &SessionClient::takeAnswer);
}

SessionClient::~SessionClient()
{
    if (m_proxy) {
        QDBusMessage message = managerCall(QStringLiteral("UnregisterClient"));
        message << QVariant::fromValue(QDBusObjectPath(m_proxy->path()));
        QDBusConnection::sessionBus().call(message, QDBus::NoBlock);
    }
}

void SessionClient::takeAnswer()
{
    auto* const request = m_request.release();
    request->deleteLater();
    const QDBusPendingReply<QDBusObjectPath> reply(*request);
    if (reply.isError()) {
        return;
    }
    m_proxy = std::make_unique<SessionClientProxy>(reply.value());
    connect(m_proxy.get(), &SessionClientProxy::QueryEndSession, this,
            [this] { m_proxy->agree(); });
    connect(m_proxy.get(), &SessionClientProxy::EndSession, this, [this] {
        Q_EMIT sessionEnds();
        m_proxy->agree();
    });
}
