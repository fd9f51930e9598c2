#include <cstring>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QLocalSocket>
#include <QtTest>

#include "core/application/instance_address.h"
#include "core/application/qapplicationexsingle.h"
#include "tests/support/testenvironment.h"

namespace {

const QString instanceKey = QStringLiteral("BRISORA");

// What a killed process leaves behind: the name of a socket that nobody serves.
void leaveStaleSocket(const QString& path)
{
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    const QByteArray name = QFile::encodeName(path);
    std::memcpy(address.sun_path, name.constData(), static_cast<std::size_t>(name.size()) + 1);
    if (::bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
        qFatal("The stale socket can't be made");
    }
    ::close(descriptor);
}

// Tells one file from another that has taken its name.
ino_t fileNumber(const QString& path)
{
    struct stat status { };
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_ino : 0;
}

} // namespace

// Where instances meet, and what a killed one leaves there.
class InstanceAddressTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theServerLiesInTheUsersOwnFolder();
    void aFolderThatIsNotTheUsersOwnIsNotUsed_data();
    void aFolderThatIsNotTheUsersOwnIsNotUsed();
    void aStaleSocketIsReplaced();
    void aSecondInstanceLeavesTheSocketAlone();

private:
    static QApplicationExSingle* application()
    {
        return qobject_cast<QApplicationExSingle*>(QCoreApplication::instance());
    }
};

void InstanceAddressTest::theServerLiesInTheUsersOwnFolder()
{
    QCOMPARE(core::instanceServerName(instanceKey),
             qEnvironmentVariable("XDG_RUNTIME_DIR") + QStringLiteral("/BRISORA"));
    QCOMPARE(core::instanceLockPath(instanceKey),
             qEnvironmentVariable("XDG_RUNTIME_DIR") + QStringLiteral("/BRISORA.lock"));
}

void InstanceAddressTest::aFolderThatIsNotTheUsersOwnIsNotUsed_data()
{
    QTest::addColumn<QString>("kind");
    for (const char* kind : { "none", "missing", "a file", "relative", "another user's", "long" }) {
        QTest::newRow(kind) << QString::fromLatin1(kind);
    }
}

void InstanceAddressTest::aFolderThatIsNotTheUsersOwnIsNotUsed()
{
    QFETCH(QString, kind);
    const QTemporaryDir own;
    const QByteArray formerVariable = qgetenv("XDG_RUNTIME_DIR");
    const QString formerFolder = QDir::currentPath();
    const auto putBack = qScopeGuard([&] {
        qputenv("XDG_RUNTIME_DIR", formerVariable);
        QDir::setCurrent(formerFolder);
    });
    QString folder = own.filePath(QStringLiteral("run"));
    if (kind == QLatin1String("a file")) {
        QFile file(folder);
        QVERIFY(file.open(QIODevice::WriteOnly));
    } else if (kind == QLatin1String("relative")) {
        QVERIFY(QDir::setCurrent(own.path()));
        QVERIFY(QDir().mkdir(QStringLiteral("run")));
        folder = QStringLiteral("run");
    } else if (kind == QLatin1String("another user's")) {
        constexpr uid_t nobody = 65534;
        QVERIFY(QDir().mkdir(folder));
        if (::chown(QFile::encodeName(folder).constData(), nobody, nobody) != 0) {
            folder = QStringLiteral("/tmp"); // the system's, and anybody may write there
        }
    } else if (kind == QLatin1String("long")) {
        folder = own.filePath(QString(100, QLatin1Char('x')));
        QVERIFY(QDir().mkdir(folder));
    }

    if (kind == QLatin1String("none")) {
        qunsetenv("XDG_RUNTIME_DIR");
    } else {
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(folder));
    }

    QCOMPARE(core::instanceServerName(instanceKey), instanceKey);
}

void InstanceAddressTest::aStaleSocketIsReplaced()
{
    // main() has left one before it made the application object.
    QVERIFY(!application()->isAnotherInstanceRunning());
    QLocalSocket socket;
    socket.connectToServer(core::instanceServerName(instanceKey));
    QVERIFY(socket.waitForConnected(1000));
}

void InstanceAddressTest::aSecondInstanceLeavesTheSocketAlone()
{
    const QString serverName = core::instanceServerName(instanceKey);
    const ino_t before = fileNumber(serverName);
    QVERIFY(before != 0);

    QLocalSocket second;
    second.connectToServer(serverName);

    QVERIFY(second.waitForConnected(1000));
    QCOMPARE(fileNumber(serverName), before);
}

int main(int argc, char* argv[])
{
    const TestEnvironment environment;
    leaveStaleSocket(core::instanceServerName(instanceKey));
    QApplicationExSingle application(argc, argv, QStringLiteral("Brisora"), instanceKey);
    InstanceAddressTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_instance_address_linux.moc"
