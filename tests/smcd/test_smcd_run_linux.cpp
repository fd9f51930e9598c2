#include <csignal>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/types.h>
#include <sys/un.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include "smcd/protocol/records.h"
#include "tests/e2e/machinerun.h"
#include "tests/support/testenvironment.h"

namespace {

namespace code = smcd::protocol::code;

constexpr qint64 longestGiveBack = 3000; // milliseconds
constexpr int kills = 20;

// The service in a machine, where nothing else runs.
class ServedMachine : public MachineRun {
public:
    explicit ServedMachine(const QString& name)
        : MachineRun(name)
    {
        setOptions({ QStringLiteral("--smcd"), QStringLiteral(SMCD_PROGRAM) });
    }

    [[nodiscard]] bool start()
    {
        return startCommand({ QStringLiteral("sleep"), QStringLiteral("600") })
            && waitFor([this] { return service() > 0; });
    }

    // Ends it in order.
    [[nodiscard]] bool end()
    {
        sendSignal(SIGTERM);
        return waitFor([this] { return !isRunning(); });
    }

    // The number of the service's process, or -1 while there is none.
    [[nodiscard]] qint64 service() { return trace::serviceProcess(traceLog()); }

    // Kills the service; true once another one runs.
    [[nodiscard]] bool killService()
    {
        const qint64 number = service();
        return number > 0 && ::kill(static_cast<pid_t>(number), SIGKILL) == 0
            && waitFor([this, number] { return service() > 0 && service() != number; });
    }

    // The forced fans, a bit each, as the machine has them.
    [[nodiscard]] int forced() { return state()[QLatin1String("controlBits")].toInt(-1); }

    [[nodiscard]] bool waitForForced(int bits)
    {
        return waitFor([this, bits] { return forced() == bits; });
    }
};

// The files of the kernel's driver for a controller with one key, "FNum".
void putKernelDriver(const QString& root)
{
    const QString folder = root + QStringLiteral("/sys/devices/platform/applesmc.768/");
    QDir().mkpath(folder);
    const QList<QPair<QString, QByteArray>> files {
        { QStringLiteral("key_count"), "1\n" },
        { QStringLiteral("key_at_index"), "0\n" },
        { QStringLiteral("key_at_index_name"), "FNum\n" },
        { QStringLiteral("key_at_index_type"), "ui8 \n" },
        { QStringLiteral("key_at_index_data_length"), "1\n" },
        { QStringLiteral("key_at_index_data"), "\2" },
    };
    for (const auto& [name, text] : files) {
        QFile file(folder + name);
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size()) {
            qFatal("%s", qPrintable(file.fileName()));
        }
    }
}

// The service as a system starts it on demand: with the listening socket of the
// folder as its third descriptor.
class HandedService : public QProcess {
public:
    HandedService(const QString& folder, int type)
        : m_listener(::socket(AF_UNIX, type | SOCK_CLOEXEC, 0))
    {
        const QString path = folder + QStringLiteral("/run/brisora/smc.sock");
        QDir().mkpath(QFileInfo(path).path());
        sockaddr_un address {};
        address.sun_family = AF_UNIX;
        const QByteArray name = QFile::encodeName(path);
        std::copy(name.begin(), name.end(), address.sun_path);
        const auto* const place = static_cast<const sockaddr*>(static_cast<const void*>(&address));
        if (::bind(m_listener, place, sizeof(address)) != 0 || ::listen(m_listener, 4) != 0) {
            qFatal("%s", qPrintable(path));
        }
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("BRISORA_SYSROOT"), folder);
        environment.insert(QStringLiteral("LISTEN_FDS"), QStringLiteral("1"));
        setProcessEnvironment(environment);
        start(QStringLiteral("/bin/sh"),
              { QStringLiteral("-c"), QStringLiteral("export LISTEN_PID=$$; exec \"$0\""),
                QStringLiteral(SMCD_PROGRAM) });
        waitForStarted();
    }
    HandedService(const HandedService&) = delete;
    HandedService& operator=(const HandedService&) = delete;
    ~HandedService() override
    {
        terminate();
        waitForFinished();
        ::close(m_listener);
    }

protected:
    void setupChildProcess() override { ::dup2(m_listener, 3); }

private:
    int m_listener;
};

// A client of the service, in a process of its own.
class Caller : public QProcess {
public:
    explicit Caller(const MachineRun& machine)
        : Caller(machine.path(QStringLiteral("sysroot")))
    {
    }
    explicit Caller(const QString& sysroot)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("BRISORA_SYSROOT"), sysroot);
        setProcessEnvironment(environment);
        start(QStringLiteral(SMCD_CALLER), QStringList());
        waitForStarted();
    }
    ~Caller() override
    {
        kill();
        waitForFinished();
    }

    [[nodiscard]] static QString line(quint32 wanted, int room, const QByteArray& record)
    {
        return QStringLiteral("%1 %2 %3\n")
            .arg(QString::number(wanted, 16), QString::number(room),
                 QString::fromLatin1(record.toHex()));
    }

    [[nodiscard]] QString ask(quint32 wanted, int room, const QByteArray& record)
    {
        write(line(wanted, room, record).toLatin1());
        while (!canReadLine() && waitForReadyRead(10000)) { }
        return QString::fromLatin1(readLine()).trimmed();
    }

    [[nodiscard]] QString writeKey(const char* key, const QByteArray& value)
    {
        return ask(code::halWrite, 0, writeRecord(key, value));
    }

    void writeForever(const char* key, const QByteArray& value)
    {
        write("forever " + line(code::halWrite, 0, writeRecord(key, value)).toLatin1());
    }

private:
    static QByteArray writeRecord(const char* key, const QByteArray& value)
    {
        return QByteArray(key, 4) + '\0' + value;
    }
};

const QByteArray manual(1, '\1');
const QString done = QStringLiteral("ok");

} // namespace

class SmcdRunTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void keysAreServedThroughThePorts()
    {
        ServedMachine machine(QStringLiteral("MacBookPro16,1"));
        QVERIFY(machine.start());
        Caller caller(machine);
        QCOMPARE(caller.ask(code::mmioRead, 32, "FNum"), QStringLiteral("ok 02"));
        QCOMPARE(caller.ask(code::mmioKeyByIndex, 4, QByteArray(4, '\0')),
                 QStringLiteral("ok 234B4559"));
        QCOMPARE(caller.ask(code::halKeyInfo, 12, QByteArray("F0Md\0", 5)),
                 QStringLiteral("ok 0100000075693820D0000000"));
        QCOMPARE(caller.ask(code::mmioRead, 32, "ZZZZ"), QStringLiteral("error 2"));
        QCOMPARE(caller.writeKey("F0Mn", QByteArray(4, '\0')), QStringLiteral("error 13"));
        QCOMPARE(caller.writeKey("F0Tg", QByteArray::fromHex("00409C45")), // 5000
                 QStringLiteral("ok"));
        QCOMPARE(caller.writeKey("F0Tg", QByteArray::fromHex("0070A545")), // 5294 of 5297
                 QStringLiteral("ok"));
        QCOMPARE(caller.writeKey("F0Tg", QByteArray::fromHex("0000C845")), // 6400
                 QStringLiteral("error 34"));
        QVERIFY(machine.end());
        QCOMPARE(machine.leftovers(), QStringList());
    }

    void theFansAreGivenBackWhenTheirClientIsKilled_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("key");
        QTest::addColumn<QByteArray>("value");
        QTest::newRow("mask") << QStringLiteral("MacBookPro11,3") << QByteArray("FS! ")
                              << QByteArray("\0\3", 2);
        QTest::newRow("mode") << QStringLiteral("iMacPro1,1") << QByteArray("F1Md") << manual;
    }
    void theFansAreGivenBackWhenTheirClientIsKilled()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, key);
        QFETCH(QByteArray, value);
        ServedMachine machine(name);
        QVERIFY(machine.start());
        qint64 longest = 0;
        for (int count = 0; count < kills; ++count) {
            Caller caller(machine);
            QCOMPARE(caller.writeKey(key.constData(), value), done);
            QVERIFY(machine.forced() > 0);
            QElapsedTimer timer;
            timer.start();
            caller.kill();
            QVERIFY(machine.waitForForced(0));
            longest = qMax(longest, timer.elapsed());
        }
        qInfo("%d clients killed, fans given back after %lld ms at most", kills,
              static_cast<long long>(longest));
        QVERIFY(longest < longestGiveBack);
        QVERIFY(machine.end());
        QCOMPARE(machine.leftovers(), QStringList());
    }

    void theFansAreGivenBackAfterTheServiceIsKilled()
    {
        ServedMachine machine(QStringLiteral("MacBookPro16,1"));
        QVERIFY(machine.start());
        qint64 longest = 0;
        for (int count = 0; count < kills; ++count) {
            Caller caller(machine);
            QCOMPARE(caller.writeKey("F0Md", manual), done);
            QCOMPARE(caller.writeKey("F1Md", manual), done);
            QElapsedTimer timer;
            timer.start();
            QVERIFY(machine.killService());
            QVERIFY(machine.waitForForced(0));
            longest = qMax(longest, timer.elapsed());
            // The client finds the next one by itself.
            QCOMPARE(caller.ask(code::mmioRead, 32, "FNum"), QStringLiteral("ok 02"));
        }
        qInfo("service killed %d times, fans given back after %lld ms at most", kills,
              static_cast<long long>(longest));
        QVERIFY(longest < longestGiveBack);
        QVERIFY(machine.end());
    }

    void theFansAreGivenBackAfterAKillInTheMiddleOfAnything()
    {
        ServedMachine machine(QStringLiteral("MacBookPro11,3"));
        QVERIFY(machine.start());
        qint64 longest = 0;
        for (int count = 0; count < kills; ++count) {
            QElapsedTimer timer;
            {
                Caller caller(machine);
                caller.writeForever("FS! ", QByteArray("\0\3", 2));
                QTest::qWait(20 + count * 15); // another moment of the exchange each time
                timer.start();
                QVERIFY(machine.killService());
            }
            QVERIFY(machine.waitForForced(0));
            longest = qMax(longest, timer.elapsed());
        }
        qInfo("service killed %d times under load, fans given back after %lld ms at most", kills,
              static_cast<long long>(longest));
        QVERIFY(trace::count(machine.traceLog(), trace::wroteMask(3)) > 0);
        QVERIFY(longest < longestGiveBack);
        QVERIFY(machine.end());
    }

    void keptFansSurviveTheirClientAndTheService()
    {
        ServedMachine machine(QStringLiteral("MacBookPro16,1"));
        QVERIFY(machine.start());
        Caller staying(machine);
        {
            Caller caller(machine);
            QCOMPARE(caller.writeKey("F0Md", manual), done);
            QCOMPARE(staying.writeKey("F1Md", manual), done);
            QCOMPARE(caller.ask(code::keepFans, 0, {}), done);
        }
        QCOMPARE(staying.ask(code::mmioRead, 32, "F0Md"), QStringLiteral("ok 01"));
        QVERIFY(machine.killService());
        QVERIFY(machine.waitForForced(1)); // the other one is given back
        QVERIFY(machine.killService());
        Caller later(machine);
        QCOMPARE(later.ask(code::mmioRead, 32, "F0Md"), QStringLiteral("ok 01"));
        QVERIFY(machine.end());
        QCOMPARE(machine.report()[QLatin1String("controlBits")].toInt(), 1);
    }

    void aSocketThatTheSystemHandsOverIsServed()
    {
        const QTemporaryDir folder;
        putKernelDriver(folder.path());
        HandedService service(folder.path(), SOCK_SEQPACKET);
        Caller caller(folder.path());
        QCOMPARE(caller.ask(code::mmioRead, 32, "FNum"), QStringLiteral("ok 02"));
        QCOMPARE(caller.ask(code::mmioRead, 32, "TC0P"), QStringLiteral("error 2"));
        QCOMPARE(service.state(), QProcess::Running);
        service.terminate();
        QVERIFY(service.waitForFinished());
        QCOMPARE(service.exitCode(), 0);
        QVERIFY(QFile::exists(folder.filePath(QStringLiteral("run/brisora/smc.sock"))));
    }

    void aSocketOfAnotherKindIsRefused()
    {
        const QTemporaryDir folder;
        HandedService service(folder.path(), SOCK_STREAM);
        QVERIFY(service.waitForFinished());
        QCOMPARE(service.exitCode(), 3);
        QVERIFY(service.readAllStandardError().contains("--foreground"));
    }

    void theFansAreGivenBackWhenTheServiceEnds()
    {
        ServedMachine machine(QStringLiteral("iMacPro1,1"));
        QVERIFY(machine.start());
        Caller caller(machine);
        QCOMPARE(caller.writeKey("F0Md", manual), done);
        QVERIFY(machine.end());
        QCOMPARE(machine.leftovers(), QStringList());
        QVERIFY(!QFile::exists(machine.path(QStringLiteral("sysroot/run/brisora/forced-fans"))));
    }
};

BRISORA_TEST_MAIN(SmcdRunTest, QCoreApplication)

#include "test_smcd_run_linux.moc"
