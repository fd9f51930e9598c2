#include <QCoreApplication>
#include <QSignalSpy>

#include "app/sensors/tempsensorprovider.h"
#include "resources/resources.h"
#include "tests/gpu/fakegpuprovider.h"
#include "tests/sensors/sensormachine.h"
#include "tests/support/logcapture.h"
#include "tests/support/testenvironment.h"

namespace {

QString text(const char* value) { return QString::fromUtf8(value); }

// A machine with these temperatures, all of 40 degrees, and a provider of sensors.
struct Bench {
    SensorMachine machine;
    FakeGpuProvider gpus;
    TemperatureSensorProvider provider { machine.info, machine.settings,
                                         [](bool, bool) { return TempSensorDisk::List(); } };
    LogCapture log;

    explicit Bench(const std::vector<const char*>& keys)
    {
        for (const char* key : keys) {
            machine.controller->setTemperature(key, 40.0);
        }
    }

    void load() { provider.load(machine.service.get(), &gpus); }
    void unload() { provider.unload(&gpus); }

    // "KEY name" for each visible sensor.
    [[nodiscard]] QStringList sensors() const
    {
        QStringList result;
        for (const TemperatureSensorAbstract* sensor : provider.getSensors()) {
            result.append(sensor->key() + QLatin1Char(' ') + sensor->displayName());
        }
        return result;
    }
};

} // namespace

class TestTempSensorProviderGpus : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { initResources(); }

    void keyOfAPresetFindsTheGpu();
    void gpusAreSortedAmongTheOthers();
    void firstOfTwoDiscreteSensorsIsTaken();
    void secondDiscreteSensorServesWithoutTheFirst();
    void integratedSensorIsFoundInEitherSpelling();
    void integratedSensorStaysVisibleWithoutAnIntelGpu();
    void gpuOfAMachineWithoutKeysIsShown();
    void loadIsLogged();
    void unloadClearsTheGpus();
    void reloadKeepsTheKeyAndResetsTheSource();
    void wishForAReloadIsPassedOnOnce();
    void reportTellsTheGpus();
};

void TestTempSensorProviderGpus::keyOfAPresetFindsTheGpu()
{
    Bench bench({ "TG0D" });
    bench.gpus.machine = { { text("Radeon"), 50.5 } };

    bench.load();

    for (const char* key : { "TG0D", "TG0d" }) {
        TemperatureSensorAbstract* sensor = bench.provider.getSensorByKey(text(key));
        QVERIFY(sensor != nullptr);
        sensor->UpdateValue();
        QCOMPARE(sensor->value(), 50.5);
    }
    QCOMPARE(bench.provider.getSensorDisplayNameByKey(text("TG0D")), text("GPU Radeon"));
    QCOMPARE(bench.sensors(), QStringList { text("TG0D GPU Radeon") });
}

void TestTempSensorProviderGpus::gpusAreSortedAmongTheOthers()
{
    Bench bench({ "TG0P", "TA0P", "TPCD", "TH0A" });
    bench.gpus.machine = { { text("Radeon") }, { text("GeForce") } };

    bench.load();

    QCOMPARE(bench.sensors(),
             QStringList({ text("TA0P Ambient"), text("GPU GeForce (1) GPU GeForce"),
                           text("TG0P GPU Proximity"), text("GPU Radeon (0) GPU Radeon"),
                           text("TPCD Platform Controller Hub Die"), text("TH0A Apple SSD") }));
}

void TestTempSensorProviderGpus::firstOfTwoDiscreteSensorsIsTaken()
{
    Bench bench({ "TG0D", "TGDD" });
    bench.gpus.machine = { { text("Radeon") } };

    bench.load();

    QCOMPARE(bench.sensors(), QStringList({ text("TGDD GPU Diode 2"), text("TG0D GPU Radeon") }));
}

void TestTempSensorProviderGpus::secondDiscreteSensorServesWithoutTheFirst()
{
    Bench bench({ "TGDD" });
    bench.gpus.machine = { { text("Radeon") } };

    bench.load();

    QCOMPARE(bench.sensors(), QStringList { text("TGDD GPU Radeon") });
}

void TestTempSensorProviderGpus::integratedSensorIsFoundInEitherSpelling()
{
    Bench bench({ "TCGC", "TCGc" }); // of which the second stays
    bench.gpus.machine = { { text("Intel HD Graphics") } };

    bench.load();

    QCOMPARE(bench.sensors(), QStringList { text("TCGc GPU Intel HD Graphics") });
}

void TestTempSensorProviderGpus::integratedSensorStaysVisibleWithoutAnIntelGpu()
{
    Bench bench({ "TCGC", "TG0D" });
    bench.gpus.machine = { { text("Radeon") } };

    bench.load();

    QCOMPARE(bench.sensors(), QStringList({ text("TCGC GPU PECI"), text("TG0D GPU Radeon") }));
}

void TestTempSensorProviderGpus::gpuOfAMachineWithoutKeysIsShown()
{
    Bench bench({});
    bench.gpus.machine = { { text("Radeon"), 50.5 }, { text("Intel HD") } };

    bench.load();

    QCOMPARE(bench.sensors(), QStringList { text("GPU Radeon (0) GPU Radeon") });
}

void TestTempSensorProviderGpus::loadIsLogged()
{
    Bench bench({ "TC1C", "TG0D" });
    bench.gpus.machine = { { text("Radeon") }, { text("GeForce") }, { text("Intel HD") } };

    bench.load();

    // The average is counted, and so is the hidden sensor.
    const QString smcLine = text("info: InitialLoadThread: number of supported SMC sensors: 3");
    const QString gpuLine = text("info: InitialLoadThread: number of supported GPU sensors: 2");
    QVERIFY(bench.log.contains(smcLine));
    QCOMPARE(bench.log.lines().last(), gpuLine);
}

void TestTempSensorProviderGpus::unloadClearsTheGpus()
{
    Bench bench({ "TG0D" });
    bench.gpus.machine = { { text("Radeon") } };
    bench.load();
    TemperatureSensorAbstract* former = bench.provider.getSensorByKey(text("TG0D"));
    former->UpdateValue();
    const int reads = bench.gpus.reads;

    bench.unload();

    QCOMPARE(bench.gpus.clears, 1);
    QCOMPARE(bench.gpus.getCount(), 0);
    QCOMPARE(bench.sensors(), QStringList());
    // Who still has it may look at it, and its source is gone.
    QCOMPARE(former->displayName(), text("GPU Radeon"));
    former->UpdateValue();
    QCOMPARE(bench.gpus.reads, reads);
}

void TestTempSensorProviderGpus::reloadKeepsTheKeyAndResetsTheSource()
{
    Bench bench({ "TG0D" });
    bench.gpus.machine = { { text("Radeon"), 0.0 } };
    bench.load();
    TemperatureSensorAbstract* sensor = bench.provider.getSensorByKey(text("TG0D"));
    const std::uint32_t id = sensor->id();
    sensor->UpdateValue();
    sensor->UpdateValue();
    QCOMPARE(sensor->value(), 40.0);
    bench.gpus.machine[0].celsius = 50.5;

    bench.unload();
    bench.load();

    sensor = bench.provider.getSensorByKey(text("TG0D"));
    QVERIFY(sensor != nullptr);
    QVERIFY(sensor->id() > id);
    sensor->UpdateValue();
    QCOMPARE(sensor->value(), 50.5);
}

void TestTempSensorProviderGpus::wishForAReloadIsPassedOnOnce()
{
    Bench bench({ "TG0D" });
    QSignalSpy spy(&bench.provider, &TemperatureSensorProvider::reloadRequired);
    bench.load();
    bench.unload();
    bench.load();

    Q_EMIT bench.gpus.gpuListReloadRequired();

    QCOMPARE(spy.size(), 1);
}

void TestTempSensorProviderGpus::reportTellsTheGpus()
{
    Bench bench({ "TG0D" });
    bench.gpus.machine = { { text("Radeon %1"), 50.5 }, { text("GeForce"), 61.0 } };
    bench.load();
    for (TemperatureSensorAbstract* sensor : bench.provider.getSensors()) {
        sensor->UpdateValue();
    }

    QCOMPARE(bench.provider.getTechInfo(bench.machine.service.get()),
             text("SMC sensors:\n"
                  "TG0D (GPU Diode) - 40, 40 [H]\n"
                  "\n"
                  "GPUs:\n"
                  "Radeon %1 - 50.5\n"
                  "GeForce - 61\n"
                  "\n"
                  "Disk drives:\n"));
}

BRISORA_TEST_MAIN(TestTempSensorProviderGpus, QCoreApplication)
#include "test_tempsensorprovider_gpus.moc"
