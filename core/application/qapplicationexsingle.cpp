#include "core/application/qapplicationexsingle.h"

#include <QDir>
#include <QLocalServer>
#include <QLocalSocket>
#include <QLockFile>

#include "core/application/instance_address.h"

namespace {

constexpr int connectTimeout = 500; // milliseconds

} // namespace

QApplicationExSingle::QApplicationExSingle(int& argc, char** argv, const QString& applicationName,
                                           const QString& instanceKey)
    : QApplicationEx(argc, argv, applicationName)
    , m_localSocket(new QLocalSocket(this))
{
    const QString serverName = core::instanceServerName(instanceKey);
    // Asking and answering are one step, or two instances that are started at the
    // same moment would both answer. Without the lock the program runs all the
    // same.
    QLockFile gate(core::instanceLockPath(instanceKey));
    gate.tryLock(2 * connectTimeout);
    if (isAnswered(serverName)) {
        m_anotherInstanceRunning = true;
        return;
    }

    m_localServer = new QLocalServer(this);
    if (!QDir::isAbsolutePath(serverName)) {
        // The name lies in a folder that users share.
        m_localServer->setSocketOptions(QLocalServer::UserAccessOption);
    }
    connect(m_localServer, &QLocalServer::newConnection, this,
            &QApplicationExSingle::takeConnections);
    if (!m_localServer->listen(serverName)) {
        // What a killed process has left behind: nobody has answered.
        QLocalServer::removeServer(serverName);
        m_localServer->listen(serverName);
    }
}

bool QApplicationExSingle::isAnswered(const QString& serverName)
{
    m_localSocket->connectToServer(serverName, QIODevice::ReadWrite);
    return m_localSocket->waitForConnected(connectTimeout);
}

void QApplicationExSingle::takeConnections()
{
    while (QLocalSocket* connection = m_localServer->nextPendingConnection()) {
        connection->abort();
        connection->deleteLater();
        Q_EMIT anotherInstanceStarted();
    }
}
