#include <array>
#include <cstdio>
#include <cstring>

#include <QLocalSocket>
#include <QProcess>
#include <QtTest>

#include "core/application/instance_address.h"
#include "core/application/qapplicationexsingle.h"
#include "tests/support/testenvironment.h"

namespace {

// With this argument and a key the program is an instance of that key: it tells
// whether another one answers and lives until its standard input ends.
constexpr const char* instanceArgument = "--instance";
const QByteArray alone("alone");
const QByteArray another("another");

constexpr int patience = 20000; // milliseconds

int runInstance(int argc, char* argv[])
{
    // Whoever starts several lets them go at once.
    static_cast<void>(std::getchar());
    const QApplicationExSingle application(argc, argv, QStringLiteral("Brisora"),
                                           QString::fromLatin1(argv[2]));
    std::puts(application.isAnotherInstanceRunning() ? another.constData() : alone.constData());
    std::fflush(stdout);
    while (std::getchar() != EOF) { }
    return 0;
}

// A key that no other process uses, as others may run at the same time.
QString ownKey(const QString& purpose)
{
    return QStringLiteral("BRISORA-%1-%2")
        .arg(QString::number(QCoreApplication::applicationPid()), purpose);
}

// A second process of this program.
class Instance {
public:
    explicit Instance(const QString& key)
    {
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(QCoreApplication::applicationFilePath(),
                        { QString::fromLatin1(instanceArgument), key });
    }
    Instance(const Instance&) = delete;
    Instance& operator=(const Instance&) = delete;
    ~Instance() { static_cast<void>(end()); }

    [[nodiscard]] bool waitForStarted() { return m_process.waitForStarted(); }
    void look() { m_process.write("\n"); }
    [[nodiscard]] bool hasAnswer() const { return m_process.canReadLine(); }
    [[nodiscard]] QByteArray answer() { return m_process.readLine().trimmed(); }

    [[nodiscard]] bool end()
    {
        m_process.closeWriteChannel();
        return m_process.state() == QProcess::NotRunning || m_process.waitForFinished();
    }

private:
    QProcess m_process;
};

} // namespace

class SingleInstanceTest : public QObject {
    Q_OBJECT

public:
    explicit SingleInstanceTest(const QString& key)
        : m_key(key)
    {
    }

private Q_SLOTS:
    void everyConnectionRaisesTheSignalOnce();
    void connectionsAreNotKept();
    void aLivingInstanceIsMetByEveryOther();
    void anInstanceThatHasEndedLeavesItsPlace();
    void ofInstancesThatStartAtOnceOneIsAlone();

private:
    const QString m_key;

    static QApplicationExSingle* application()
    {
        return qobject_cast<QApplicationExSingle*>(QCoreApplication::instance());
    }
};

void SingleInstanceTest::everyConnectionRaisesTheSignalOnce()
{
    QCoreApplication::processEvents();
    QSignalSpy started(application(), &QApplicationExSingle::anotherInstanceStarted);

    QLocalSocket first;
    first.connectToServer(core::instanceServerName(m_key));
    QLocalSocket second;
    second.connectToServer(core::instanceServerName(m_key));

    QTRY_COMPARE(started.count(), 2);
}

void SingleInstanceTest::connectionsAreNotKept()
{
    QLocalSocket socket;
    socket.connectToServer(core::instanceServerName(m_key));
    QTRY_COMPARE(socket.state(), QLocalSocket::UnconnectedState);
    QTRY_VERIFY(application()->findChildren<QLocalSocket*>().size() <= 1);
}

void SingleInstanceTest::aLivingInstanceIsMetByEveryOther()
{
    for (int round = 1; round <= 2; ++round) {
        QSignalSpy started(application(), &QApplicationExSingle::anotherInstanceStarted);
        Instance second(m_key);
        second.look();
        QTRY_VERIFY_WITH_TIMEOUT(second.hasAnswer(), patience);
        QCOMPARE(second.answer(), another);
        QTRY_COMPARE(started.count(), 1);
        QVERIFY(second.end());
    }
}

void SingleInstanceTest::anInstanceThatHasEndedLeavesItsPlace()
{
    const QString key = ownKey(QStringLiteral("ended"));
    for (int round = 1; round <= 2; ++round) {
        Instance instance(key);
        instance.look();
        QTRY_VERIFY_WITH_TIMEOUT(instance.hasAnswer(), patience);
        QCOMPARE(instance.answer(), alone);
        QVERIFY(instance.end());
    }
}

void SingleInstanceTest::ofInstancesThatStartAtOnceOneIsAlone()
{
    for (int round = 1; round <= 8; ++round) {
        const QString key = ownKey(QString::number(round));
        std::array<Instance, 2> pair { Instance(key), Instance(key) };
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
    if (argc > 2 && std::strcmp(argv[1], instanceArgument) == 0) {
        return runInstance(argc, argv);
    }
    const TestEnvironment environment;
    const QString key = ownKey(QStringLiteral("first"));
    QApplicationExSingle application(argc, argv, QStringLiteral("Brisora"), key);
    SingleInstanceTest test(key);
    return QTest::qExec(&test, argc, argv);
}

#include "test_singleinstance.moc"
