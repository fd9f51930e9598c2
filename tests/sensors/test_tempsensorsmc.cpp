#include <algorithm>

#include <QCoreApplication>

#include "app/sensors/sensordatabase.h"
#include "app/sensors/tempsensorsmc.h"
#include "tests/sensors/sensormachine.h"
#include "tests/support/logcapture.h"
#include "tests/support/testenvironment.h"

namespace {

using Sensors = std::vector<std::unique_ptr<TemperatureSensorAbstract>>;

QStringList keysOf(const Sensors& sensors)
{
    QStringList result;
    for (const auto& sensor : sensors) {
        result.append(sensor->key());
    }
    return result;
}

} // namespace

class TestTempSensorSmc : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void knownReadableKeysGetSensorsInTheControllersOrder();
    void unknownKeyGetsNoSensor();
    void unreadableKeyIsSkippedWithALine();
    void keyOutOfRangeIsSkippedUntilTheNextLoad();
    void keyOfTheMachineNamesTheSensor();
    void oneSensorResultsFromTwins();
    void spellingThatIsSkippedIsNotRead();
    void noKeysGiveNoSensors();
    void emptyDatabaseGivesNoSensors();
    void firstValueIsNotStored();
    void updateStoresAndCounts();
    void failedUpdateLeavesTheLastValue();
    void fourthLettersCaseIsFree();
};

void TestTempSensorSmc::knownReadableKeysGetSensorsInTheControllersOrder()
{
    SensorMachine machine;
    machine.controller->setTemperature("TA0P", 25.0);
    machine.controller->setTemperature("TC0P", 50.0);
    machine.controller->setTemperature("TH0A", 40.0);
    SensorDatabase database(machine.info,
                            machine.databaseWith("<smc name=\"TH0A\" type=\"ssd\">SSD</smc>"
                                                 "<smc name=\"TC0P\" type=\"cpu\" group=\"G\">"
                                                 "CPU Proximity</smc>"
                                                 "<smc name=\"TA0P\">Ambient</smc>"));

    const Sensors sensors
        = TemperatureSensorSMC::loadAvailableSensors(machine.service.get(), database);

    QCOMPARE(
        keysOf(sensors),
        QStringList({ QStringLiteral("TA0P"), QStringLiteral("TC0P"), QStringLiteral("TH0A") }));
    QCOMPARE(sensors.at(1)->displayName(), QStringLiteral("CPU Proximity"));
    QCOMPARE(sensors.at(1)->type(), SensorType::cpu);
    QCOMPARE(sensors.at(1)->group(), QString());
    QVERIFY(!sensors.at(1)->isHidden());
    QCOMPARE(sensors.at(2)->type(), SensorType::ssd);
}

void TestTempSensorSmc::unknownKeyGetsNoSensor()
{
    SensorMachine machine;
    machine.controller->setTemperature("TA0P", 25.0);
    machine.controller->setTemperature("TXYZ", 25.0);
    SensorDatabase database(machine.info, machine.databaseWith("<smc name=\"TA0P\">A</smc>"));
    const LogCapture log;

    const Sensors sensors
        = TemperatureSensorSMC::loadAvailableSensors(machine.service.get(), database);

    QCOMPARE(keysOf(sensors), QStringList { QStringLiteral("TA0P") });
    QVERIFY(log.lines().filter(QStringLiteral("TXYZ")).isEmpty());
}

void TestTempSensorSmc::unreadableKeyIsSkippedWithALine()
{
    SensorMachine machine;
    machine.controller->setTemperature("TA0P", 25.0);
    machine.controller->setTemperature("TC0P", 50.0);
    SensorDatabase database(
        machine.info, machine.databaseWith("<smc name=\"TA0P\">A</smc><smc name=\"TC0P\">B</smc>"));
    std::vector<std::string> keys;
    QVERIFY(machine.service->getTemperatureKeys(keys));
    machine.controller->setFailing("TA0P", true);
    const LogCapture log;

    const Sensors sensors
        = TemperatureSensorSMC::loadAvailableSensors(machine.service.get(), database);

    QCOMPARE(keysOf(sensors), QStringList { QStringLiteral("TC0P") });
    QCOMPARE(log.count(QStringLiteral("info: FilterSupportedTempSensors - skipping sensor TA0P")),
             1);
}

void TestTempSensorSmc::keyOutOfRangeIsSkippedUntilTheNextLoad()
{
    SensorMachine machine;
    machine.controller->setTemperature("TA0P", 127.0);
    SensorDatabase database(machine.info, machine.databaseWith("<smc name=\"TA0P\">A</smc>"));
    QVERIFY(TemperatureSensorSMC::loadAvailableSensors(machine.service.get(), database).empty());

    machine.controller->setTemperature("TA0P", 126.5);

    QCOMPARE(keysOf(TemperatureSensorSMC::loadAvailableSensors(machine.service.get(), database)),
             QStringList { QStringLiteral("TA0P") });
}

void TestTempSensorSmc::keyOfTheMachineNamesTheSensor()
{
    SensorMachine machine;
    machine.controller->setTemperature("TC0p", 50.0);
    SensorDatabase database(machine.info, machine.databaseWith("<smc name=\"TC0P\">CPU</smc>"));

    const Sensors sensors
        = TemperatureSensorSMC::loadAvailableSensors(machine.service.get(), database);

    QCOMPARE(keysOf(sensors), QStringList { QStringLiteral("TC0p") });
    QCOMPARE(sensors.front()->displayName(), QStringLiteral("CPU"));
}

void TestTempSensorSmc::oneSensorResultsFromTwins()
{
    SensorMachine machine;
    for (const char* key : { "TC0P", "TC0p", "TG0D", "TG0d" }) {
        machine.controller->setTemperature(key, 50.0);
    }
    SensorDatabase database(
        machine.info,
        machine.databaseWith("<smc name=\"TC0P\">CPU</smc><smc name=\"TG0D\">GPU</smc>"));

    QCOMPARE(keysOf(TemperatureSensorSMC::loadAvailableSensors(machine.service.get(), database)),
             QStringList({ QStringLiteral("TC0p"), QStringLiteral("TG0D") }));
}

void TestTempSensorSmc::spellingThatIsSkippedIsNotRead()
{
    SensorMachine machine;
    machine.controller->setTemperature("TC0P", 50.0);
    machine.controller->setTemperature("TC0p", 50.0);
    SensorDatabase database(machine.info, machine.databaseWith("<smc name=\"TC0P\">CPU</smc>"));
    machine.controller->clearRecord();

    const Sensors sensors
        = TemperatureSensorSMC::loadAvailableSensors(machine.service.get(), database);

    const auto reads = machine.controller->reads();
    QCOMPARE(std::count(reads.begin(), reads.end(), "TC0P"), std::ptrdiff_t(0));
    QCOMPARE(std::count(reads.begin(), reads.end(), "TC0p"), std::ptrdiff_t(1));
}

void TestTempSensorSmc::noKeysGiveNoSensors()
{
    SensorMachine machine;
    SensorDatabase database(machine.info, machine.databaseWith("<smc name=\"TA0P\">A</smc>"));
    QVERIFY(TemperatureSensorSMC::loadAvailableSensors(machine.service.get(), database).empty());
}

void TestTempSensorSmc::emptyDatabaseGivesNoSensors()
{
    SensorMachine machine;
    machine.controller->setTemperature("TA0P", 25.0);
    SensorDatabase database(machine.info, QStringLiteral(":/missing"));
    QVERIFY(TemperatureSensorSMC::loadAvailableSensors(machine.service.get(), database).empty());
}

void TestTempSensorSmc::firstValueIsNotStored()
{
    SensorMachine machine;
    machine.controller->setTemperature("TA0P", 25.0);
    SensorDatabase database(machine.info, machine.databaseWith("<smc name=\"TA0P\">A</smc>"));

    const Sensors sensors
        = TemperatureSensorSMC::loadAvailableSensors(machine.service.get(), database);

    QCOMPARE(sensors.front()->value(), 0.0);
    QCOMPARE(sensors.front()->successfulReads(), 0U);
}

void TestTempSensorSmc::updateStoresAndCounts()
{
    SensorMachine machine;
    machine.controller->setTemperature("TA0P", 25.0);
    SensorDatabase database(machine.info, machine.databaseWith("<smc name=\"TA0P\">A</smc>"));
    const Sensors sensors
        = TemperatureSensorSMC::loadAvailableSensors(machine.service.get(), database);

    machine.controller->setTemperature("TA0P", 26.5);
    sensors.front()->UpdateValue();

    QCOMPARE(sensors.front()->value(), 26.5);
    QCOMPARE(sensors.front()->successfulReads(), 1U);
}

void TestTempSensorSmc::failedUpdateLeavesTheLastValue()
{
    SensorMachine machine;
    machine.controller->setTemperature("TA0P", 25.0);
    SensorDatabase database(machine.info, machine.databaseWith("<smc name=\"TA0P\">A</smc>"));
    const Sensors sensors
        = TemperatureSensorSMC::loadAvailableSensors(machine.service.get(), database);
    sensors.front()->UpdateValue();

    machine.controller->setTemperature("TA0P", 127.0);
    sensors.front()->UpdateValue();
    machine.controller->setTemperature("TA0P", 0.0);
    sensors.front()->UpdateValue();
    machine.controller->setFailing("TA0P", true);
    sensors.front()->UpdateValue();

    QCOMPARE(sensors.front()->value(), 25.0);
    QCOMPARE(sensors.front()->successfulReads(), 1U);
}

void TestTempSensorSmc::fourthLettersCaseIsFree()
{
    const TemperatureSensorSMC sensor(QStringLiteral("TC0P"), QString(), SensorType::cpu, nullptr);
    QVERIFY(sensor.isKeyEqual(QStringLiteral("TC0P")));
    QVERIFY(sensor.isKeyEqual(QStringLiteral("TC0p")));
    QVERIFY(!sensor.isKeyEqual(QStringLiteral("Tc0P")));
}

BRISORA_TEST_MAIN(TestTempSensorSmc, QCoreApplication)
#include "test_tempsensorsmc.moc"
