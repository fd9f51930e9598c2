#include <QSignalSpy>
#include <QTest>

#include "tests/fancontrol/enginemachine.h"
#include "tests/gpu/fakegpuprovider.h"
#include "tests/support/testenvironment.h"

// The engine on a machine whose GPU has a driver.
class EngineGpusTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { EngineMachine::prepareProcess(); }

    void aFanFollowsTheGpusDriver();
    void aFanFollowsTheControllerWhenTheDriverFails();
    void theUpdateTaskReadsTheDriver();
    void theGpusWishForAReloadIsFulfilled();
};

namespace {

// The controller has a key for the GPU, of 45 degrees; the driver tells another
// temperature.
FakeGpuProvider& addGpu(EngineMachine& machine, double celsius)
{
    auto provider = std::make_unique<FakeGpuProvider>();
    FakeGpuProvider& result = *provider;
    result.machine = { { QStringLiteral("Radeon"), celsius } };
    machine.smc->setTemperature("TG0D", 45.0);
    machine.gpuProvider = std::move(provider);
    machine.makeEngine();
    return result;
}

// The speeds written to fan 0, which follows the GPU.
QStringList speedsAfterTwoReadings(EngineMachine& machine)
{
    machine.hasWindow = false; // the test reads the sensor itself
    machine.load();
    machine.engine->setFanMode(0, FanControlMode::sensor(QStringLiteral("TG0D"), 40, 70), false);
    machine.sensor("TG0D")->UpdateValue();
    machine.sensor("TG0D")->UpdateValue();
    static_cast<void>(machine.takeWrites());
    machine.start(1);
    return machine.takeWrites().filter(QStringLiteral("Tg "));
}

} // namespace

void EngineGpusTest::aFanFollowsTheGpusDriver()
{
    EngineMachine machine;
    addGpu(machine, 55.0);

    // 55 degrees between 40 and 70, from 2000 to 6000 RPM.
    QCOMPARE(speedsAfterTwoReadings(machine), QStringList { QStringLiteral("F0Tg 3863") });
}

void EngineGpusTest::aFanFollowsTheControllerWhenTheDriverFails()
{
    EngineMachine machine;
    addGpu(machine, 0.0);

    // 45 degrees.
    QCOMPARE(speedsAfterTwoReadings(machine), QStringList { QStringLiteral("F0Tg 2533") });
}

void EngineGpusTest::theUpdateTaskReadsTheDriver()
{
    EngineMachine machine;
    FakeGpuProvider& gpus = addGpu(machine, 55.0);
    machine.load();
    const TemperatureSensorAbstract* sensor = machine.sensor("TG0D");
    QVERIFY(sensor != nullptr);
    static_cast<void>(machine.takeReads());

    machine.start();

    QCOMPARE(sensor->value(), 55.0);
    QCOMPARE(sensor->displayName(), QStringLiteral("GPU Radeon"));
    QCOMPARE(gpus.reads, 1);
    QVERIFY(!machine.takeReads().contains(QStringLiteral("TG0D")));
}

void EngineGpusTest::theGpusWishForAReloadIsFulfilled()
{
    EngineMachine machine;
    FakeGpuProvider& gpus = addGpu(machine, 55.0);
    machine.load();
    QSignalSpy ends(machine.engine.get(), &QFanControl::sensorsReloadEnd);
    gpus.machine.clear();

    Q_EMIT gpus.gpuListReloadRequired();

    QCOMPARE(ends.size(), 1);
    QCOMPARE(gpus.clears, 1);
    QCOMPARE(gpus.discoveries, 2);
    QCOMPARE(machine.sensor("TG0D")->displayName(), QStringLiteral("GPU Diode"));
}

BRISORA_TEST_MAIN(EngineGpusTest, QCoreApplication)
#include "test_engine_gpus.moc"
