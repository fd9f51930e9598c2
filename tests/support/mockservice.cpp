#include "tests/support/mockservice.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QTest>

#include "tests/support/privatebus.h"

namespace {

constexpr int patience = 20000; // milliseconds

const QString mockInterface = QStringLiteral("org.freedesktop.DBus.Mock");

} // namespace

Q_DECLARE_METATYPE(MockService::Method)

QDBusArgument& operator<<(QDBusArgument& argument, const MockService::Method& method)
{
    argument.beginStructure();
    argument << method.name << method.in << method.out << method.code;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, MockService::Method& method)
{
    argument.beginStructure();
    argument >> method.name >> method.in >> method.out >> method.code;
    argument.endStructure();
    return argument;
}

MockService::MockService(const PrivateBus& bus, const QString& service, const QString& path,
                         const QString& interface, const QString& templateName)
    : m_bus(bus)
    , m_service(service)
    , m_path(path)
    , m_interface(interface)
{
    qDBusRegisterMetaType<Method>();
    qDBusRegisterMetaType<QList<Method>>();
    QStringList arguments { QStringLiteral("-m"), QStringLiteral("dbusmock"),
                            bus.variable().contains(QLatin1String("SYSTEM"))
                                ? QStringLiteral("--system")
                                : QStringLiteral("--session") };
    if (templateName.isEmpty()) {
        arguments << service << path << interface;
    } else {
        arguments << QStringLiteral("--template") << templateName;
    }
    m_process.setStandardOutputFile(QProcess::nullDevice());
    // The system's own Python, which the package is for.
    m_process.start(QStringLiteral("/usr/bin/python3"), arguments);
    const bool isDecided
        = m_process.waitForStarted()
        && QTest::qWaitFor(
              [this] {
                  return m_bus.hasService(m_service) || m_process.state() == QProcess::NotRunning;
              },
              patience);
    if (!isDecided || m_process.state() == QProcess::NotRunning) {
        qFatal("No service %s (package python3-dbusmock): %s", qPrintable(service),
               m_process.readAllStandardError().constData());
    }
}

// Its name is gone from the bus when the next test looks for it.
MockService::~MockService()
{
    m_process.killAll();
    static_cast<void>(QTest::qWaitFor([this] { return !m_bus.hasService(m_service); }, patience));
}

void MockService::addMethod(const Method& method)
{
    call(mockInterface, QStringLiteral("AddMethod"),
         { m_interface, method.name, method.in, method.out, method.code });
}

void MockService::addObject(const QString& path, const QString& interface,
                            const QList<Method>& methods)
{
    call(mockInterface, QStringLiteral("AddObject"),
         { path, interface, QVariantMap(), QVariant::fromValue(methods) });
}

QVariantList MockService::call(const QString& interface, const QString& method,
                               const QVariantList& arguments)
{
    return callAt(m_path, interface, method, arguments);
}

void MockService::emitSignal(const QString& name, const QString& signature,
                             const QVariantList& arguments)
{
    emitSignalOf(m_path, m_interface, name, signature, arguments);
}

void MockService::emitSignalOf(const QString& path, const QString& interface, const QString& name,
                               const QString& signature, const QVariantList& arguments)
{
    callAt(path, mockInterface, QStringLiteral("EmitSignal"),
           { interface, name, signature, arguments });
}

QList<QVariantList> MockService::calls(const QString& path, const QString& method)
{
    const auto list = callAt(path, mockInterface, QStringLiteral("GetMethodCalls"), { method })
                          .value(0)
                          .value<QDBusArgument>();
    QList<QVariantList> result;
    list.beginArray();
    while (!list.atEnd()) {
        QVariantList arguments;
        qulonglong time = 0;
        list.beginStructure();
        list >> time >> arguments;
        list.endStructure();
        result.append(arguments);
    }
    list.endArray();
    return result;
}

QVariantList MockService::callAt(const QString& path, const QString& interface,
                                 const QString& method, const QVariantList& arguments)
{
    QDBusMessage message = QDBusMessage::createMethodCall(m_service, path, interface, method);
    message.setArguments(arguments);
    const QDBusMessage reply = m_bus.connection().call(message);
    if (reply.type() != QDBusMessage::ReplyMessage) {
        QTest::qFail(qPrintable(method + QLatin1String(": ") + reply.errorMessage()), __FILE__,
                     __LINE__);
    }
    return reply.arguments();
}
