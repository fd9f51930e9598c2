#include "tests/support/privatebus.h"

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QFile>

namespace {

constexpr int patience = 20000; // milliseconds

// Without folders of services, so that none of this machine's is started.
const char configuration[] = R"(<!DOCTYPE busconfig PUBLIC
 "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <listen>%1</listen>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";

} // namespace

PrivateBus::PrivateBus(Kind kind)
    : m_kind(kind)
    , m_connection(start())
{
    if (!m_connection.isConnected()) {
        qFatal("No connection to the message bus: %s",
               qPrintable(m_connection.lastError().message()));
    }
    qputenv(variable().toLatin1().constData(), address().toLatin1());
}

PrivateBus::~PrivateBus() { QDBusConnection::disconnectFromBus(m_connection.name()); }

QString PrivateBus::variable() const
{
    return m_kind == Kind::Session ? QStringLiteral("DBUS_SESSION_BUS_ADDRESS")
                                   : QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS");
}

QString PrivateBus::address() const
{
    return QStringLiteral("unix:path=") + m_folder.filePath(QStringLiteral("bus"));
}

QDBusConnection PrivateBus::start()
{
    QFile file(m_folder.filePath(QStringLiteral("bus.conf")));
    if (file.open(QIODevice::WriteOnly)) {
        file.write(QString::fromLatin1(configuration).arg(address()).toUtf8());
    }
    file.close();
    m_daemon.start(QStringLiteral("dbus-daemon"),
                   { QStringLiteral("--nofork"), QStringLiteral("--print-address"),
                     QStringLiteral("--config-file=") + file.fileName() });
    // Its address comes when it listens.
    if (!m_daemon.waitForStarted() || !m_daemon.waitForReadyRead(patience)) {
        qFatal("No message bus (package dbus-daemon): %s %s", qPrintable(m_daemon.errorString()),
               m_daemon.readAllStandardError().constData());
    }
    return QDBusConnection::connectToBus(address(), QStringLiteral("test ") + address());
}

bool PrivateBus::hasService(const QString& name) const
{
    return m_connection.interface()->isServiceRegistered(name);
}

bool PrivateBus::hasListener(const QString& path, const QString& signal) const
{
    const QString service = QStringLiteral("org.freedesktop.DBus");
    const QDBusMessage reply = m_connection.call(QDBusMessage::createMethodCall(
        service, QStringLiteral("/org/freedesktop/DBus"), service + QStringLiteral(".Debug.Stats"),
        QStringLiteral("GetAllMatchRules")));
    const QString wantedPath = QStringLiteral("path='%1'").arg(path);
    const QString wantedSignal = QStringLiteral("member='%1'").arg(signal);
    const auto rulesOfEach = reply.arguments().value(0).value<QDBusArgument>();
    bool isFound = false;
    rulesOfEach.beginMap();
    while (!rulesOfEach.atEnd()) {
        QString visitor;
        QStringList rules;
        rulesOfEach.beginMapEntry();
        rulesOfEach >> visitor >> rules;
        rulesOfEach.endMapEntry();
        isFound = isFound || !rules.filter(wantedPath).filter(wantedSignal).isEmpty();
    }
    rulesOfEach.endMap();
    return isFound;
}

QStringList PrivateBus::visitors() const
{
    QStringList names = m_connection.interface()->registeredServiceNames();
    names.removeAll(QStringLiteral("org.freedesktop.DBus"));
    names.removeAll(m_connection.baseService());
    return names;
}
