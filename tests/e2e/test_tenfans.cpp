#include <QCoreApplication>

#include "tests/e2e/simulatedrun.h"
#include "tests/support/testenvironment.h"

class TestTenFans : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void a_server_counts_ten_fans_and_controls_those_it_has();
};

void TestTenFans::a_server_counts_ten_fans_and_controls_those_it_has()
{
    // Eight fans, of which the machine takes ten for granted.
    SimulatedRun run(QStringLiteral("Xserve3,1"));
    QStringList modes { QStringLiteral("1,5000") };
    while (modes.size() < 10) {
        modes.append(QStringLiteral("0"));
    }
    modes[7] = QStringLiteral("1,6000");
    modes[9] = QStringLiteral("1,7000");
    run.storeActivePreset(modes);

    QVERIFY(run.start());

    QVERIFY(run.waitForLine(trace::wroteMask(0x81), 0, 60000) >= 0);
    QVERIFY(run.waitForLine(trace::wroteRpm("F0Tg", 5000)) >= 0);
    QVERIFY(run.waitForLine(trace::wroteRpm("F7Tg", 6000)) >= 0);
    QVERIFY(run.terminate());
    QVERIFY(run.log().contains(QLatin1String("XServe 10 fans limit")));
    QVERIFY(run.log().contains(QLatin1String("Fans count - 10\r\n")));
    QVERIFY(run.log().contains(QLatin1String("Fan 0: System 1\r\n")));
    QVERIFY(run.log().contains(QLatin1String("Fan 9: Fan 9\r\n")));
    QCOMPARE(trace::count(run.traceLog(), trace::wrote("F9Tg")), 0);
    QCOMPARE(trace::controlFaults(run.traceLog()), QStringList());
    QCOMPARE(run.leftovers(), QStringList());
}

BRISORA_TEST_MAIN(TestTenFans, QCoreApplication)

#include "test_tenfans.moc"
