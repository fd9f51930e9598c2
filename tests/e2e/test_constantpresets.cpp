#include <QCoreApplication>

#include "tests/e2e/simulatedrun.h"
#include "tests/support/testenvironment.h"

class TestConstantPresets : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void a_stored_speed_is_held();
    void full_blast_runs_every_fan_at_its_maximum();
    void a_speed_beyond_the_limits_is_clamped();
    void automatic_writes_no_speed();
};

void TestConstantPresets::a_stored_speed_is_held()
{
    SimulatedRun run;
    run.setSpeed(4);
    run.storeActivePreset({ QStringLiteral("1,3000"), QStringLiteral("1,4000") });

    QVERIFY(run.start());

    QVERIFY(run.waitForLine(trace::wroteMask(3)) >= 0);
    QVERIFY(run.waitForLine(trace::wroteRpm("F0Tg", 3000)) >= 0);
    QVERIFY(run.waitForLine(trace::wroteRpm("F1Tg", 4000)) >= 0);
    QVERIFY(run.waitForSpeed(0, 3000));
    QVERIFY(run.waitForSpeed(1, 4000));

    QVERIFY(run.terminate());
    QCOMPARE(trace::controlFaults(run.traceLog()), QStringList());
    QCOMPARE(run.leftovers(), QStringList());
}

void TestConstantPresets::full_blast_runs_every_fan_at_its_maximum()
{
    SimulatedRun run;
    run.setSpeed(4);
    run.storeSetting(QStringLiteral("AppFirstRun"), 0);
    run.storeSetting(QStringLiteral("ActivePreset"), QStringLiteral("Predefined:1"));

    QVERIFY(run.start());

    QVERIFY(run.waitForLine(trace::wroteRpm("F0Tg", 6156)) >= 0);
    QVERIFY(run.waitForLine(trace::wroteRpm("F1Tg", 5700)) >= 0);
    QVERIFY(run.waitForSpeed(0, 6156));
    QVERIFY(run.waitForSpeed(1, 5700));

    QVERIFY(run.terminate());
    QCOMPARE(trace::controlFaults(run.traceLog()), QStringList());
    QCOMPARE(run.leftovers(), QStringList());
}

void TestConstantPresets::a_speed_beyond_the_limits_is_clamped()
{
    SimulatedRun run;
    run.storeActivePreset({ QStringLiteral("1,100"), QStringLiteral("1,16000") });

    QVERIFY(run.start());

    QVERIFY(run.waitForLine(trace::wroteRpm("F0Tg", 2160)) >= 0);
    QVERIFY(run.waitForLine(trace::wroteRpm("F1Tg", 5700)) >= 0);
    QVERIFY(run.terminate());
    QCOMPARE(run.leftovers(), QStringList());
}

void TestConstantPresets::automatic_writes_no_speed()
{
    SimulatedRun run;
    run.setLoad(QStringLiteral("heavy"));
    run.setSpeed(20);
    run.storeSetting(QStringLiteral("AppFirstRun"), 0);

    QVERIFY(run.start());
    QVERIFY(run.waitUntilLoaded());
    // Several passes of both tasks.
    QVERIFY(run.waitFor([&run] { return trace::count(run.traceLog(), trace::read("F0Ac")) >= 6; }));

    QVERIFY(run.terminate());
    QCOMPARE(trace::count(run.traceLog(), trace::wrote("F0Tg")), 0);
    QCOMPARE(trace::count(run.traceLog(), trace::wrote("F1Tg")), 0);
    QCOMPARE(trace::count(run.traceLog(), trace::wroteMask(0)),
             trace::count(run.traceLog(), trace::wrote("FS! ")));
    QCOMPARE(run.leftovers(), QStringList());
}

BRISORA_TEST_MAIN(TestConstantPresets, QCoreApplication)

#include "test_constantpresets.moc"
