#include <csignal>

#include <sys/types.h>

#include <QCoreApplication>
#include <QElapsedTimer>

#include "tests/e2e/simulatedrun.h"
#include "tests/support/testenvironment.h"

namespace {

constexpr qint64 longestGiveBack = 3000; // milliseconds

// The first fan at this mode, the others left to the machine.
QStringList presetOf(int fans, const QString& mode)
{
    QStringList modes;
    for (int fan = 0; fan < fans; ++fan) {
        modes.append(fan == 0 ? mode : QStringLiteral("0"));
    }
    return modes;
}

// The program on a machine whose controller it reaches through the service.
class ServedRun : public SimulatedRun {
public:
    ServedRun(const QString& machine, int fans)
        : SimulatedRun(machine)
        , m_fans(fans)
    {
        setOptions({ QStringLiteral("--smcd"), QStringLiteral(SMCD_PROGRAM) });
    }

    // Starts with a preset that forces the first fan, and waits for that.
    [[nodiscard]] bool startForced()
    {
        storeActivePreset(presetOf(m_fans, QStringLiteral("1,2500")));
        return start() && waitForForced(true);
    }

    // The same within a command that outlives the program for some seconds.
    [[nodiscard]] bool startForcedWithin()
    {
        storeActivePreset(presetOf(m_fans, QStringLiteral("1,2500")));
        const QString script
            = QStringLiteral("\"$0\" & echo $! > \"$XDG_RUNTIME_DIR/pid\"; wait; sleep 5");
        return startCommand({ QStringLiteral("sh"), QStringLiteral("-c"), script, program() })
            && waitForForced(true);
    }

    // Kills the program that was started so.
    [[nodiscard]] bool killProgram()
    {
        const int number = contents(path(QStringLiteral("run/pid"))).trimmed().toInt();
        return number > 0 && ::kill(number, SIGKILL) == 0;
    }

    [[nodiscard]] bool waitForForced(bool isForced)
    {
        return waitFor(
            [this, isForced] {
                return (state()[QLatin1String("controlBits")].toInt(-1) != 0) == isForced;
            },
            10000);
    }

    [[nodiscard]] bool killService()
    {
        const qint64 number = trace::serviceProcess(traceLog());
        return number > 0 && ::kill(static_cast<pid_t>(number), SIGKILL) == 0;
    }

private:
    const int m_fans;
};

LineTest wroteMode(const char* key, char mode)
{
    return [key, mode](const TraceLine& line) {
        return line.isWrite(key) && line.value == QByteArray(1, mode);
    };
}

} // namespace

class TestDriverRoad : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void machines_with_the_driver_are_controlled_data();
    void machines_with_the_driver_are_controlled();
    void a_dual_fan_is_one_fan();
    void the_service_is_the_way_of_machines_with_ports_too();
    void a_killed_program_leaves_no_fan_forced_data();
    void a_killed_program_leaves_no_fan_forced();
    void a_killed_service_is_found_again();
};

void TestDriverRoad::machines_with_the_driver_are_controlled_data()
{
    QTest::addColumn<int>("fans");
    QTest::newRow("MacBookPro16,1") << 2;
    QTest::newRow("Macmini8,1") << 1;
    QTest::newRow("iMacPro1,1") << 1;
    QTest::newRow("MacPro7,1") << 4;
}

void TestDriverRoad::machines_with_the_driver_are_controlled()
{
    QFETCH(int, fans);
    SimulatedRun run(QString::fromLatin1(QTest::currentDataTag()));
    run.storeActivePreset(presetOf(fans, QStringLiteral("1,2400")));
    QVERIFY(run.start());

    QVERIFY(run.waitForLine(wroteMode("F0Md", 1)) >= 0);
    QVERIFY(run.waitForSpeed(0, 2400));
    QVERIFY(run.terminate());

    const TraceLog& log = run.traceLog();
    QVERIFY(trace::lastIndexOf(log, wroteMode("F0Md", 0))
            > trace::lastIndexOf(log, wroteMode("F0Md", 1)));
    QCOMPARE(run.leftovers(), QStringList());
    QVERIFY(run.log().contains(QLatin1String("PlatformWin::open trying MMIO")));
}

void TestDriverRoad::a_dual_fan_is_one_fan()
{
    SimulatedRun run(QStringLiteral("iMacPro1,1"));
    run.storeSetting(QStringLiteral("AppFirstRun"), 0);
    run.storeActivePreset({ QStringLiteral("1,2400") });
    QVERIFY(run.start({}, SimulatedRun::steeredProgram()));
    QVERIFY(run.waitForLine(wroteMode("F0Md", 1)) >= 0);

    QVERIFY(run.waitForLine(wroteMode("F1Md", 1)) >= 0);
    const QString values = run.ask(QStringLiteral("values"));
    QCOMPARE(values.count(QLatin1String("fan ")), 1);
    QVERIFY(run.terminate());
    QVERIFY(run.log().contains(QLatin1String("Fan 0: Dual-fan cooler")));
    QCOMPARE(run.leftovers(), QStringList());
}

void TestDriverRoad::the_service_is_the_way_of_machines_with_ports_too()
{
    ServedRun run(QStringLiteral("MacBookPro11,3"), 2);
    QVERIFY(run.startForced());

    QVERIFY(run.waitForSpeed(0, 2500));
    QVERIFY(run.terminate());

    QVERIFY(trace::givesBackLast(run.traceLog()));
    QVERIFY(run.log().contains(QLatin1String("Using standard port X")));
    QCOMPARE(run.leftovers(), QStringList());
}

void TestDriverRoad::a_killed_program_leaves_no_fan_forced_data()
{
    QTest::addColumn<QString>("machine");
    QTest::addColumn<int>("fans");
    QTest::newRow("a mask of all fans") << QStringLiteral("MacBookPro11,3") << 2;
    QTest::newRow("a mode of each fan") << QStringLiteral("iMacPro1,1") << 1;
}

void TestDriverRoad::a_killed_program_leaves_no_fan_forced()
{
    QFETCH(QString, machine);
    QFETCH(int, fans);
    ServedRun run(machine, fans);
    QVERIFY(run.startForcedWithin());

    QElapsedTimer timer;
    timer.start();
    QVERIFY(run.killProgram());

    QVERIFY(run.waitForForced(false));
    qInfo("%s: given back after %lld ms", qPrintable(machine), timer.elapsed());
    QVERIFY(timer.elapsed() < longestGiveBack);
}

void TestDriverRoad::a_killed_service_is_found_again()
{
    ServedRun run(QStringLiteral("MacBookPro11,3"), 2);
    QVERIFY(run.startForced());

    QVERIFY(run.killService());

    // The new service gives the fan back, and the program takes it again.
    const std::size_t killed = run.here();
    const int givenBack = run.waitForLine(trace::wroteMask(0), killed);
    QVERIFY(givenBack >= 0);
    QVERIFY(run.waitForLine(trace::wroteMask(1), static_cast<std::size_t>(givenBack)) >= 0);
    QVERIFY(run.terminate());
    QVERIFY(trace::givesBackLast(run.traceLog()));
}

BRISORA_TEST_MAIN(TestDriverRoad, QCoreApplication)

#include "test_driverroad.moc"
