#include <csignal>

#include <QCoreApplication>
#include <QElapsedTimer>

#include "tests/e2e/simulatedrun.h"
#include "tests/e2e/virtualdisplay.h"
#include "tests/support/privatebus.h"
#include "tests/support/systemmocks.h"
#include "tests/support/testenvironment.h"

// The program while the machine sleeps and wakes, and on which power it runs.
class TestSleep : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void the_fans_are_ready_before_the_machine_sleeps();
    void a_constant_fan_keeps_its_speed_through_the_sleep();
    void a_machine_without_fans_does_not_wait();
    void a_signal_while_asleep_gives_the_fans_back();
    void closing_while_asleep_fails_with_a_box_and_gives_the_fans_back();
    void the_report_tells_the_power_source();

private:
    [[nodiscard]] bool startWithPreset(SimulatedRun& run, const QStringList& modes);
    [[nodiscard]] bool waitForLocks(SimulatedRun& run, const QStringList& locks);
    [[nodiscard]] bool fallAsleep(SimulatedRun& run);
    // Before the program's own time for that is up, at one of three sleeps: a busy
    // machine may be late once.
    [[nodiscard]] bool fallAsleepInTime(SimulatedRun& run);

    VirtualDisplay m_display;
    std::unique_ptr<PrivateBus> m_bus;
    std::unique_ptr<LoginManagerMock> m_loginManager;
};

namespace {

const QStringList locksAwake { QStringLiteral("shutdown"), QStringLiteral("sleep") };
const QStringList locksAsleep { QStringLiteral("shutdown") };

bool letPassesCome(SimulatedRun& run, int passes)
{
    const std::size_t here = run.here();
    return run.waitFor(
        [&] { return trace::count(run.traceLog(), trace::read("F0Ac"), here) >= passes; });
}

} // namespace

void TestSleep::initTestCase()
{
    const QString missing = VirtualDisplay::missingProgram();
    QVERIFY2(missing.isEmpty(), qPrintable(missing + QStringLiteral(" is not installed")));
    QVERIFY(m_display.start());
    m_bus = std::make_unique<PrivateBus>(PrivateBus::Kind::System);
}

void TestSleep::init() { m_loginManager = std::make_unique<LoginManagerMock>(*m_bus); }

void TestSleep::cleanup() { m_loginManager.reset(); }

bool TestSleep::startWithPreset(SimulatedRun& run, const QStringList& modes)
{
    run.storeActivePreset(modes);
    return run.start() && run.waitUntilLoaded() && waitForLocks(run, locksAwake);
}

bool TestSleep::waitForLocks(SimulatedRun& run, const QStringList& locks)
{
    return run.waitFor([this, &locks] { return m_loginManager->heldLocks() == locks; });
}

bool TestSleep::fallAsleep(SimulatedRun& run)
{
    m_loginManager->prepareForSleep(true);
    return waitForLocks(run, locksAsleep);
}

bool TestSleep::fallAsleepInTime(SimulatedRun& run)
{
    constexpr int patience = 2950; // milliseconds
    for (int sleeps = 0; sleeps < 3; ++sleeps) {
        QElapsedTimer sinceSignal;
        sinceSignal.start();
        if (!fallAsleep(run)) {
            return false;
        }
        if (sinceSignal.elapsed() < patience) {
            return true;
        }
        m_loginManager->prepareForSleep(false);
        if (!waitForLocks(run, locksAwake)) {
            return false;
        }
    }
    return false;
}

void TestSleep::the_fans_are_ready_before_the_machine_sleeps()
{
    SimulatedRun run;
    run.setLoad(QStringLiteral("heavy"));
    run.setSpeed(20);
    QVERIFY(startWithPreset(run, { QStringLiteral("0"), QStringLiteral("2,TC0P,30,55") }));
    QVERIFY(run.waitForLine(trace::wroteRpm("F1Tg", 5700)) >= 0);
    const std::size_t awake = run.here();

    QVERIFY(fallAsleepInTime(run));

    const TraceLog asSeenThen = run.traceLog();
    QVERIFY(trace::indexOf(asSeenThen, trace::wroteRpm("F1Tg", 2000), awake) >= 0);
    const std::size_t asleep = run.here();
    QVERIFY(letPassesCome(run, 3));
    QCOMPARE(trace::count(run.traceLog(), trace::wrote("F1Tg"), asleep), 0);
    QCOMPARE(trace::count(run.traceLog(), trace::wroteMask(2), asleep), 0);

    const std::size_t woken = run.here();
    m_loginManager->prepareForSleep(false);

    // The next sleep waits as well; the fan follows its sensor from where it is.
    QVERIFY(waitForLocks(run, locksAwake));
    const int mask = run.waitForLine(trace::wroteMask(2), woken);
    QVERIFY(mask >= 0);
    const int speed = run.waitForLine(trace::wrote("F1Tg"), static_cast<std::size_t>(mask));
    QVERIFY(speed >= 0);
    QVERIFY(run.waitForLine(trace::wroteRpm("F1Tg", 5700), woken) >= 0);
    QVERIFY(run.terminate());
    QVERIFY(run.log().contains(QLatin1String("slotEnteringSleepMode")));
    QVERIFY(run.log().contains(QLatin1String("slotWakeUp")));
    QCOMPARE(run.leftovers(), QStringList());
}

void TestSleep::a_constant_fan_keeps_its_speed_through_the_sleep()
{
    SimulatedRun run;
    QVERIFY(startWithPreset(run, { QStringLiteral("1,3000"), QStringLiteral("0") }));
    QVERIFY(run.waitForLine(trace::wroteRpm("F0Tg", 3000)) >= 0);

    QVERIFY(fallAsleep(run));
    QVERIFY(letPassesCome(run, 2));
    m_loginManager->prepareForSleep(false);
    QVERIFY(waitForLocks(run, locksAwake));
    QVERIFY(letPassesCome(run, 2));

    QCOMPARE(trace::count(run.traceLog(), trace::wrote("F0Tg")),
             trace::count(run.traceLog(), trace::wroteRpm("F0Tg", 3000)));
    QCOMPARE(trace::count(run.traceLog(), trace::wroteMask(0)), 0);
    QVERIFY(run.terminate());
    QCOMPARE(run.leftovers(), QStringList());
}

void TestSleep::a_machine_without_fans_does_not_wait()
{
    SimulatedRun run(QStringLiteral("MacBook10,1"));
    run.storeSetting(QStringLiteral("AppFirstRun"), 0);
    QVERIFY(run.start());
    QVERIFY(waitForLocks(run, locksAwake));
    QVERIFY(run.waitForLine(trace::readTemperature()) >= 0);

    QVERIFY(fallAsleep(run));

    QVERIFY(run.terminate());
    QCOMPARE(trace::count(run.traceLog(), trace::readOrWroteFanKey()), 0);
}

void TestSleep::a_signal_while_asleep_gives_the_fans_back()
{
    SimulatedRun run;
    QVERIFY(startWithPreset(run, { QStringLiteral("1,3000"), QStringLiteral("2,TC0P,30,80") }));
    QVERIFY(run.waitForLine(trace::wrote("F1Tg")) >= 0);
    QVERIFY(fallAsleep(run));

    run.sendSignal(SIGTERM);

    QVERIFY(run.waitForEnd(8000));
    QCOMPARE(run.exitCode(), 0);
    QVERIFY(trace::givesBackLast(run.traceLog()));
    QCOMPARE(run.leftovers(), QStringList());
    QCOMPARE(m_loginManager->heldLocks(), QStringList());
}

void TestSleep::closing_while_asleep_fails_with_a_box_and_gives_the_fans_back()
{
    SimulatedRun run;
    run.setVariable(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    run.setVariable(QStringLiteral("DISPLAY"), m_display.name());
    run.storeActivePreset({ QStringLiteral("1,3000"), QStringLiteral("2,TC0P,30,80") });
    QVERIFY(run.start({}, SimulatedRun::steeredProgram()));
    QVERIFY(run.waitForLine(trace::wrote("F1Tg")) >= 0);
    QVERIFY(waitForLocks(run, locksAwake));
    QVERIFY(fallAsleep(run));
    const std::size_t asleep = run.here();
    QElapsedTimer sinceClose;
    sinceClose.start();

    QCOMPARE(run.ask(QStringLiteral("exit")), QStringLiteral("ok"));

    QVERIFY(run.waitFor(
        [&run] { return run.log().contains(QLatin1String("stopAndWaitForFinished ERROR: ")); }));
    QVERIFY2(sinceClose.elapsed() > 7500, qPrintable(QString::number(sinceClose.elapsed())));
    QVERIFY(run.waitFor(
        [this] { return !m_display.findWindow(QStringLiteral("Brisora 1.5.9")).isEmpty(); }));
    QVERIFY(!trace::givesBackLast(run.traceLog()));
    QCOMPARE(trace::count(run.traceLog(), trace::wrote("F0Tg"), asleep), 0);

    // A box that has just appeared may not have the keyboard yet.
    QVERIFY(run.waitFor([this, &run] { return !run.isRunning() || !m_display.acceptBox(); }));
    QVERIFY(run.waitForEnd());
    QCOMPARE(run.exitCode(), 0);
    QVERIFY(trace::givesBackLast(run.traceLog()));
    QCOMPARE(run.leftovers(), QStringList());
}

void TestSleep::the_report_tells_the_power_source()
{
    SimulatedRun run;
    run.storeSetting(QStringLiteral("AppFirstRun"), 0);
    QVERIFY(run.start({}, SimulatedRun::steeredProgram()));
    QVERIFY(run.waitUntilLoaded());
    for (const char* const source : { "AC", "battery", "AC" }) {
        const QString name = QString::fromLatin1(source);
        QVERIFY(run.control({ QStringLiteral("power"), name.toLower() }));

        const QString report = run.ask(QStringLiteral("report"));

        QVERIFY2(report.contains(QStringLiteral("MacBookPro11,3 [%1];").arg(name)),
                 qPrintable(report));
    }
    QVERIFY(run.terminate());
}

BRISORA_TEST_MAIN(TestSleep, QCoreApplication)

#include "test_sleep.moc"
