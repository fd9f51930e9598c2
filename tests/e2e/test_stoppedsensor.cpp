#include <QCoreApplication>

#include "tests/e2e/simulatedrun.h"
#include "tests/support/testenvironment.h"

class TestStoppedSensor : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void a_fan_is_given_back_when_its_sensor_stops_reading();
};

namespace {

constexpr qint64 patience = 30000; // milliseconds without a reading
// A pass, in which the failing reads take their time too.
constexpr qint64 longestPass = 9000; // milliseconds

} // namespace

void TestStoppedSensor::a_fan_is_given_back_when_its_sensor_stops_reading()
{
    SimulatedRun run;
    run.storeActivePreset({ QStringLiteral("2,TC0P,20,90"), QStringLiteral("1,4000") });
    // Hidden, so that a pass is short.
    QVERIFY(run.start({ QStringLiteral("/minimized") }));
    QVERIFY(run.waitForLine(trace::wrote("F0Tg")) >= 0);
    QVERIFY(run.waitForLine(trace::wroteRpm("F1Tg", 4000)) >= 0);

    QVERIFY(run.control({ QStringLiteral("vanish"), QStringLiteral("TC0P") }));
    const int failing = run.waitForLine(
        [](const TraceLine& line) { return line.isRead("TC0P") && !line.isOk(); });
    QVERIFY(failing >= 0);
    const auto fromFailing = static_cast<std::size_t>(failing);
    const int givenBack = run.waitForLine(trace::wroteMask(2), fromFailing, 60000);
    QVERIFY(givenBack >= 0);

    const TraceLog& log = run.traceLog();
    const auto fromGivenBack = static_cast<std::size_t>(givenBack);
    const int lastRead = trace::lastIndexOf(log, trace::read("TC0P"));
    QVERIFY(lastRead >= 0);
    const qint64 waited
        = log[fromGivenBack].milliseconds - log[static_cast<std::size_t>(lastRead)].milliseconds;
    qInfo("Given back %lld ms after the last reading", waited);
    QVERIFY(waited >= patience);
    QVERIFY(waited <= patience + longestPass);
    // The preset is untouched, and no later assertion takes the fan again.
    QVERIFY(run.waitFor([&run, fromGivenBack] {
        return trace::count(run.traceLog(), trace::read("F1Ac"), fromGivenBack) >= 4;
    }));
    QCOMPARE(trace::count(run.traceLog(), trace::wrote("F0Tg"), fromGivenBack), 0);
    QCOMPARE(trace::count(run.traceLog(), trace::wroteMask(3), fromGivenBack), 0);

    QVERIFY(run.control({ QStringLiteral("restore"), QStringLiteral("TC0P") }));
    QVERIFY(run.waitForLine(trace::wroteMask(3), fromGivenBack) >= 0);
    QVERIFY(run.waitForLine(trace::wrote("F0Tg"), fromGivenBack) >= 0);

    QVERIFY(run.terminate());
    QCOMPARE(run.log().count(QLatin1String("The sensor TC0P has stopped reading")), 1);
    QCOMPARE(run.log().count(QLatin1String("The sensor TC0P reads again")), 1);
    QCOMPARE(run.storedSetting(QStringLiteral("ActivePreset")).toString(),
             QStringLiteral("Custom:0"));
    QCOMPARE(trace::controlFaults(run.traceLog()), QStringList());
    QCOMPARE(run.leftovers(), QStringList());
}

BRISORA_TEST_MAIN(TestStoppedSensor, QCoreApplication)

#include "test_stoppedsensor.moc"
