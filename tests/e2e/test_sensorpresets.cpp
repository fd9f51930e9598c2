#include <QCoreApplication>
#include <QJsonObject>

#include "tests/e2e/simulatedrun.h"
#include "tests/support/testenvironment.h"

class TestSensorPresets : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void the_fans_follow_a_load_step();
    void the_fans_come_down_with_the_load();
};

namespace {

// What was written last, in RPM; -1 before the first.
int targetOf(SimulatedRun& run, const char* key)
{
    const TraceLog& log = run.traceLog();
    const int last = trace::lastIndexOf(log, trace::wrote(key));
    return last < 0 ? -1 : log[static_cast<std::size_t>(last)].rpm();
}

double heatOf(SimulatedRun& run, const char* source)
{
    return run.state()[QLatin1String("temperatures")].toObject()[QLatin1String(source)].toDouble();
}

} // namespace

void TestSensorPresets::the_fans_follow_a_load_step()
{
    SimulatedRun run;
    run.setSpeed(10);
    run.storeActivePreset({ QStringLiteral("2,TC0P,30,55"), QStringLiteral("2,TC0P,30,55") });
    QVERIFY(run.start());
    QVERIFY(run.waitForLine(trace::wrote("F0Tg")) >= 0);
    QVERIFY(run.waitForLine(trace::wrote("F1Tg")) >= 0);
    // At rest the fans stand somewhere on the line.
    const int atRest = targetOf(run, "F0Tg");
    QVERIFY(atRest > 2160);
    QVERIFY(atRest < 4500);

    QVERIFY(run.control({ QStringLiteral("load"), QStringLiteral("heavy") }));

    // They rise with the temperature, and beyond the upper one run at their most.
    QVERIFY(run.waitFor([&run, atRest] { return targetOf(run, "F0Tg") >= atRest + 50; }));
    QVERIFY(targetOf(run, "F0Tg") < 6156);
    const std::size_t whileRising = run.here();
    QVERIFY(run.waitForLine(trace::wroteRpm("F0Tg", 6156), whileRising) >= 0);
    QVERIFY(run.waitForLine(trace::wroteRpm("F1Tg", 5700), whileRising) >= 0);
    // The heat is bounded; with fans at rest it would pass 100 degrees.
    QVERIFY(run.waitFor([&run] { return heatOf(run, "cpu") < 80.0; }));
    QVERIFY(run.terminate());
    const QJsonObject highest = run.report()[QLatin1String("highestTemperatures")].toObject();
    qInfo("At most %.1f degrees", highest[QLatin1String("cpu")].toDouble());
    QVERIFY(highest[QLatin1String("cpu")].toDouble() < 95.0);

    int last = 0;
    for (const TraceLine& line : run.traceLog()) {
        if (trace::wrote("F0Tg")(line)) {
            QVERIFY(line.rpm() >= last);
            last = line.rpm();
        }
    }
    QCOMPARE(trace::controlFaults(run.traceLog()), QStringList());
    QCOMPARE(run.leftovers(), QStringList());
}

void TestSensorPresets::the_fans_come_down_with_the_load()
{
    SimulatedRun run;
    run.setSpeed(20);
    run.setLoad(QStringLiteral("heavy"));
    run.storeActivePreset({ QStringLiteral("2,TC0P,30,50"), QStringLiteral("0") });
    QVERIFY(run.start());
    QVERIFY(run.waitForLine(trace::wroteRpm("F0Tg", 6156)) >= 0);

    QVERIFY(run.control({ QStringLiteral("load"), QStringLiteral("idle") }));

    QVERIFY(run.waitFor([&run] { return targetOf(run, "F0Tg") < 5900; }, 45000));
    QVERIFY(run.terminate());
    // The other fan is nobody's business.
    QCOMPARE(trace::count(run.traceLog(), trace::wrote("F1Tg")), 0);
    QCOMPARE(trace::count(run.traceLog(), trace::wroteMask(3)), 0);
    QCOMPARE(trace::controlFaults(run.traceLog()), QStringList());
    QCOMPARE(run.leftovers(), QStringList());
}

BRISORA_TEST_MAIN(TestSensorPresets, QCoreApplication)

#include "test_sensorpresets.moc"
