#include <QCoreApplication>

#include "tests/e2e/simulatedrun.h"
#include "tests/support/testenvironment.h"

class TestPresetChange : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void a_change_reaches_the_controller_at_once();
    void a_change_back_to_automatic_frees_the_fans();
    void a_change_outlives_a_restart();
};

void TestPresetChange::a_change_reaches_the_controller_at_once()
{
    SimulatedRun run;
    run.storeSetting(QStringLiteral("AppFirstRun"), 0);
    QVERIFY(run.start({}, SimulatedRun::steeredProgram()));
    QVERIFY(run.waitUntilLoaded());
    QVERIFY(!run.ask(QStringLiteral("stall")).isNull());

    std::size_t before = run.here();
    QCOMPARE(run.ask(QStringLiteral("mode 0 1,3500")), QStringLiteral("ok"));
    QVERIFY(run.waitForLine(trace::wroteMask(1), before, 2000) >= 0);
    QVERIFY(run.waitForLine(trace::wroteRpm("F0Tg", 3500), before, 8000) >= 0);
    QCOMPARE(run.ask(QStringLiteral("active")), QStringLiteral("UNSAVED|1,3500|0"));

    before = run.here();
    QCOMPARE(run.ask(QStringLiteral("mode 1 2,TC0P,20,90")), QStringLiteral("ok"));
    QVERIFY(run.waitForLine(trace::wroteMask(3), before, 2000) >= 0);
    QVERIFY(run.waitForLine(trace::wrote("F1Tg"), before, 8000) >= 0);

    before = run.here();
    QCOMPARE(run.ask(QStringLiteral("preset 1")), QStringLiteral("ok"));
    QVERIFY(run.waitForLine(trace::wroteMask(3), before, 2000) >= 0);
    QVERIFY(run.waitForLine(trace::wroteRpm("F0Tg", 6156), before, 8000) >= 0);
    QVERIFY(run.waitForLine(trace::wroteRpm("F1Tg", 5700), before, 8000) >= 0);

    const int stall = run.ask(QStringLiteral("stall")).toInt();
    qInfo("The event loop stood still for %d ms at most over three changes", stall);
    QVERIFY(stall < 1500);
    QVERIFY(run.terminate());
    QCOMPARE(run.leftovers(), QStringList());
}

void TestPresetChange::a_change_back_to_automatic_frees_the_fans()
{
    SimulatedRun run;
    run.storeActivePreset({ QStringLiteral("1,3000"), QStringLiteral("1,4000") });
    QVERIFY(run.start({}, SimulatedRun::steeredProgram()));
    QVERIFY(run.waitForLine(trace::wroteRpm("F1Tg", 4000)) >= 0);

    QCOMPARE(run.ask(QStringLiteral("preset 0")), QStringLiteral("ok"));

    const int freed = run.waitForLine(trace::wroteMask(0), 0, 4000);
    QVERIFY(freed >= 0);
    const auto from = static_cast<std::size_t>(freed);
    // Several more passes, in which the fans stay the controller's.
    QVERIFY(run.waitFor(
        [&run, from] { return trace::count(run.traceLog(), trace::read("F0Ac"), from) >= 4; }));
    QCOMPARE(trace::count(run.traceLog(), trace::wrote("F0Tg"), from), 0);
    QCOMPARE(trace::count(run.traceLog(), trace::wrote("F1Tg"), from), 0);
    QCOMPARE(run.state()[QLatin1String("controlBits")].toInt(-1), 0);
    QVERIFY(run.terminate());
    QCOMPARE(run.leftovers(), QStringList());
}

void TestPresetChange::a_change_outlives_a_restart()
{
    SimulatedRun run;
    run.storeSetting(QStringLiteral("AppFirstRun"), 0);
    QVERIFY(run.start({}, SimulatedRun::steeredProgram()));
    QVERIFY(run.waitUntilLoaded());
    QCOMPARE(run.ask(QStringLiteral("mode 1 1,4321")), QStringLiteral("ok"));
    QVERIFY(run.waitForLine(trace::wroteRpm("F1Tg", 4321)) >= 0);
    QVERIFY(run.terminate());
    QCOMPARE(run.leftovers(), QStringList());

    QVERIFY(run.start());

    QVERIFY(run.waitForLine(trace::wroteRpm("F1Tg", 4321)) >= 0);
    QVERIFY(run.terminate());
    QCOMPARE(trace::count(run.traceLog(), trace::wrote("F0Tg")), 0);
    QCOMPARE(trace::controlFaults(run.traceLog()), QStringList());
    QCOMPARE(run.leftovers(), QStringList());
}

BRISORA_TEST_MAIN(TestPresetChange, QCoreApplication)

#include "test_presetchange.moc"
