#include <limits>

#include <QCoreApplication>
#include <QTest>

#include "tests/fancontrol/sensorcontrolfan.h"
#include "tests/support/logcapture.h"
#include "tests/support/testenvironment.h"

class TestSensorControl : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theNamesOfTendenciesAreThoseOfTheLog_data();
    void theNamesOfTendenciesAreThoseOfTheLog();
    void theFirstCallPicksASpeed_data();
    void theFirstCallPicksASpeed();
    void aFanRestingAtOneTemperatureClimbsItsBandAndDriftsBack();
    void aRestInTheUpperHalfDriftsToTheTopOfTheBand();
    void aTemperatureAroundZeroChangesNothing_data();
    void aTemperatureAroundZeroChangesNothing();
    void aTemperatureThatIsNoneChangesNothing_data();
    void aTemperatureThatIsNoneChangesNothing();
    void negativeTemperaturesAreReadings();
    void belowTheLowerTemperatureControlRestartsAtTheMinimum();
    void belowTheLowerTemperatureAtTheMinimumTheSpeedIsOnlyRepeated();
    void aSpeedIsRepeatedAfterThirtySecondsAndNotBefore();
    void aResetForgetsTheSpeedButNotTheTendency();
    void limitsThatMoveTakeTheSpeedAlong();
    void temperaturesInTheWrongOrderOrEqualGiveMinimumOrMaximum_data();
    void temperaturesInTheWrongOrderOrEqualGiveMinimumOrMaximum();
    void atMostThreeClockReadsPerCall();
    void aNameFromHardwareCantForgeALogLine();
};

void TestSensorControl::theNamesOfTendenciesAreThoseOfTheLog_data()
{
    QTest::addColumn<int>("tendency");
    QTest::addColumn<QString>("name");
    QTest::newRow("0") << 0 << "TendencyUnknown";
    QTest::newRow("1") << 1 << "TendencyIncrease";
    QTest::newRow("2") << 2 << "TendencyDecrease";
    QTest::newRow("3") << 3 << "TendencyDoNothing";
}

void TestSensorControl::theNamesOfTendenciesAreThoseOfTheLog()
{
    QFETCH(int, tendency);
    QFETCH(QString, name);
    QCOMPARE(QString::fromLatin1(TendencyToString(static_cast<Tendency>(tendency))), name);
}

void TestSensorControl::theFirstCallPicksASpeed_data()
{
    QTest::addColumn<double>("temperature");
    QTest::addColumn<int>("current");
    QTest::addColumn<int>("expected");
    QTest::addColumn<int>("tendency");
    const int up = TendencyIncrease;
    const int rest = TendencyDoNothing;

    // One creep step of 1 follows in the same call wherever the fan climbs.
    QTest::newRow("below the lower temperature") << 39.9 << 2500 << 2000 << int(TendencyUnknown);
    QTest::newRow("at the lower temperature") << 40.0 << 2500 << 2001 << up;
    QTest::newRow("at the lower temperature, in the band") << 40.0 << 2100 << 2100 << rest;
    QTest::newRow("at the lower temperature, at the band's top") << 40.0 << 2133 << 2001 << up;
    QTest::newRow("one degree on: the band that starts at the minimum")
        << 41.0 << 2132 << 2132 << rest;
    QTest::newRow("two degrees on") << 42.0 << 2134 << 2134 << rest;
    QTest::newRow("slower than the band") << 55.0 << 2500 << 3863 << up;
    QTest::newRow("cut, not rounded") << 55.99 << 2500 << 3863 << up;
    QTest::newRow("at the foot of the band") << 55.0 << 3862 << 3863 << up;
    QTest::newRow("just inside the band, low") << 55.0 << 3863 << 3863 << rest;
    QTest::newRow("just inside the band, high") << 55.0 << 3994 << 3994 << rest;
    QTest::newRow("at the top of the band") << 55.0 << 3995 << 3863 << up;
    QTest::newRow("faster than the band") << 55.0 << 5500 << 3863 << up;
    QTest::newRow("speed not read") << 55.0 << 65535 << 3863 << up;
    QTest::newRow("at the upper temperature") << 70.9 << 2500 << 5858 << up;
    QTest::newRow("above the upper temperature") << 71.0 << 2500 << 6000 << up;
}

void TestSensorControl::theFirstCallPicksASpeed()
{
    QFETCH(double, temperature);
    QFETCH(int, current);
    ControlledFan fan;
    fan.speeds.current = static_cast<std::uint16_t>(current);

    QTEST(fan.at(temperature), "expected");

    QTEST(int(fan.control.tendency()), "tendency");
}

void TestSensorControl::aFanRestingAtOneTemperatureClimbsItsBandAndDriftsBack()
{
    LogCapture log;
    ControlledFan fan;

    QCOMPARE(fan.at(55), 3863);
    QCOMPARE(log.take(),
             QStringList({ line("Main: HALF INCREASE ON"),
                           line("Main: Tendency is set to TendencyIncrease, Temperature 55, "
                                "RPM=2500"),
                           line("Main: Setting fan speed to 3863") }));

    // Climbing: 1 RPM per call, 132 calls.
    for (int call = 1; call < 132; ++call) {
        QCOMPARE(fan.after(tick, 55), 3863 + call);
        QCOMPARE(log.take(), QStringList(line("Main: Setting fan speed to %1").arg(3863 + call)));
    }
    QCOMPARE(fan.control.tendency(), TendencyIncrease);
    QCOMPARE(fan.after(tick, 55), 3995);
    QCOMPARE(fan.control.tendency(), TendencyDoNothing);
    QCOMPARE(log.take(),
             QStringList({ line("Main: PEEK MAX RPM '3995' for current temperature, do nothing "
                                "now"),
                           line("Main: Setting fan speed to 3995") }));

    // Resting for a minute, with the speed repeated once.
    int repeats = 0;
    for (int call = 1; call < 40; ++call) {
        const int rpm = fan.after(tick, 55);
        QVERIFY2(rpm == -1 || rpm == 3995, qPrintable(QString::number(rpm)));
        repeats += rpm == -1 ? 0 : 1;
    }
    QCOMPARE(repeats, 1);
    QCOMPARE(log.take(), QStringList());

    // Drifting down: 55 is not above the middle. 133 calls to the foot.
    QCOMPARE(fan.after(tick, 55), 3994);
    QCOMPARE(fan.control.tendency(), TendencyDecrease);
    QCOMPARE(
        log.take(),
        QStringList({ line("Main: HALF DECREASE ON"), line("Main: Setting fan speed to 3994") }));
    for (int call = 2; call < 133; ++call) {
        QCOMPARE(fan.after(tick, 55), 3995 - call);
    }
    log.clear();
    QCOMPARE(fan.after(tick, 55), 3862);
    QCOMPARE(fan.control.tendency(), TendencyDoNothing);
    QCOMPARE(log.take(),
             QStringList({ line("Main: PEEK MIN RPM '3862' for current temperature, do nothing "
                                "now"),
                           line("Main: Setting fan speed to 3862") }));

    // From now on each drift ends in the call that begins it.
    for (int minute = 0; minute < 2; ++minute) {
        for (int call = 1; call < 40; ++call) {
            fan.after(tick, 55);
        }
        QCOMPARE(log.take(), QStringList());
        fan.after(tick, 55);
        QCOMPARE(fan.control.tendency(), TendencyDoNothing);
        QCOMPARE(log.take(),
                 QStringList({ line("Main: HALF DECREASE ON"),
                               line("Main: PEEK MIN RPM '3862' for current temperature, do "
                                    "nothing now") }));
    }
}

void TestSensorControl::aRestInTheUpperHalfDriftsToTheTopOfTheBand()
{
    LogCapture log;
    ControlledFan fan;
    fan.speeds.current = 4000; // the band of 56 degrees is 3995 to 4128
    QCOMPARE(fan.at(56), 4000);
    QCOMPARE(fan.control.tendency(), TendencyDoNothing);
    log.clear();

    // The timer of the rest was set by the constructor, not by the first call.
    QCOMPARE(fan.after(59999, 56), 4000); // only repeated
    QCOMPARE(fan.control.tendency(), TendencyDoNothing);
    QCOMPARE(fan.after(1, 56), 4001);

    QCOMPARE(fan.control.tendency(), TendencyIncrease);
    QCOMPARE(
        log.take(),
        QStringList({ line("Main: HALF INCREASE ON"), line("Main: Setting fan speed to 4001") }));
    QCOMPARE(fan.after(tick, 56), 4002);
}

void TestSensorControl::aTemperatureAroundZeroChangesNothing_data()
{
    QTest::addColumn<double>("temperature");
    QTest::newRow("0") << 0.0;
    QTest::newRow("0.99") << 0.99;
    QTest::newRow("-0.99") << -0.99;
}

void TestSensorControl::aTemperatureAroundZeroChangesNothing()
{
    QFETCH(double, temperature);
    ControlledFan fan;
    QCOMPARE(fan.at(55), 3863);

    // Not even the repetition that is due comes.
    QCOMPARE(fan.after(31 * second, temperature), -1);
    QCOMPARE(fan.control.tendency(), TendencyIncrease);

    QCOMPARE(fan.at(55), 3864);
}

void TestSensorControl::aTemperatureThatIsNoneChangesNothing_data()
{
    QTest::addColumn<double>("temperature");
    QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity();
    QTest::newRow("minus infinite") << -std::numeric_limits<double>::infinity();
    QTest::newRow("too big for an integer") << 3e9;
    QTest::newRow("too small for an integer") << -3e9;
}

void TestSensorControl::aTemperatureThatIsNoneChangesNothing()
{
    QFETCH(double, temperature);
    ControlledFan fan;
    QCOMPARE(fan.at(55), 3863);

    QCOMPARE(fan.after(31 * second, temperature), -1);

    QCOMPARE(fan.at(55), 3864);
}

void TestSensorControl::negativeTemperaturesAreReadings()
{
    ControlledFan fan;
    fan.mode = FanControlMode::sensor(QStringLiteral("TA0P"), -20, 10);

    QCOMPARE(fan.at(-21), 2000);
    // (-10 + 20 - 1) * 133 + 2000, and one creep step.
    QCOMPARE(fan.after(tick, -10.5), 3198);
}

void TestSensorControl::belowTheLowerTemperatureControlRestartsAtTheMinimum()
{
    LogCapture log;
    ControlledFan fan;
    fan.at(55);
    log.clear();

    QCOMPARE(fan.after(tick, 39), 2000);

    QCOMPARE(fan.control.tendency(), TendencyIncrease);
    QCOMPARE(log.take(), QStringList(line("Main: Setting fan speed to 2000")));
    // The next temperature in the range is a first one.
    QCOMPARE(fan.after(tick, 56), 3996);
    QCOMPARE(log.take().first(), line("Main: HALF INCREASE ON"));
}

void TestSensorControl::belowTheLowerTemperatureAtTheMinimumTheSpeedIsOnlyRepeated()
{
    LogCapture log;
    ControlledFan fan;
    QCOMPARE(fan.at(39), 2000);
    log.clear();

    QCOMPARE(fan.after(30 * second, 39), -1);
    QCOMPARE(fan.after(1 * second, 39), 2000);
    QCOMPARE(fan.after(tick, 39), -1);
    QCOMPARE(fan.after(30 * second, 39), 2000);
    QCOMPARE(log.take(), QStringList());
}

void TestSensorControl::aSpeedIsRepeatedAfterThirtySecondsAndNotBefore()
{
    ControlledFan fan;
    fan.speeds.current = 3900;
    QCOMPARE(fan.at(55), 3900);

    QCOMPARE(fan.after(30 * second + 999, 55), -1);
    QCOMPARE(fan.after(1, 55), 3900);
    QCOMPARE(fan.after(10 * second, 55), -1);
}

void TestSensorControl::aResetForgetsTheSpeedButNotTheTendency()
{
    ControlledFan fan;
    fan.speeds.current = 3900;
    fan.at(55);
    fan.after(tick, 54);
    QCOMPARE(fan.control.tendency(), TendencyDecrease);

    fan.control.reset();

    QCOMPARE(fan.control.tendency(), TendencyDecrease);
    fan.speeds.current = 3850;
    QCOMPARE(fan.at(54), 3850);
    QCOMPARE(fan.control.tendency(), TendencyDoNothing);
}

void TestSensorControl::limitsThatMoveTakeTheSpeedAlong()
{
    ControlledFan fan;
    fan.speeds.current = 3900;
    QCOMPARE(fan.at(55), 3900);

    fan.speeds.min = 4500;
    QCOMPARE(fan.after(tick, 55), 4500);
    fan.speeds.min = 1000;
    fan.speeds.max = 3000;
    QCOMPARE(fan.after(tick, 55), 3000);
}

void TestSensorControl::temperaturesInTheWrongOrderOrEqualGiveMinimumOrMaximum_data()
{
    QTest::addColumn<int>("low");
    QTest::addColumn<int>("high");
    QTest::addColumn<double>("temperature");
    QTest::addColumn<int>("expected");
    const int least = std::numeric_limits<int>::min();
    const int most = std::numeric_limits<int>::max();
    QTest::newRow("equal, below") << 50 << 50 << 49.0 << 2000;
    QTest::newRow("equal, at") << 50 << 50 << 50.0 << 2000;
    QTest::newRow("equal, above") << 50 << 50 << 51.0 << 6000;
    QTest::newRow("swapped, below both") << 70 << 40 << 30.0 << 2000;
    QTest::newRow("swapped, between") << 70 << 40 << 55.0 << 2000;
    QTest::newRow("swapped, above both") << 70 << 40 << 71.0 << 6000;
    QTest::newRow("widest") << least << most << 55.0 << 2000;
    QTest::newRow("widest, swapped") << most << least << 55.0 << 2000;
    QTest::newRow("lowest") << least << least << 55.0 << 6000;
    QTest::newRow("highest") << most << most << 2e9 << 2000;
    QTest::newRow("one degree") << 54 << 55 << 55.0 << 2500;
}

void TestSensorControl::temperaturesInTheWrongOrderOrEqualGiveMinimumOrMaximum()
{
    QFETCH(int, low);
    QFETCH(int, high);
    QFETCH(double, temperature);
    ControlledFan fan;
    fan.mode = FanControlMode::sensor(QStringLiteral("TC0P"), low, high);

    QTEST(fan.at(temperature), "expected");
}

void TestSensorControl::atMostThreeClockReadsPerCall()
{
    ControlledFan fan;
    static_cast<void>(fan.clock.takeReadCount());
    for (const int temperature : { 0, 39, 55, 55, 56, 54, 71, 55 }) {
        fan.after(11 * second, temperature);
        const int reads = fan.clock.takeReadCount();
        QVERIFY2(reads <= 3, qPrintable(QString::number(reads)));
    }
}

void TestSensorControl::aNameFromHardwareCantForgeALogLine()
{
    LogCapture log;
    ManualClock clock;
    SensorBasedControl_Simple control(QStringLiteral("a\nb"), clock);

    const int rpm = control.update({ 0, 2000, 6000 },
                                   FanControlMode::sensor(QStringLiteral("T"), 40, 70), 39);

    QCOMPARE(rpm, 2000);
    const QStringList lines = log.take();
    QCOMPARE(lines.size(), 1);
    QVERIFY(!lines.first().contains(QLatin1Char('\n')));
}

BRISORA_TEST_MAIN(TestSensorControl, QCoreApplication)

#include "test_sensorcontrol.moc"
