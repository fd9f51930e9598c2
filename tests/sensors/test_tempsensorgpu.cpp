#include <limits>

#include <QCoreApplication>

#include "app/sensors/tempsensorgpu.h"
#include "tests/gpu/fakegpuprovider.h"
#include "tests/sensors/scriptedsensor.h"
#include "tests/support/logcapture.h"
#include "tests/support/testenvironment.h"

namespace {

QString text(const char* value) { return QString::fromUtf8(value); }

// GPUs, the controller's sensors for them, and what is loaded from both.
struct Bench {
    FakeGpuProvider provider;
    ScriptedSensor discrete { SensorType::gpu };
    ScriptedSensor integrated { SensorType::gpu };
    std::once_flag failureLogged;
    LogCapture log;
    std::vector<std::unique_ptr<TemperatureSensorGPU>> sensors;

    explicit Bench(const std::vector<FakeGpuProvider::Gpu>& gpus)
        : provider(gpus)
    {
    }

    enum Controller { None, Discrete, Integrated, Both };

    void load(Controller keys)
    {
        provider.clear();
        sensors = TemperatureSensorGPU::loadAvailableSensors(
            &provider, keys == Discrete || keys == Both ? &discrete : nullptr,
            keys == Integrated || keys == Both ? &integrated : nullptr, failureLogged);
    }

    // The only sensor, after a reading.
    TemperatureSensorGPU& updated()
    {
        sensors.front()->UpdateValue();
        return *sensors.front();
    }
};

} // namespace

class TestTempSensorGPU : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void nameIsShownWithoutItsEnding_data();
    void nameIsShownWithoutItsEnding();
    void discreteGpuTakesTheControllersPlace();
    void discreteGpuWithoutASensorHasAKeyOfItsOwn();
    void gpuThatDoesNotMatchIsNotBound();
    void integratedGpuIsReadFromTheController();
    void integratedGpuWithoutASensorIsLeftOut();
    void controllersSensorsStayVisibleWithoutTheirGpu();
    void discreteGpusShareTheSensorAndItsKey();
    void keyHasThePlaceInTheProvidersList();
    void noGpusAreNoSensors();
    void driverIsAskedFirst();
    void zeroReadingMovesTheSensorToTheController();
    void driverThatRecoversIsNotAskedUntilAReload();
    void withoutAControllerTheDriverIsAskedAgain();
    void failureIsLoggedOnceForAllGpus();
    void controllersFailedReadIsNotCounted();
    void controllerThatFailsLeavesTheDriversLastValue();
    void readingThatIsNoNumberIsAFailedRead();
    void keysAreComparedAsTheControllersWhereBothAre_data();
    void keysAreComparedAsTheControllersWhereBothAre();
    void offeredTemperaturesAreBounded();
    void detachedSensorReadsNothing();
};

void TestTempSensorGPU::nameIsShownWithoutItsEnding_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("displayName");
    QTest::newRow("plain") << text("Radeon R9 M370X") << text("GPU Radeon R9 M370X");
    QTest::newRow("ending") << text("FirePro D300 (FireGL V)") << text("GPU FirePro D300");
    QTest::newRow("anywhere") << text("A (FireGL V) B (FireGL V)") << text("GPU A B");
    QTest::newRow("other ending") << text("FirePro (FireGL)") << text("GPU FirePro (FireGL)");
    QTest::newRow("case") << text("FirePro (firegl v)") << text("GPU FirePro (firegl v)");
    QTest::newRow("empty") << QString() << text("GPU ");
}

void TestTempSensorGPU::nameIsShownWithoutItsEnding()
{
    QFETCH(QString, name);
    Bench bench({ { name } });

    bench.load(Bench::None);

    QTEST(bench.sensors.front()->displayName(), "displayName");
}

void TestTempSensorGPU::discreteGpuTakesTheControllersPlace()
{
    Bench bench({ { text("Radeon") } });

    bench.load(Bench::Both);

    QCOMPARE(bench.sensors.size(), std::size_t(1));
    const TemperatureSensorGPU& sensor = *bench.sensors.front();
    QCOMPARE(sensor.key(), text("TEST"));
    QCOMPARE(sensor.displayName(), text("GPU Radeon"));
    QCOMPARE(sensor.type(), SensorType::gpu);
    QCOMPARE(sensor.group(), QString());
    QVERIFY(!sensor.isIntegrated());
    QVERIFY(!sensor.isHidden());
    QVERIFY(bench.discrete.isHidden());
    QVERIFY(!bench.integrated.isHidden());
    QCOMPARE(bench.log.lines(),
             QStringList { text("info: Discrete GPU: GPU Radeon, matching SMC - yes") });
}

void TestTempSensorGPU::discreteGpuWithoutASensorHasAKeyOfItsOwn()
{
    Bench bench({ { text("Radeon %2"), 50.5 } });

    bench.load(Bench::Integrated);

    QCOMPARE(bench.sensors.front()->key(), text("GPU Radeon %2 (0)"));
    QCOMPARE(bench.updated().value(), 50.5);
    QVERIFY(!bench.integrated.isHidden());
    QCOMPARE(bench.log.lines(),
             QStringList { text("info: Discrete GPU: GPU Radeon %2, matching SMC - no") });
}

void TestTempSensorGPU::gpuThatDoesNotMatchIsNotBound()
{
    Bench bench({ { text("Radeon"), 50.5, true } });

    bench.load(Bench::Discrete);

    QCOMPARE(bench.sensors.front()->key(), text("GPU Radeon (0)"));
    QVERIFY(!bench.discrete.isHidden());
    QCOMPARE(bench.log.lines(),
             QStringList { text("info: Discrete GPU: GPU Radeon, matching SMC - no") });
}

void TestTempSensorGPU::integratedGpuIsReadFromTheController()
{
    Bench bench({ { text("Intel(R) HD Graphics 4000"), 99.0 } });
    bench.integrated.reading = 47.25;

    bench.load(Bench::Both);

    QCOMPARE(bench.sensors.size(), std::size_t(1));
    QCOMPARE(bench.sensors.front()->key(), text("TEST"));
    QVERIFY(bench.sensors.front()->isIntegrated());
    QVERIFY(bench.integrated.isHidden());
    QVERIFY(!bench.discrete.isHidden());
    QCOMPARE(bench.updated().value(), 47.25);
    QCOMPARE(bench.updated().successfulReads(), 2U);
    QCOMPARE(bench.provider.reads, 0);
    QCOMPARE(bench.log.lines(),
             QStringList {
                 text("info: Integrated GPU: GPU Intel(R) HD Graphics 4000, matching SMC - yes") });
}

void TestTempSensorGPU::integratedGpuWithoutASensorIsLeftOut()
{
    Bench bench({ { text("Intel\nHD") } });

    bench.load(Bench::Discrete);

    QVERIFY(bench.sensors.empty());
    QVERIFY(!bench.discrete.isHidden());
    QCOMPARE(bench.log.lines(),
             QStringList({ text("info: Integrated GPU: GPU Intel\\nHD, matching SMC - no"),
                           text("warning: Unable to add this GPU") }));
}

void TestTempSensorGPU::controllersSensorsStayVisibleWithoutTheirGpu()
{
    Bench bench({ { text("intel") } }); // with case it is another name

    bench.load(Bench::Integrated);

    QVERIFY(!bench.sensors.front()->isIntegrated());
    QVERIFY(!bench.integrated.isHidden());
}

void TestTempSensorGPU::discreteGpusShareTheSensorAndItsKey()
{
    Bench bench({ { text("FirePro D300"), 50.0 }, { text("FirePro D500"), 60.0 } });

    bench.load(Bench::Discrete);

    QCOMPARE(bench.sensors.size(), std::size_t(2));
    for (const auto& sensor : bench.sensors) {
        sensor->UpdateValue();
        QCOMPARE(sensor->key(), text("TEST"));
    }
    QCOMPARE(bench.sensors[0]->value(), 50.0);
    QCOMPARE(bench.sensors[1]->value(), 60.0);
}

void TestTempSensorGPU::keyHasThePlaceInTheProvidersList()
{
    Bench bench({ { text("Intel HD") }, { text("Radeon") }, { text("Radeon") } });

    bench.load(Bench::None);

    QCOMPARE(bench.sensors.size(), std::size_t(2));
    QCOMPARE(bench.sensors[0]->key(), text("GPU Radeon (1)"));
    QCOMPARE(bench.sensors[1]->key(), text("GPU Radeon (2)"));
}

void TestTempSensorGPU::noGpusAreNoSensors()
{
    Bench bench({});

    bench.load(Bench::Both);

    QVERIFY(bench.sensors.empty());
    QVERIFY(!bench.discrete.isHidden());
    QVERIFY(!bench.integrated.isHidden());
    QCOMPARE(bench.log.lines(), QStringList());
}

void TestTempSensorGPU::driverIsAskedFirst()
{
    Bench bench({ { text("Radeon"), 50.5 } });
    bench.discrete.reading = 40.0;
    bench.load(Bench::Discrete);
    QCOMPARE(bench.sensors.front()->value(), 0.0);

    QCOMPARE(bench.updated().value(), 50.5);

    QCOMPARE(bench.updated().successfulReads(), 2U);
    QCOMPARE(bench.discrete.updates, 0);
}

void TestTempSensorGPU::zeroReadingMovesTheSensorToTheController()
{
    Bench bench({ { text("Radeon"), 50.5 } });
    bench.discrete.reading = 40.0;
    bench.load(Bench::Discrete);
    QCOMPARE(bench.updated().value(), 50.5);
    bench.log.clear();

    bench.provider.machine[0].celsius = 0.0;
    const TemperatureSensorGPU& sensor = bench.updated();

    // Nothing is stored in this pass.
    QCOMPARE(sensor.value(), 50.5);
    QCOMPARE(sensor.successfulReads(), 1U);
    QCOMPARE(bench.discrete.updates, 0);
    QCOMPARE(bench.log.lines(),
             QStringList({ text("warning: Reading of GPU temperature failed"),
                           text("warning: Trying SMC instead") }));

    QCOMPARE(bench.updated().value(), 40.0);
    QCOMPARE(sensor.successfulReads(), 2U);
    QCOMPARE(bench.discrete.updates, 1);
}

void TestTempSensorGPU::driverThatRecoversIsNotAskedUntilAReload()
{
    Bench bench({ { text("Radeon"), 0.0 } });
    bench.discrete.reading = 40.0;
    bench.load(Bench::Discrete);
    bench.updated();
    bench.provider.machine[0].celsius = 50.5;

    QCOMPARE(bench.updated().value(), 40.0);
    QCOMPARE(bench.updated().value(), 40.0);
    QCOMPARE(bench.provider.reads, 1);

    bench.load(Bench::Discrete);
    QCOMPARE(bench.updated().value(), 50.5);
}

void TestTempSensorGPU::withoutAControllerTheDriverIsAskedAgain()
{
    Bench bench({ { text("Radeon"), 0.0 } });
    bench.load(Bench::None);
    bench.log.clear();

    QCOMPARE(bench.updated().value(), 0.0);
    QCOMPARE(bench.updated().successfulReads(), 0U);
    bench.provider.machine[0].celsius = 50.5;

    QCOMPARE(bench.updated().value(), 50.5);
    QCOMPARE(bench.log.lines(), QStringList { text("warning: Reading of GPU temperature failed") });
}

void TestTempSensorGPU::failureIsLoggedOnceForAllGpus()
{
    Bench bench({ { text("Radeon"), 0.0 }, { text("GeForce"), 0.0 } });
    bench.load(Bench::Discrete);
    bench.log.clear();

    for (const auto& sensor : bench.sensors) {
        sensor->UpdateValue();
    }
    bench.load(Bench::Discrete);
    bench.updated();

    QCOMPARE(bench.log.count(text("warning: Reading of GPU temperature failed")), 1);
    QCOMPARE(bench.log.count(text("warning: Trying SMC instead")), 3);
}

void TestTempSensorGPU::controllersFailedReadIsNotCounted()
{
    Bench bench({ { text("Intel HD") } });
    bench.integrated.reading = 47.25;
    bench.load(Bench::Integrated);
    QCOMPARE(bench.updated().successfulReads(), 1U);

    bench.integrated.reading.reset();

    QCOMPARE(bench.updated().value(), 47.25);
    QCOMPARE(bench.updated().successfulReads(), 1U);
}

void TestTempSensorGPU::controllerThatFailsLeavesTheDriversLastValue()
{
    Bench bench({ { text("Radeon"), 80.0 } });
    bench.discrete.reading.reset();
    bench.load(Bench::Discrete);
    bench.updated();
    bench.provider.machine[0].celsius = 0.0;

    bench.updated();
    QCOMPARE(bench.updated().value(), 80.0);
    QCOMPARE(bench.updated().successfulReads(), 1U);
}

void TestTempSensorGPU::readingThatIsNoNumberIsAFailedRead()
{
    Bench bench({ { text("Radeon"), 50.5 } });
    bench.load(Bench::Discrete);
    bench.updated();
    bench.provider.machine[0].celsius = std::numeric_limits<double>::quiet_NaN();

    QCOMPARE(bench.updated().value(), 50.5);
    QCOMPARE(bench.updated().successfulReads(), 1U);
}

void TestTempSensorGPU::keysAreComparedAsTheControllersWhereBothAre_data()
{
    QTest::addColumn<QString>("own");
    QTest::addColumn<QString>("other");
    QTest::addColumn<bool>("isEqual");
    QTest::newRow("equal") << text("TG0D") << text("TG0D") << true;
    QTest::newRow("the fourth letter's case") << text("TG0D") << text("TG0d") << true;
    QTest::newRow("the second letter's case") << text("TG0D") << text("Tg0D") << false;
    QTest::newRow("longer") << text("TG0D") << text("TG0D ") << false;
    QTest::newRow("of its own, equal") << text("GPU A (0)") << text("GPU A (0)") << true;
    QTest::newRow("of its own, case") << text("GPU A (0)") << text("GPU a (0)") << false;
    QTest::newRow("of its own, and a controller's") << text("GPU A (0)") << text("TG0D") << false;
    QTest::newRow("empty") << text("TG0D") << QString() << false;
}

void TestTempSensorGPU::keysAreComparedAsTheControllersWhereBothAre()
{
    QFETCH(QString, own);
    QFETCH(QString, other);
    std::once_flag failureLogged;
    const TemperatureSensorGPU sensor(own, text("GPU"), {}, failureLogged);

    QTEST(sensor.isKeyEqual(other), "isEqual");
}

void TestTempSensorGPU::offeredTemperaturesAreBounded()
{
    Bench bench({ { text("Radeon"), 98.4 } });
    bench.load(Bench::None);
    QCOMPARE(bench.updated().getMaxTemperature(), 100);
    QCOMPARE(bench.updated().getMinTemperature(), 93);

    bench.provider.machine[0].celsius = 21.0;
    QCOMPARE(bench.updated().getMinTemperature(), 20);
    QCOMPARE(bench.updated().getMaxTemperature(), 26);
}

void TestTempSensorGPU::detachedSensorReadsNothing()
{
    Bench bench({ { text("Radeon"), 50.5 }, { text("Intel HD") } });
    bench.integrated.reading = 47.25;
    bench.load(Bench::Both);
    for (const auto& sensor : bench.sensors) {
        sensor->UpdateValue();
        sensor->detach();
    }
    bench.provider.clear();

    for (const auto& sensor : bench.sensors) {
        sensor->UpdateValue();
        QCOMPARE(sensor->successfulReads(), 1U);
    }
    QCOMPARE(bench.provider.reads, 1);
    QCOMPARE(bench.integrated.updates, 1);
}

BRISORA_TEST_MAIN(TestTempSensorGPU, QCoreApplication)
#include "test_tempsensorgpu.moc"
