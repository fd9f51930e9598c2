#include <csignal>

#include <QCoreApplication>

#include "tests/e2e/simulatedrun.h"
#include "tests/support/testenvironment.h"

class TestEnds : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void a_signal_gives_the_fans_back_data();
    void a_signal_gives_the_fans_back();
    void the_real_close_gives_the_fans_back();
    void an_end_during_the_load_gives_the_fans_back();
    void a_signal_in_front_of_a_parked_control_is_heeded();
};

namespace {

const QStringList preset { QStringLiteral("1,3000"), QStringLiteral("2,TC0P,30,80") };

// The fans are forced; nothing else is to be written after they are given back.
QStringList givenBackLast(SimulatedRun& run)
{
    QStringList faults = run.leftovers();
    if (!trace::givesBackLast(run.traceLog())) {
        faults.append(QStringLiteral("the last write doesn't clear the control bits"));
    }
    if (run.storedSetting(QStringLiteral("ActivePreset")).toString() != QLatin1String("Custom:0")) {
        faults.append(QStringLiteral("the active preset is not stored"));
    }
    const QString text = run.log();
    for (const char* line :
         { "restore default control?", "yes", "stopAndWaitForFinished: Quit OK" }) {
        if (!text.contains(QLatin1String(line))) {
            faults.append(QStringLiteral("the log lacks \"%1\"").arg(QLatin1String(line)));
        }
    }
    return faults;
}

} // namespace

void TestEnds::a_signal_gives_the_fans_back_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGHUP") << SIGHUP;
}

void TestEnds::a_signal_gives_the_fans_back()
{
    QFETCH(int, number);
    SimulatedRun run;
    run.storeActivePreset(preset);
    QVERIFY(run.start());
    QVERIFY(run.waitForLine(trace::wroteMask(3)) >= 0);
    QVERIFY(run.waitForLine(trace::wrote("F0Tg")) >= 0);

    run.sendSignal(number);

    QVERIFY(run.waitForEnd());
    QCOMPARE(run.exitCode(), 0);
    QCOMPARE(givenBackLast(run), QStringList());
    // Geometry and panes are saved by the real close alone.
    QVERIFY(run.storedSetting(QStringLiteral("WindowGeometry")).isValid());
}

void TestEnds::the_real_close_gives_the_fans_back()
{
    SimulatedRun run;
    run.storeActivePreset(preset);
    QVERIFY(run.start({}, SimulatedRun::steeredProgram()));
    QVERIFY(run.waitForLine(trace::wrote("F0Tg")) >= 0);

    QCOMPARE(run.ask(QStringLiteral("exit")), QStringLiteral("ok"));

    QVERIFY(run.waitForEnd());
    QCOMPARE(run.exitCode(), 0);
    QCOMPARE(givenBackLast(run), QStringList());
}

void TestEnds::an_end_during_the_load_gives_the_fans_back()
{
    SimulatedRun run;
    run.storeActivePreset(preset);
    // Another program has forced a fan and is gone.
    run.beforeStart({ QStringLiteral("set"), QStringLiteral("FS!"), QStringLiteral("0002") });
    QVERIFY(run.start());
    QVERIFY(run.waitForLine(trace::read("F1Mx")) >= 0);

    run.sendSignal(SIGTERM);

    QVERIFY(run.waitForEnd());
    QCOMPARE(run.exitCode(), 0);
    QCOMPARE(run.leftovers(), QStringList());
    QVERIFY(run.log().contains(QLatin1String("stopAndWaitForFinished: Quit OK")));
    QCOMPARE(run.storedSetting(QStringLiteral("ActivePreset")).toString(),
             QStringLiteral("Custom:0"));
}

void TestEnds::a_signal_in_front_of_a_parked_control_is_heeded()
{
    SimulatedRun run;
    run.storeActivePreset(preset);
    QVERIFY(run.start({}, SimulatedRun::steeredProgram()));
    QVERIFY(run.waitForLine(trace::wrote("F1Tg")) >= 0);
    QCOMPARE(run.ask(QStringLiteral("sleep")), QStringLiteral("ok"));
    // Sleep sends the fan that follows a sensor to its minimum, then control parks.
    QVERIFY(run.waitForLine(trace::wroteRpm("F1Tg", 2000), run.here()) >= 0);

    run.sendSignal(SIGTERM);

    QVERIFY(run.waitForEnd(10000));
    QCOMPARE(run.exitCode(), 0);
    QCOMPARE(givenBackLast(run), QStringList());
}

BRISORA_TEST_MAIN(TestEnds, QCoreApplication)

#include "test_ends.moc"
