#include <QCoreApplication>

#include "app/sensors/tempsensorabstract.h"
#include "app/sensors/tempsensorprovider.h"
#include "app/smc/options.h"
#include "resources/resources.h"
#include "tests/sensors/sensormachine.h"
#include "tests/support/logcapture.h"
#include "tests/support/testenvironment.h"

namespace {

QStringList namesOf(const std::vector<TemperatureSensorAbstract*>& sensors)
{
    QStringList result;
    for (const TemperatureSensorAbstract* sensor : sensors) {
        result.append(sensor->displayName());
    }
    return result;
}

TempSensorDisk::List noDrives(bool, bool) { return {}; }

QString text(const char* value) { return QString::fromLatin1(value); }

} // namespace

class TestTempSensorProvider : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { initResources(); }

    void loadCountsTheAverage();
    void nothingIsLoadedAtFirst();
    void controllerWithoutKeysGivesNoSensors();
    void sensorsAreSortedByNameWithDrivesLast();
    void namesAreSortedWithCase();
    void averageComputesTheCores();
    void averageOfOneCore();
    void noAverageWithoutCores();
    void averageIsReloadedWithTheOthers();
    void reloadGivesNewIdsAndTheSameKeys();
    void hiddenSensorIsLeftOut();
    void sensorIsFoundByEitherSpelling();
    void averageIsFoundExactly();
    void nameOfASensorIsFound();
    void unknownKeyHasNoNameAndIsLogged();
    void driveSensorStaysVisibleWithoutDrives();
    void secondDiscreteDiodeStaysASensorOfItsOwn();
    void reportTellsEveryKey();
    void reportMarksHiddenSensors();
    void reportShowsBothReadingsOfCorrectedKeys();
    void reportOfAMachineWithoutKeysHasEmptyBlocks();
    void namesInReportsAreTakenAsTheyAre();
};

void TestTempSensorProvider::loadCountsTheAverage()
{
    SensorMachine machine;
    machine.controller->setTemperature("TA0P", 25.0);
    machine.controller->setTemperature("TC1C", 50.0);
    machine.controller->setTemperature("TC2C", 60.0);
    TemperatureSensorProvider provider(machine.info, machine.settings, noDrives);
    const LogCapture log;

    provider.load(machine.service.get());

    QCOMPARE(provider.getSensors().size(), std::size_t(4));
    QCOMPARE(log.lines().filter(text("Using")),
             QStringList({ text("info: Using TC1C sensor for CPU Core average"),
                           text("info: Using TC2C sensor for CPU Core average") }));
    QVERIFY(log.contains(text("info: InitialLoadThread: number of supported SMC sensors: 4")));
}

void TestTempSensorProvider::nothingIsLoadedAtFirst()
{
    SensorMachine machine;
    const TemperatureSensorProvider provider(machine.info, machine.settings, noDrives);
    QVERIFY(provider.getSensors().empty());
    QVERIFY(provider.getSensorByKey(text("TA0P")) == nullptr);
}

void TestTempSensorProvider::controllerWithoutKeysGivesNoSensors()
{
    SensorMachine machine;
    TemperatureSensorProvider provider(machine.info, machine.settings, noDrives);
    const LogCapture log;

    provider.load(machine.service.get());

    QVERIFY(provider.getSensors().empty());
    QVERIFY(log.contains(text("info: InitialLoadThread: number of supported SMC sensors: 0")));
}

void TestTempSensorProvider::sensorsAreSortedByNameWithDrivesLast()
{
    SensorMachine machine;
    for (const char* key : { "TH0A", "TA0P", "TC0P", "TW0P", "TB0T", "TPCD" }) {
        machine.controller->setTemperature(key, 40.0);
    }
    TemperatureSensorProvider provider(machine.info, machine.settings, noDrives);

    provider.load(machine.service.get());

    QCOMPARE(namesOf(provider.getSensors()),
             QStringList({ text("Airport Proximity"), text("Ambient"), text("Battery Max"),
                           text("CPU Proximity"), text("Platform Controller Hub Die"),
                           text("Apple SSD") }));
}

void TestTempSensorProvider::namesAreSortedWithCase()
{
    // "GPU PECI" lies before "GPU Proximity" only when case counts.
    SensorMachine machine;
    for (const char* key : { "TG0P", "TCGC" }) {
        machine.controller->setTemperature(key, 40.0);
    }
    machine.controller->setTemperature("TG0D", 40.0);
    TemperatureSensorProvider provider(machine.info, machine.settings, noDrives);

    provider.load(machine.service.get());

    QCOMPARE(namesOf(provider.getSensors()),
             QStringList({ text("GPU Diode"), text("GPU PECI"), text("GPU Proximity") }));
}

void TestTempSensorProvider::averageComputesTheCores()
{
    SensorMachine machine;
    machine.controller->setTemperature("TC1C", 50.0);
    machine.controller->setTemperature("TC2C", 61.0);
    machine.controller->setTemperature("TC0P", 90.0); // no core
    TemperatureSensorProvider provider(machine.info, machine.settings, noDrives);
    provider.load(machine.service.get());
    TemperatureSensorAbstract* average = provider.getSensorByKey(text("cpucoreavg"));
    QVERIFY(average != nullptr);

    average->UpdateValue();

    QCOMPARE(average->value(), 55.5);
    QCOMPARE(average->displayName(), text("CPU Core (average)"));
    QCOMPARE(average->type(), SensorType::cpu);
    QCOMPARE(average->group(), QString());
    QCOMPARE(provider.getSensorByKey(text("TC2C"))->value(), 61.0);
}

void TestTempSensorProvider::averageOfOneCore()
{
    SensorMachine machine;
    machine.controller->setTemperature("TC1C", 50.0);
    TemperatureSensorProvider provider(machine.info, machine.settings, noDrives);
    provider.load(machine.service.get());
    TemperatureSensorAbstract* average = provider.getSensorByKey(text("cpucoreavg"));
    QVERIFY(average != nullptr);

    average->UpdateValue();

    QCOMPARE(average->value(), 50.0);
}

void TestTempSensorProvider::noAverageWithoutCores()
{
    // On this model "CPU A Core 0" and the like don't begin with "CPU Core ".
    SensorMachine machine("MacPro1,1");
    machine.controller->setTemperature("TC0C", 50.0);
    machine.controller->setTemperature("TC0P", 50.0);
    TemperatureSensorProvider provider(machine.info, machine.settings, noDrives);
    provider.load(machine.service.get());
    const LogCapture log;

    QCOMPARE(provider.getSensors().size(), std::size_t(2));
    QVERIFY(provider.getSensorByKey(text("cpucoreavg")) == nullptr);
    QCOMPARE(provider.getSensorDisplayNameByKey(text("cpucoreavg")), QString());
    QCOMPARE(log.lines(), QStringList { text("error: Cannot locate sensor by key cpucoreavg") });
}

void TestTempSensorProvider::averageIsReloadedWithTheOthers()
{
    SensorMachine machine;
    machine.controller->setTemperature("TC1C", 50.0);
    TemperatureSensorProvider provider(machine.info, machine.settings, noDrives);
    provider.load(machine.service.get());

    provider.unload();
    QVERIFY(provider.getSensors().empty());
    provider.load(machine.service.get());

    QCOMPARE(provider.getSensors().size(), std::size_t(2));
}

void TestTempSensorProvider::reloadGivesNewIdsAndTheSameKeys()
{
    SensorMachine machine;
    machine.controller->setTemperature("TA0P", 25.0);
    TemperatureSensorProvider provider(machine.info, machine.settings, noDrives);
    provider.load(machine.service.get());
    const std::uint32_t id = provider.getSensorByKey(text("TA0P"))->id();

    provider.unload();
    provider.load(machine.service.get());

    QVERIFY(provider.getSensorByKey(text("TA0P")) != nullptr);
    QVERIFY(provider.getSensorByKey(text("TA0P"))->id() > id);
}

void TestTempSensorProvider::hiddenSensorIsLeftOut()
{
    SensorMachine machine;
    machine.controller->setTemperature("TA0P", 25.0);
    TemperatureSensorProvider provider(machine.info, machine.settings, noDrives);
    provider.load(machine.service.get());

    provider.getSensorByKey(text("TA0P"))->setHidden(true);

    QVERIFY(provider.getSensors().empty());
    QVERIFY(provider.getSensorByKey(text("TA0P")) == nullptr);
}

void TestTempSensorProvider::sensorIsFoundByEitherSpelling()
{
    SensorMachine machine;
    machine.controller->setTemperature("TC0P", 50.0);
    TemperatureSensorProvider provider(machine.info, machine.settings, noDrives);
    provider.load(machine.service.get());

    const TemperatureSensorAbstract* sensor = provider.getSensorByKey(text("TC0p"));

    QVERIFY(sensor != nullptr);
    QCOMPARE(sensor->key(), text("TC0P"));
    QVERIFY(provider.getSensorByKey(text("Tc0P")) == nullptr);
}

void TestTempSensorProvider::averageIsFoundExactly()
{
    SensorMachine machine;
    machine.controller->setTemperature("TC1C", 50.0);
    TemperatureSensorProvider provider(machine.info, machine.settings, noDrives);
    provider.load(machine.service.get());

    QVERIFY(provider.getSensorByKey(text("cpucoreavg")) != nullptr);
    QVERIFY(provider.getSensorByKey(text("cpucoreavG")) == nullptr);
}

void TestTempSensorProvider::nameOfASensorIsFound()
{
    SensorMachine machine;
    machine.controller->setTemperature("TC0P", 50.0);
    TemperatureSensorProvider provider(machine.info, machine.settings, noDrives);
    provider.load(machine.service.get());
    const LogCapture log;

    QCOMPARE(provider.getSensorDisplayNameByKey(text("TC0p")), text("CPU Proximity"));
    QCOMPARE(log.lines(), QStringList());
}

void TestTempSensorProvider::unknownKeyHasNoNameAndIsLogged()
{
    SensorMachine machine;
    const TemperatureSensorProvider provider(machine.info, machine.settings, noDrives);
    const LogCapture log;
    QTest::ignoreMessage(QtDebugMsg, "Cannot locate sensor by key N%1\nO");

    QCOMPARE(provider.getSensorDisplayNameByKey(text("N%1\nO")), QString());

    QCOMPARE(log.lines(), QStringList { text("error: Cannot locate sensor by key N%1\\nO") });
}

void TestTempSensorProvider::driveSensorStaysVisibleWithoutDrives()
{
    SensorMachine machine;
    machine.controller->setTemperature("TH0A", 40.0);
    TemperatureSensorProvider provider(machine.info, machine.settings, noDrives);

    provider.load(machine.service.get());

    QVERIFY(provider.getSensorByKey(text("TH0A")) != nullptr);
    QCOMPARE(provider.getSensorByKey(text("TH0A"))->type(), SensorType::ssd);
}

void TestTempSensorProvider::secondDiscreteDiodeStaysASensorOfItsOwn()
{
    SensorMachine machine;
    machine.controller->setTemperature("TG0D", 40.0);
    machine.controller->setTemperature("TGDD", 41.0);
    TemperatureSensorProvider provider(machine.info, machine.settings, noDrives);

    provider.load(machine.service.get());

    QCOMPARE(namesOf(provider.getSensors()),
             QStringList({ text("GPU Diode"), text("GPU Diode 2") }));
}

void TestTempSensorProvider::reportTellsEveryKey()
{
    SensorMachine machine;
    machine.controller->setTemperature("TA0P", 25.0);
    machine.controller->setKey("TC0P", "sp78", { 45, 129 }); // 45.50390625
    machine.controller->setTemperature("TH0X", 127.0);
    machine.controller->setTemperature("TZ0Z", 30.25);
    TemperatureSensorProvider provider(machine.info, machine.settings, noDrives);
    provider.load(machine.service.get());

    QCOMPARE(provider.getTechInfo(machine.service.get()),
             text("SMC sensors:\n"
                  "TA0P (Ambient) - 25, 25\n"
                  "TC0P (CPU Proximity) - 45.5039, 45.5039\n"
                  "TH0X () - 0, 0\n"
                  "TZ0Z () - 30.25, 30.25\n"
                  "\n"
                  "GPUs:\n"
                  "\n"
                  "Disk drives:\n"));
}

void TestTempSensorProvider::reportMarksHiddenSensors()
{
    SensorMachine machine;
    machine.controller->setTemperature("TA0P", 25.0);
    TemperatureSensorProvider provider(machine.info, machine.settings, noDrives);
    provider.load(machine.service.get());
    provider.getSensorByKey(text("TA0P"))->setHidden(true);

    QVERIFY(provider.getTechInfo(machine.service.get())
                .contains(text("\nTA0P (Ambient) - 25, 25 [H]\n")));
}

void TestTempSensorProvider::reportShowsBothReadingsOfCorrectedKeys()
{
    SMC::Options::set(SMC::Option::InvertCoreTemps);
    SensorMachine machine("MacPro4,1");
    machine.controller->setTemperature("TCAC", 40.0);
    TemperatureSensorProvider provider(machine.info, machine.settings, noDrives);
    provider.load(machine.service.get());

    QVERIFY(provider.getTechInfo(machine.service.get())
                .contains(text("TCAC (CPU A core from PCECI) - 60, 40\n")));
    SMC::Options::clear();
}

void TestTempSensorProvider::reportOfAMachineWithoutKeysHasEmptyBlocks()
{
    SensorMachine machine;
    const TemperatureSensorProvider provider(machine.info, machine.settings, noDrives);
    QCOMPARE(provider.getTechInfo(machine.service.get()),
             text("SMC sensors:\n\nGPUs:\n\nDisk drives:\n"));
}

void TestTempSensorProvider::namesInReportsAreTakenAsTheyAre()
{
    SensorMachine machine;
    machine.controller->setTemperature("T%1%", 25.0);
    TemperatureSensorProvider provider(machine.info, machine.settings, noDrives);
    provider.load(machine.service.get());

    QVERIFY(provider.getTechInfo(machine.service.get()).contains(text("\nT%1% () - 25, 25\n")));
}

BRISORA_TEST_MAIN(TestTempSensorProvider, QCoreApplication)
#include "test_tempsensorprovider.moc"
