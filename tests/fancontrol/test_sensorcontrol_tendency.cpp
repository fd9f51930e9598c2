#include <QCoreApplication>
#include <QTest>

#include "tests/fancontrol/sensorcontrolfan.h"
#include "tests/support/logcapture.h"
#include "tests/support/testenvironment.h"

class TestSensorControlTendency : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aFallSoonAfterAnIncreaseIsIgnoredAndComesUpAgain();
    void aFallDuringAnIncreaseOnlyStopsIt();
    void aFallAtRestStartsADecrease();
    void aRiseAtRestCountsAfterTenSeconds_data();
    void aRiseAtRestCountsAfterTenSeconds();
    void aRiseDuringADecreaseCountsAfterTenSeconds_data();
    void aRiseDuringADecreaseCountsAfterTenSeconds();
    void aFurtherFallDuringADecreaseRestartsItsTimer();
    void anIgnoredChangeLeavesTheLineAndEndsTheHalfSpeed();
    void risesDuringAnIncreaseEndHalfSpeedThenDoubleIt();
    void farBelowItsBandAFanCatchesUp_data();
    void farBelowItsBandAFanCatchesUp();
    void farAboveItsBandAFanCatchesDown_data();
    void farAboveItsBandAFanCatchesDown();
    void aboveTheUpperTemperatureTheMaximumComesAtOnce();
    void fallingBackToTheUpperTemperatureComesDownFromTheMaximum();
    void aDecreaseBelowItsBandIsLiftedToTheFootOfIt();
};

void TestSensorControlTendency::aFallSoonAfterAnIncreaseIsIgnoredAndComesUpAgain()
{
    LogCapture log;
    ControlledFan fan;
    fan.at(55);
    log.clear();

    const QStringList ignored { line("Main: Temperature DECREASED to 54"),
                                line("Main: Ignoring temperature change"),
                                line("Main: Tendency is set to TendencyIncrease") };
    // Exactly 10 seconds are not more than 10.
    for (const int milliseconds : { 1500, 8500, 999 }) {
        fan.after(milliseconds, 54);
        QCOMPARE(fan.control.tendency(), TendencyIncrease);
        QCOMPARE(log.take().mid(0, 3), ignored);
    }
    fan.after(1, 54);
    QCOMPARE(fan.control.tendency(), TendencyDoNothing);
    QCOMPARE(log.take(),
             QStringList({ line("Main: Temperature DECREASED to 54"),
                           line("Main: Tendency is set to TendencyDoNothing") }));
    fan.after(1, 54);
    QCOMPARE(log.take(), QStringList());
}

void TestSensorControlTendency::aFallDuringAnIncreaseOnlyStopsIt()
{
    ControlledFan fan;
    QCOMPARE(fan.at(55), 3863);

    QCOMPARE(fan.after(11 * second, 50), -1);

    QCOMPARE(fan.control.tendency(), TendencyDoNothing);
    // Standing still, the speed does not go towards the line by itself.
    QCOMPARE(fan.after(tick, 50), -1);
}

void TestSensorControlTendency::aFallAtRestStartsADecrease()
{
    LogCapture log;
    ControlledFan fan;
    fan.speeds.current = 3900;
    QCOMPARE(fan.at(55), 3900);
    log.clear();

    // Band of 54: 3729 to 3862.
    QCOMPARE(fan.after(tick, 54), 3898);

    QCOMPARE(fan.control.tendency(), TendencyDecrease);
    QCOMPARE(log.take(),
             QStringList({ line("Main: Temperature DECREASED to 54"),
                           line("Main: Tendency is set to TendencyDecrease"),
                           line("Main: Setting fan speed to 3898") }));
}

void TestSensorControlTendency::aRiseAtRestCountsAfterTenSeconds_data()
{
    QTest::addColumn<int>("milliseconds");
    QTest::addColumn<int>("tendency");
    QTest::addColumn<int>("expected");
    QTest::newRow("at once") << 1500 << int(TendencyDoNothing) << -1;
    QTest::newRow("10 seconds") << 10999 << int(TendencyDoNothing) << -1;
    QTest::newRow("11 seconds") << 11000 << int(TendencyIncrease) << 3902;
}

void TestSensorControlTendency::aRiseAtRestCountsAfterTenSeconds()
{
    QFETCH(int, milliseconds);
    LogCapture log;
    ControlledFan fan;
    fan.speeds.current = 3900;
    fan.at(55);
    log.clear();

    QTEST(fan.after(milliseconds, 56), "expected");

    QTEST(int(fan.control.tendency()), "tendency");
    const QStringList lines = log.take();
    QCOMPARE(lines.first(), line("Main: Temperature INCREASED to 56"));
    QCOMPARE(lines.contains(line("Main: Ignoring temperature change")), milliseconds < 11000);
}

void TestSensorControlTendency::aRiseDuringADecreaseCountsAfterTenSeconds_data()
{
    QTest::addColumn<int>("milliseconds");
    QTest::addColumn<int>("tendency");
    QTest::addColumn<int>("expected");
    // Ignored, the decrease goes on towards the band of 50: 3197 to 3330, with
    // the catch-up of 44.
    QTest::newRow("10 seconds") << 10999 << int(TendencyDecrease) << 3808;
    // Accepted, the band of 51 is 3330 to 3463: above its top the speed is cut.
    QTest::newRow("11 seconds") << 11000 << int(TendencyDoNothing) << 3463;
}

void TestSensorControlTendency::aRiseDuringADecreaseCountsAfterTenSeconds()
{
    QFETCH(int, milliseconds);
    ControlledFan fan;
    fan.speeds.current = 3900;
    fan.at(55);
    QCOMPARE(fan.after(tick, 50), 3854);
    QCOMPARE(fan.control.tendency(), TendencyDecrease);

    QTEST(fan.after(milliseconds, 51), "expected");

    QTEST(int(fan.control.tendency()), "tendency");
}

void TestSensorControlTendency::aFurtherFallDuringADecreaseRestartsItsTimer()
{
    ControlledFan fan;
    fan.speeds.current = 3900;
    fan.at(55);
    fan.after(tick, 50);
    fan.after(8 * second, 49);
    QCOMPARE(fan.control.tendency(), TendencyDecrease);

    // 16 seconds after the first fall, 8 after the second.
    fan.after(8 * second, 50);

    QCOMPARE(fan.control.tendency(), TendencyDecrease);
}

void TestSensorControlTendency::anIgnoredChangeLeavesTheLineAndEndsTheHalfSpeed()
{
    ControlledFan fan;
    QCOMPARE(fan.at(55), 3863);

    // The band of 55 still holds, or 46 degrees would cut the speed to 2798. The
    // half speed is gone all the same.
    QCOMPARE(fan.after(tick, 46), 3865);
    QCOMPARE(fan.after(tick, 55), 3867);
}

void TestSensorControlTendency::risesDuringAnIncreaseEndHalfSpeedThenDoubleIt()
{
    LogCapture log;
    ControlledFan fan;
    QCOMPARE(fan.at(55), 3863);
    log.clear();

    QCOMPARE(fan.after(tick, 56), 3865);
    QCOMPARE(
        log.take(),
        QStringList({ line("Main: Temperature INCREASED to 56"), line("Main: HALF INCREASE OFF"),
                      line("Main: Tendency is set to TendencyIncrease"),
                      line("Main: Setting fan speed to 3865") }));
    QCOMPARE(fan.after(tick, 57), 3869);
    QVERIFY(log.take().contains(line("Main: DOUBLE INCREASE ON")));
    QCOMPARE(fan.after(tick, 57), 3873);
    QCOMPARE(log.take(), QStringList(line("Main: Setting fan speed to 3873")));
    // A third rise keeps the double speed; the foot of 58, 4261, is more than two
    // steps away by now.
    QCOMPARE(fan.after(tick, 58), 3873 + 44 + 4);
    QVERIFY(log.take().contains(line("Main: DOUBLE INCREASE ON")));
}

void TestSensorControlTendency::farBelowItsBandAFanCatchesUp_data()
{
    QTest::addColumn<int>("current");
    QTest::addColumn<int>("expected");
    // The foot of the band of 44 degrees is 2399, two steps below it 2133. A
    // resting fan in the band of 42 (2133 to 2266) or of 41 (2000 to 2133).
    QTest::newRow("two steps and one below") << 2132 << 2132 + 44 + 2;
    QTest::newRow("two steps below") << 2133 << 2133 + 2;
    QTest::newRow("in two steps") << 2134 << 2134 + 2;
}

void TestSensorControlTendency::farBelowItsBandAFanCatchesUp()
{
    QFETCH(int, current);
    LogCapture log;
    ControlledFan fan;
    // Inside a band the fan rests at once; the top of one it has to climb.
    fan.speeds.current = static_cast<std::uint16_t>(current);
    const int start = current > 2133 ? 42 : 41;
    int reached = fan.at(start);
    while (reached < current) {
        reached = fan.after(tick, start);
    }
    QCOMPARE(reached, current);
    QCOMPARE(fan.control.tendency(), TendencyDoNothing);
    log.clear();

    QTEST(fan.after(11 * second, 44), "expected");

    QCOMPARE(log.contains(line("Main: Adding extra 44 from current rpm 2176")), current == 2132);
}

void TestSensorControlTendency::farAboveItsBandAFanCatchesDown_data()
{
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("rpm");
    QTest::addColumn<int>("expected");
    // The top of the band of 53 degrees is 3729, one step above it 3862.
    QTest::newRow("one step and one above") << 55 << 3863 << 3863 - 44 - 2;
    QTest::newRow("one step above") << 54 << 3862 << 3862 - 2;
}

void TestSensorControlTendency::farAboveItsBandAFanCatchesDown()
{
    QFETCH(int, start);
    QFETCH(int, rpm);
    LogCapture log;
    ControlledFan fan;
    int reached = fan.at(start);
    while (reached < rpm) {
        reached = fan.after(tick, start);
    }
    QCOMPARE(reached, rpm);
    if (fan.control.tendency() == TendencyIncrease) {
        QCOMPARE(fan.after(11 * second, start - 1), -1); // now at rest
    }
    log.clear();

    QTEST(fan.after(tick, 53), "expected");

    QCOMPARE(log.take().contains(line("Main: Subtracting extra 44 from current rpm 3819")),
             rpm == 3863);
}

void TestSensorControlTendency::aboveTheUpperTemperatureTheMaximumComesAtOnce()
{
    ControlledFan fan;
    fan.speeds.current = 3900;
    fan.at(55);

    QCOMPARE(fan.after(tick, 71), 6000);
    // The rise came too soon after the rest to count.
    QCOMPARE(fan.control.tendency(), TendencyDoNothing);

    QCOMPARE(fan.after(11 * second, 71), -1);
    QCOMPARE(fan.control.tendency(), TendencyIncrease);
    QCOMPARE(fan.after(tick, 90), -1);
}

void TestSensorControlTendency::fallingBackToTheUpperTemperatureComesDownFromTheMaximum()
{
    LogCapture log;
    ControlledFan fan;
    fan.mode = FanControlMode::sensor(QStringLiteral("TC0P"), 40, 75); // 114 a degree
    QCOMPARE(fan.at(76), 6000);
    QCOMPARE(fan.after(11 * second, 75), -1); // ends the increase

    // The band of 74 is 5762 to 5876, of 73 5648 to 5762: from 6000 more than one
    // step above each of them.
    QCOMPARE(fan.after(tick, 74), 6000 - 38 - 2);
    QCOMPARE(fan.control.tendency(), TendencyDecrease);
    // 84 above the top: no catch-up.
    QCOMPARE(fan.after(tick, 74), 5958);
    QCOMPARE(fan.after(tick, 73), 5958 - 38 - 2);
    log.clear();

    // At rest again, and at the upper temperature itself.
    fan.control.reset();
    QCOMPARE(fan.after(tick, 76), 6000);
    QCOMPARE(fan.control.tendency(), TendencyIncrease);
    fan.after(11 * second, 77);
    fan.after(11 * second, 76);
    QCOMPARE(fan.control.tendency(), TendencyDoNothing);
    // The band of 75 is 5876 to 5990, 10 below the maximum.
    QCOMPARE(fan.after(tick, 75), 5998);
    QCOMPARE(fan.control.tendency(), TendencyDecrease);
    QCOMPARE(fan.after(tick, 75), 5996);
}

void TestSensorControlTendency::aDecreaseBelowItsBandIsLiftedToTheFootOfIt()
{
    ControlledFan fan;
    QCOMPARE(fan.at(41), 2001);
    fan.after(tick, 65); // a long way up
    fan.after(11 * second, 64);
    QCOMPARE(fan.control.tendency(), TendencyDoNothing);

    // Required: the falling temperature lifts the fan.
    QCOMPARE(fan.after(tick, 63), 2000 + (63 - 41) * 133);

    QCOMPARE(fan.control.tendency(), TendencyDoNothing);
}

BRISORA_TEST_MAIN(TestSensorControlTendency, QCoreApplication)

#include "test_sensorcontrol_tendency.moc"
