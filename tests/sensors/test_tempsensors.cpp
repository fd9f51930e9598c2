#include <cmath>
#include <limits>

#include <QCoreApplication>

#include "app/sensors/tempsensorabstract.h"
#include "app/sensors/tempsensoraverage.h"
#include "tests/sensors/scriptedsensor.h"
#include "tests/support/testenvironment.h"

Q_DECLARE_METATYPE(SensorType)

namespace {

TemperatureSensorAverage average(std::vector<TemperatureSensorAbstract*> sensors)
{
    return TemperatureSensorAverage(QStringLiteral("cpucoreavg"),
                                    QStringLiteral("CPU Core (average)"), QString(),
                                    std::move(sensors));
}

} // namespace

class TestTempSensors : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void newSensorHasNoReading();
    void constructorKeepsWhatItIsGiven();
    void everySensorGetsTheNextId();
    void keyIsComparedExactly();
    void successfulReadIsStoredAndCounted();
    void failedReadLeavesTheLastValue();
    void valueThatIsNoNumberIsAFailedRead_data();
    void valueThatIsNoNumberIsAFailedRead();
    void readWithoutValueCanBeCounted();
    void offeredTemperaturesFollowTheValue_data();
    void offeredTemperaturesFollowTheValue();
    void averageTakesTypeOfTheFirst();
    void averageReadsItsSensorsItself();
    void averageTakesTheLastValueOfAFailedRead();
    void averageOfNothingStaysUnread();
    void averageOfOneIsThatOne();
    void averageCountsOnceAllHaveBeenRead();
    void averageWithAStoppedSensorStopsCounting();
};

void TestTempSensors::newSensorHasNoReading()
{
    const ScriptedSensor sensor;
    QCOMPARE(sensor.value(), 0.0);
    QCOMPARE(sensor.successfulReads(), 0U);
    QVERIFY(!sensor.isHidden());
}

void TestTempSensors::constructorKeepsWhatItIsGiven()
{
    const ScriptedSensor sensor(SensorType::psu);
    QCOMPARE(sensor.key(), QStringLiteral("TEST"));
    QCOMPARE(sensor.displayName(), QStringLiteral("Test"));
    QCOMPARE(sensor.group(), QStringLiteral("group"));
    QCOMPARE(sensor.type(), SensorType::psu);
}

void TestTempSensors::everySensorGetsTheNextId()
{
    std::uint32_t first = 0;
    {
        const ScriptedSensor sensor;
        first = sensor.id();
    }
    const ScriptedSensor second;
    const ScriptedSensor third;
    QCOMPARE(second.id(), first + 1);
    QCOMPARE(third.id(), first + 2);
}

void TestTempSensors::keyIsComparedExactly()
{
    const ScriptedSensor sensor;
    QVERIFY(sensor.isKeyEqual(QStringLiteral("TEST")));
    QVERIFY(!sensor.isKeyEqual(QStringLiteral("TESt")));
    QVERIFY(!sensor.isKeyEqual(QStringLiteral("TEST ")));
}

void TestTempSensors::successfulReadIsStoredAndCounted()
{
    ScriptedSensor sensor;
    sensor.reading = 45.5;
    sensor.UpdateValue();
    QCOMPARE(sensor.value(), 45.5);
    QCOMPARE(sensor.successfulReads(), 1U);
}

void TestTempSensors::failedReadLeavesTheLastValue()
{
    ScriptedSensor sensor;
    sensor.reading = 45.5;
    sensor.UpdateValue();
    sensor.reading.reset();
    sensor.UpdateValue();
    QCOMPARE(sensor.value(), 45.5);
    QCOMPARE(sensor.successfulReads(), 1U);
}

void TestTempSensors::valueThatIsNoNumberIsAFailedRead_data()
{
    QTest::addColumn<double>("reading");
    QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("infinity") << std::numeric_limits<double>::infinity();
    QTest::newRow("minus infinity") << -std::numeric_limits<double>::infinity();
}

void TestTempSensors::valueThatIsNoNumberIsAFailedRead()
{
    QFETCH(double, reading);
    ScriptedSensor sensor;
    sensor.reading = 45.5;
    sensor.UpdateValue();

    sensor.reading = reading;
    sensor.UpdateValue();
    sensor.setValue(reading);

    QCOMPARE(sensor.value(), 45.5);
    QCOMPARE(sensor.successfulReads(), 1U);
}

void TestTempSensors::readWithoutValueCanBeCounted()
{
    ScriptedSensor sensor;
    sensor.countSuccessfulRead();
    QCOMPARE(sensor.value(), 0.0);
    QCOMPARE(sensor.successfulReads(), 1U);
}

void TestTempSensors::offeredTemperaturesFollowTheValue_data()
{
    QTest::addColumn<SensorType>("type");
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("rounded");
    QTest::addColumn<int>("min");
    QTest::addColumn<int>("max");

    QTest::newRow("plain") << SensorType::other << 45.0 << 45 << 40 << 50;
    QTest::newRow("rounds down") << SensorType::other << 45.49 << 45 << 40 << 50;
    QTest::newRow("rounds up") << SensorType::other << 45.5 << 46 << 41 << 51;
    QTest::newRow("half below zero") << SensorType::other << -2.5 << -3 << 20 << 2;
    QTest::newRow("GPU at 98.4") << SensorType::gpu << 98.4 << 98 << 93 << 100;
    QTest::newRow("95 reaches the top") << SensorType::gpu << 95.0 << 95 << 90 << 100;
    QTest::newRow("94 stays below the top") << SensorType::gpu << 94.0 << 94 << 89 << 99;
    QTest::newRow("21") << SensorType::other << 21.0 << 21 << 20 << 26;
    QTest::newRow("25 meets the bottom") << SensorType::other << 25.0 << 25 << 20 << 30;
    QTest::newRow("26 stays above the bottom") << SensorType::other << 26.0 << 26 << 21 << 31;
    QTest::newRow("unread") << SensorType::other << 0.0 << 0 << 20 << 5;
    QTest::newRow("processor") << SensorType::cpu << 45.0 << 45 << 40 << 90;
    QTest::newRow("hot processor") << SensorType::cpu << 97.0 << 97 << 92 << 90;
    QTest::newRow("senseless") << SensorType::other << 1e300 << 1000000 << 999995 << 100;
}

void TestTempSensors::offeredTemperaturesFollowTheValue()
{
    QFETCH(SensorType, type);
    QFETCH(double, value);
    ScriptedSensor sensor(type);
    sensor.setValue(value);

    QTEST(sensor.roundedValue(), "rounded");
    QTEST(sensor.getMinTemperature(), "min");
    QTEST(sensor.getMaxTemperature(), "max");
}

void TestTempSensors::averageTakesTypeOfTheFirst()
{
    ScriptedSensor first(SensorType::psu);
    ScriptedSensor second(SensorType::cpu);
    const TemperatureSensorAverage sensor = average({ &first, &second });
    QCOMPARE(sensor.type(), SensorType::psu);
    QVERIFY(sensor.isKeyEqual(QStringLiteral("cpucoreavg")));
    QVERIFY(!sensor.isKeyEqual(QStringLiteral("CPUCOREAVG")));
}

void TestTempSensors::averageReadsItsSensorsItself()
{
    ScriptedSensor first;
    ScriptedSensor second;
    first.reading = 40.0;
    second.reading = 51.0;
    TemperatureSensorAverage sensor = average({ &first, &second });

    sensor.UpdateValue();

    QCOMPARE(sensor.value(), 45.5);
    QCOMPARE(first.updates, 1);
    QCOMPARE(second.updates, 1);
    QCOMPARE(sensor.successfulReads(), 1U);
}

void TestTempSensors::averageTakesTheLastValueOfAFailedRead()
{
    ScriptedSensor first;
    ScriptedSensor second;
    first.reading = 40.0;
    second.reading = 50.0;
    TemperatureSensorAverage sensor = average({ &first, &second });
    sensor.UpdateValue();

    second.reading.reset();
    first.reading = 60.0;
    sensor.UpdateValue();

    QCOMPARE(sensor.value(), 55.0);
}

void TestTempSensors::averageOfNothingStaysUnread()
{
    TemperatureSensorAverage sensor = average({});
    sensor.UpdateValue();
    QCOMPARE(sensor.type(), SensorType::other);
    QCOMPARE(sensor.value(), 0.0);
    QCOMPARE(sensor.successfulReads(), 0U);
}

void TestTempSensors::averageOfOneIsThatOne()
{
    ScriptedSensor only;
    only.reading = 47.25;
    TemperatureSensorAverage sensor = average({ &only });
    sensor.UpdateValue();
    QCOMPARE(sensor.value(), 47.25);
}

void TestTempSensors::averageCountsOnceAllHaveBeenRead()
{
    ScriptedSensor first;
    ScriptedSensor second;
    TemperatureSensorAverage sensor = average({ &first, &second });

    first.reading = 40.0;
    sensor.UpdateValue();
    QCOMPARE(sensor.successfulReads(), 0U);

    // They fail in turns: each pass has a stale one, yet none has stopped.
    first.reading.reset();
    second.reading = 50.0;
    sensor.UpdateValue();
    QCOMPARE(sensor.successfulReads(), 1U);
}

void TestTempSensors::averageWithAStoppedSensorStopsCounting()
{
    ScriptedSensor first;
    ScriptedSensor second;
    first.reading = 40.0;
    second.reading = 50.0;
    TemperatureSensorAverage sensor = average({ &first, &second });
    sensor.UpdateValue();
    QCOMPARE(sensor.successfulReads(), 1U);

    second.reading.reset();
    for (int pass = 0; pass < 5; ++pass) {
        sensor.UpdateValue();
    }

    QCOMPARE(sensor.successfulReads(), 1U);
}

BRISORA_TEST_MAIN(TestTempSensors, QCoreApplication)
#include "test_tempsensors.moc"
