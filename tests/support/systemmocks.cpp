#include "tests/support/systemmocks.h"

#include <algorithm>

#include <QDBusArgument>
#include <QDBusObjectPath>

#include "tests/support/privatebus.h"

namespace {

const QString mockInterface = QStringLiteral("org.freedesktop.DBus.Mock");

const QString loginManager = QStringLiteral("org.freedesktop.login1");
const QString loginManagerInterface = QStringLiteral("org.freedesktop.login1.Manager");

const QString sessionManager = QStringLiteral("org.gnome.SessionManager");
const QString managerPath = QStringLiteral("/org/gnome/SessionManager");
const QString clientPath = QStringLiteral("/org/gnome/SessionManager/Client7");
const QString clientInterface = QStringLiteral("org.gnome.SessionManager.ClientPrivate");

const QString powerService = QStringLiteral("org.freedesktop.UPower");

} // namespace

LoginManagerMock::LoginManagerMock(const PrivateBus& bus)
    : service(bus, loginManager, QStringLiteral("/org/freedesktop/login1"), loginManagerInterface,
              QStringLiteral("logind"))
{
}

void LoginManagerMock::prepareForSleep(bool begins)
{
    service.emitSignal(QStringLiteral("PrepareForSleep"), QStringLiteral("b"), { begins });
}

void LoginManagerMock::prepareForShutdown(bool begins)
{
    service.emitSignal(QStringLiteral("PrepareForShutdown"), QStringLiteral("b"), { begins });
}

QStringList LoginManagerMock::heldLocks()
{
    const auto list = service.call(loginManagerInterface, QStringLiteral("ListInhibitors"), {})
                          .value(0)
                          .value<QDBusArgument>();
    QStringList result;
    list.beginArray();
    while (!list.atEnd()) {
        QString what;
        QString who;
        QString why;
        QString mode;
        uint user = 0;
        uint process = 0;
        list.beginStructure();
        list >> what >> who >> why >> mode >> user >> process;
        list.endStructure();
        result.append(mode == QLatin1String("delay") && !why.isEmpty() ? what : mode);
    }
    list.endArray();
    result.sort();
    return result;
}

SessionManagerMock::SessionManagerMock(const PrivateBus& bus)
    : service(bus, sessionManager, managerPath, sessionManager)
    , m_bus(bus)
{
    service.addMethod({ QStringLiteral("RegisterClient"), QStringLiteral("ss"), QStringLiteral("o"),
                        QStringLiteral("ret = dbus.ObjectPath('%1')").arg(clientPath) });
    service.addMethod(
        { QStringLiteral("UnregisterClient"), QStringLiteral("o"), QString(), QString() });
    service.addObject(
        clientPath, clientInterface,
        { { QStringLiteral("EndSessionResponse"), QStringLiteral("bs"), QString(), QString() } });
}

bool SessionManagerMock::hasClient() const
{
    return m_bus.hasListener(clientPath, QStringLiteral("EndSession"));
}

int SessionManagerMock::registrations()
{
    return service.calls(managerPath, QStringLiteral("RegisterClient")).size();
}

int SessionManagerMock::unregistrations()
{
    return service.calls(managerPath, QStringLiteral("UnregisterClient")).size();
}

void SessionManagerMock::askForEnd()
{
    service.emitSignalOf(clientPath, clientInterface, QStringLiteral("QueryEndSession"),
                         QStringLiteral("u"), { 0U });
}

void SessionManagerMock::endSession()
{
    service.emitSignalOf(clientPath, clientInterface, QStringLiteral("EndSession"),
                         QStringLiteral("u"), { 0U });
}

int SessionManagerMock::agreements()
{
    const auto answers = service.calls(clientPath, QStringLiteral("EndSessionResponse"));
    return static_cast<int>(
        std::count_if(answers.begin(), answers.end(),
                      [](const QVariantList& answer) { return answer.value(0).toBool(); }));
}

PowerServiceMock::PowerServiceMock(const PrivateBus& bus)
    : service(bus, powerService, QStringLiteral("/org/freedesktop/UPower"), powerService,
              QStringLiteral("upower"))
{
}

void PowerServiceMock::tell(bool onBattery)
{
    service.call(mockInterface, QStringLiteral("UpdateProperties"),
                 { powerService, QVariantMap { { QStringLiteral("OnBattery"), onBattery } } });
}

void PowerServiceMock::tellThatItChanged()
{
    service.emitSignalOf(
        QStringLiteral("/org/freedesktop/UPower"),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("PropertiesChanged"),
        QStringLiteral("sa{sv}as"),
        { powerService, QVariantMap(), QStringList { QStringLiteral("OnBattery") } });
}

void PowerServiceMock::tellOfTheLid()
{
    service.call(mockInterface, QStringLiteral("UpdateProperties"),
                 { powerService, QVariantMap { { QStringLiteral("LidIsClosed"), true } } });
}

PortalMock::PortalMock(const PrivateBus& bus, unsigned scheme)
    : service(bus, QStringLiteral("org.freedesktop.portal.Desktop"),
              QStringLiteral("/org/freedesktop/portal/desktop"),
              QStringLiteral("org.freedesktop.portal.Settings"))
{
    setScheme(scheme);
}

void PortalMock::setScheme(unsigned scheme, double seconds)
{
    service.addMethod({ QStringLiteral("Read"), QStringLiteral("ss"), QStringLiteral("v"),
                        QStringLiteral("assert args[0] == 'org.freedesktop.appearance'\n"
                                       "assert args[1] == 'color-scheme'\n"
                                       "time.sleep(%1)\n"
                                       "ret = dbus.UInt32(%2, variant_level=2)")
                            .arg(QString::number(seconds), QString::number(scheme)) });
}

void PortalMock::tell(const QString& nameSpace, const QString& key, unsigned value)
{
    service.emitSignal(QStringLiteral("SettingChanged"), QStringLiteral("ssv"),
                       { nameSpace, key, value });
}

void PortalMock::change(unsigned scheme)
{
    setScheme(scheme);
    tell(QStringLiteral("org.freedesktop.appearance"), QStringLiteral("color-scheme"), scheme);
}
