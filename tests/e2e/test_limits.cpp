#include <QCoreApplication>

#include "tests/e2e/simulatedrun.h"
#include "tests/support/testenvironment.h"

class TestLimits : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void a_fan_without_readable_limits_stays_the_controllers();
};

void TestLimits::a_fan_without_readable_limits_stays_the_controllers()
{
    SimulatedRun run;
    run.storeActivePreset({ QStringLiteral("1,3000"), QStringLiteral("1,4000") });
    run.beforeStart({ QStringLiteral("vanish"), QStringLiteral("F0Mx") });
    QVERIFY(run.start());

    // The other fan is controlled.
    QVERIFY(run.waitForLine(trace::wroteMask(2)) >= 0);
    QVERIFY(run.waitForLine(trace::wroteRpm("F1Tg", 4000)) >= 0);
    // The limit is tried again in each pass.
    QVERIFY(run.waitFor([&run] {
        return trace::count(
                   run.traceLog(),
                   [](const TraceLine& line) { return line.isRead("F0Mx") && !line.isOk(); })
            >= 4;
    }));
    QCOMPARE(trace::count(run.traceLog(), trace::wrote("F0Tg")), 0);
    QCOMPARE(trace::count(run.traceLog(), trace::wroteMask(1)), 0);
    QCOMPARE(trace::count(run.traceLog(), trace::wroteMask(3)), 0);

    // It reads again.
    QVERIFY(run.control({ QStringLiteral("restore"), QStringLiteral("F0Mx") }));
    QVERIFY(run.waitForLine(trace::wroteMask(3)) >= 0);
    QVERIFY(run.waitForLine(trace::wroteRpm("F0Tg", 3000)) >= 0);

    QVERIFY(run.terminate());
    QCOMPARE(run.log().count(QLatin1String("Fan 0: the speed limits can't be read")), 1);
    QCOMPARE(run.log().count(QLatin1String("Fan 0: the speed limits can be read now")), 1);
    QVERIFY(!run.log().contains(QLatin1String("Fan 1: the speed limits")));
    QCOMPARE(trace::controlFaults(run.traceLog()), QStringList());
    QCOMPARE(run.leftovers(), QStringList());
}

BRISORA_TEST_MAIN(TestLimits, QCoreApplication)

#include "test_limits.moc"
