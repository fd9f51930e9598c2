#include <array>
#include <cstdio>
#include <cstring>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>
#include <QProcess>
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

// With this argument the program is an instance: it tells whether another one
// answers and lives until its standard input ends.
constexpr const char* instanceArgument = "--instance";
const QByteArray alone("alone\n");
const QByteArray another("another\n");

constexpr int patience = 20000; // milliseconds

int runInstance(int argc, char* argv[])
{
    // Whoever starts several lets them go at once.
    static_cast<void>(std::getchar());
    const QApplicationExSingle application(argc, argv, QStringLiteral("Brisora"), instanceKey);
    std::fputs(application.isAnotherInstanceRunning() ? another.constData() : alone.constData(),
               stdout);
    std::fflush(stdout);
    while (std::getchar() != EOF) { }
    return 0;
}

// A second process of this program, as an instance of the user whose run-time
// folder is given.
class Instance {
public:
    explicit Instance(const QString& runtimeFolder)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtimeFolder);
        m_process.setProcessEnvironment(environment);
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(QCoreApplication::applicationFilePath(),
                        { QString::fromLatin1(instanceArgument) });
    }
    Instance(const Instance&) = delete;
    Instance& operator=(const Instance&) = delete;
    ~Instance() { static_cast<void>(end()); }

    [[nodiscard]] bool waitForStarted() { return m_process.waitForStarted(); }
    void look() { m_process.write("\n"); }
    [[nodiscard]] bool hasAnswer() const { return m_process.canReadLine(); }
    [[nodiscard]] QByteArray answer() { return m_process.readLine(); }

    [[nodiscard]] bool end()
    {
        m_process.closeWriteChannel();
        return m_process.state() == QProcess::NotRunning || m_process.waitForFinished();
    }

private:
    QProcess m_process;
};

// Tells one file from another that has taken its name.
ino_t fileNumber(const QString& path)
{
    struct stat status { };
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_ino : 0;
}

} // namespace

class SingleInstanceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theServerLiesInTheUsersOwnFolder();
    void aFolderThatIsNotTheUsersOwnIsNotUsed_data();
    void aFolderThatIsNotTheUsersOwnIsNotUsed();
    void aStaleSocketIsReplaced();
    void everyConnectionRaisesTheSignalOnce();
    void connectionsAreNotKept();
    void aLivingInstanceKeepsItsName();
    void anInstanceThatHasEndedLeavesItsPlace();
    void ofInstancesThatStartAtOnceOneIsAlone();

private:
    static QApplicationExSingle* application()
    {
        return qobject_cast<QApplicationExSingle*>(QCoreApplication::instance());
    }
};

void SingleInstanceTest::theServerLiesInTheUsersOwnFolder()
{
    QCOMPARE(core::instanceServerName(instanceKey),
             qEnvironmentVariable("XDG_RUNTIME_DIR") + QStringLiteral("/BRISORA"));
    QCOMPARE(core::instanceLockPath(instanceKey),
             qEnvironmentVariable("XDG_RUNTIME_DIR") + QStringLiteral("/BRISORA.lock"));
}

void SingleInstanceTest::aFolderThatIsNotTheUsersOwnIsNotUsed_data()
{
    QTest::addColumn<QString>("kind");
    for (const char* kind : { "none", "missing", "a file", "relative", "another user's", "long" }) {
        QTest::newRow(kind) << QString::fromLatin1(kind);
    }
}

void SingleInstanceTest::aFolderThatIsNotTheUsersOwnIsNotUsed()
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

void SingleInstanceTest::aStaleSocketIsReplaced()
{
    // main() has left one before it made the application object.
    QVERIFY(!application()->isAnotherInstanceRunning());
    QLocalSocket socket;
    socket.connectToServer(core::instanceServerName(instanceKey));
    QVERIFY(socket.waitForConnected(1000));
}

void SingleInstanceTest::everyConnectionRaisesTheSignalOnce()
{
    QCoreApplication::processEvents();
    QSignalSpy started(application(), &QApplicationExSingle::anotherInstanceStarted);

    QLocalSocket first;
    first.connectToServer(core::instanceServerName(instanceKey));
    QLocalSocket second;
    second.connectToServer(core::instanceServerName(instanceKey));

    QTRY_COMPARE(started.count(), 2);
}

void SingleInstanceTest::connectionsAreNotKept()
{
    QLocalSocket socket;
    socket.connectToServer(core::instanceServerName(instanceKey));
    QTRY_COMPARE(socket.state(), QLocalSocket::UnconnectedState);
    QTRY_VERIFY(application()->findChildren<QLocalSocket*>().size() <= 1);
}

void SingleInstanceTest::aLivingInstanceKeepsItsName()
{
    const QString serverName = core::instanceServerName(instanceKey);
    const ino_t before = fileNumber(serverName);
    QVERIFY(before != 0);
    for (int round = 1; round <= 2; ++round) {
        QSignalSpy started(application(), &QApplicationExSingle::anotherInstanceStarted);
        Instance second(qEnvironmentVariable("XDG_RUNTIME_DIR"));
        second.look();
        QTRY_VERIFY_WITH_TIMEOUT(second.hasAnswer(), patience);
        QCOMPARE(second.answer(), another);
        QTRY_COMPARE(started.count(), 1);
        QVERIFY(second.end());
        QCOMPARE(fileNumber(serverName), before);
    }
}

void SingleInstanceTest::anInstanceThatHasEndedLeavesItsPlace()
{
    const QTemporaryDir folder;
    for (int round = 1; round <= 2; ++round) {
        Instance instance(folder.path());
        instance.look();
        QTRY_VERIFY_WITH_TIMEOUT(instance.hasAnswer(), patience);
        QCOMPARE(instance.answer(), alone);
        QVERIFY(instance.end());
    }
}

void SingleInstanceTest::ofInstancesThatStartAtOnceOneIsAlone()
{
    for (int round = 1; round <= 8; ++round) {
        const QTemporaryDir folder;
        std::array<Instance, 2> pair { Instance(folder.path()), Instance(folder.path()) };
        for (Instance& instance : pair) {
            QVERIFY(instance.waitForStarted());
        }
        for (Instance& instance : pair) {
            instance.look();
        }
        int aloneCount = 0;
        for (Instance& instance : pair) {
            QTRY_VERIFY_WITH_TIMEOUT(instance.hasAnswer(), patience);
            const QByteArray answer = instance.answer();
            QVERIFY2(answer == alone || answer == another, answer.constData());
            aloneCount += answer == alone ? 1 : 0;
        }
        QCOMPARE(aloneCount, 1);
    }
}

int main(int argc, char* argv[])
{
    if (argc > 1 && std::strcmp(argv[1], instanceArgument) == 0) {
        return runInstance(argc, argv);
    }
    const TestEnvironment environment;
    leaveStaleSocket(core::instanceServerName(instanceKey));
    QApplicationExSingle application(argc, argv, QStringLiteral("Brisora"), instanceKey);
    SingleInstanceTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_singleinstance.moc"
