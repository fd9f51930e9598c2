#include <QCoreApplication>

#include "app/gpu/provider_win_nvidia.h"
#include "tests/gpu/fakenvapi.h"
#include "tests/support/logcapture.h"
#include "tests/support/testenvironment.h"

namespace {

QString text(const char* value) { return QString::fromUtf8(value); }

constexpr std::uint32_t initializeId = 0x0150E828;
constexpr std::uint32_t listId = 0xE5AC921F;
constexpr std::uint32_t nameId = 0xCEEE8E9F;
constexpr std::uint32_t temperatureId = 0xE3640A56;

// A driver, a loader that finds it, and the provider over them.
struct Bench {
    FakeNvApi driver;
    FakeLoader loader;
    LogCapture log;
    GPU::ProviderWindowsNVIDIA provider;

    Bench()
        : provider(loader.make())
    {
        loader.libraries["nvapi.dll"] = FakeNvApi::functions();
    }

    // With one GPU that has been found.
    [[nodiscard]] bool find()
    {
        driver.add("GeForce GT 750M");
        return provider.discoverGPUs();
    }

    [[nodiscard]] double temperature() { return provider.getTemperature(provider.getGpu(0)); }
};

} // namespace

class TestProviderWindowsNVIDIA : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void gpusAreFoundInTheDriversOrder();
    void discoveryIsLogged();
    void missingLibraryIsLogged();
    void libraryWithoutItsOneFunctionIsUnloaded();
    void libraryWithoutGpusIsNotUsed();
    void libraryIsLookedForAgain();
    void failedStartIsKept();
    void missingFunctionsAreFailures_data();
    void missingFunctionsAreFailures();
    void failedListGivesNoGpus();
    void machineWithoutGpusHasNone();
    void gpuWithoutANameIsSkipped();
    void nameWithoutEndIsAsLongAsItsBuffer();
    void countBeyondTheArrayIsCut_data();
    void countBeyondTheArrayIsCut();
    void temperatureIsTheGpusOwn_data();
    void temperatureIsTheGpusOwn();
    void temperatureIsAskedWithTheRecordsVersion();
    void statusOfTheTemperatureIsNotLookedAt();
    void countOfSensorsIsBounded_data();
    void countOfSensorsIsBounded();
    void noGpuHasNoTemperature();
    void clearForgetsTheGpus();
};

void TestProviderWindowsNVIDIA::gpusAreFoundInTheDriversOrder()
{
    Bench bench;
    bench.driver.add("GeForce GT 750M");
    bench.driver.add("Quadro 4000");

    QVERIFY(bench.provider.discoverGPUs());

    QCOMPARE(bench.provider.getCount(), 2);
    QCOMPARE(bench.provider.getGpu(0)->name, text("GeForce GT 750M"));
    QCOMPARE(bench.provider.getGpu(1)->name, text("Quadro 4000"));
    QCOMPARE(bench.provider.getGpu(1)->provider, &bench.provider);
    QCOMPARE(bench.provider.getGpu(1)->handle, static_cast<void*>(&bench.driver.gpus[1]));
    QVERIFY(!bench.provider.getGpu(1)->noSmcMatch);
}

void TestProviderWindowsNVIDIA::discoveryIsLogged()
{
    Bench bench;
    QVERIFY(bench.find());
    QCOMPARE(
        bench.log.lines(),
        QStringList({ text("info: nvapi.dll loaded"), text("info: NvAPI_EnumPhysicalGPUs 1") }));
}

void TestProviderWindowsNVIDIA::missingLibraryIsLogged()
{
    Bench bench;
    bench.loader.libraries.clear();

    QVERIFY(!bench.find());

    QCOMPARE(bench.log.lines(),
             QStringList { text("warning: LoadLibrary (nvapi.dll) failed with 126") });
    QCOMPARE(bench.loader.unloads, 0);
}

void TestProviderWindowsNVIDIA::libraryWithoutItsOneFunctionIsUnloaded()
{
    Bench bench;
    bench.loader.libraries["nvapi.dll"].clear();

    QVERIFY(!bench.find());

    QCOMPARE(bench.log.lines(),
             QStringList { text("warning: LoadLibrary (nvapi.dll) failed with 127") });
    QCOMPARE(bench.loader.unloads, 1);
}

void TestProviderWindowsNVIDIA::libraryWithoutGpusIsNotUsed()
{
    Bench bench;
    bench.driver.missing = { listId };

    QVERIFY(!bench.find());

    QCOMPARE(bench.log.lines(), QStringList());
    QCOMPARE(bench.driver.initialized, 0);
    QCOMPARE(bench.loader.unloads, 1);
}

void TestProviderWindowsNVIDIA::libraryIsLookedForAgain()
{
    Bench bench;
    bench.loader.libraries.clear();
    QVERIFY(!bench.find());
    bench.loader.libraries["nvapi.dll"] = FakeNvApi::functions();

    QVERIFY(bench.provider.discoverGPUs());

    bench.provider.clear();
    QVERIFY(bench.provider.discoverGPUs());
    // Once it is there, it stays.
    QCOMPARE(bench.loader.loads.size(), 2);
}

void TestProviderWindowsNVIDIA::failedStartIsKept()
{
    Bench bench;
    bench.driver.initializeStatus = FakeNvApi::failure;

    QVERIFY(!bench.find());
    bench.driver.initializeStatus = GPU::NVAPI_OK;
    QVERIFY(!bench.provider.discoverGPUs());

    QCOMPARE(bench.driver.initialized, 1);
    QCOMPARE(bench.log.count(text("error: NvAPI_Initialize failed")), 2);
}

void TestProviderWindowsNVIDIA::missingFunctionsAreFailures_data()
{
    QTest::addColumn<quint32>("id");
    QTest::addColumn<bool>("isFound");
    QTest::newRow("start") << quint32 { initializeId } << false;
    QTest::newRow("name") << quint32 { nameId } << false;
    QTest::newRow("temperature") << quint32 { temperatureId } << true;
}

void TestProviderWindowsNVIDIA::missingFunctionsAreFailures()
{
    QFETCH(quint32, id);
    QFETCH(bool, isFound);
    Bench bench;
    bench.driver.missing = { id };
    bench.driver.addSensor(1, 50);

    QCOMPARE(bench.find(), isFound);

    if (isFound) {
        QCOMPARE(bench.temperature(), 0.0);
    }
}

void TestProviderWindowsNVIDIA::failedListGivesNoGpus()
{
    Bench bench;
    bench.driver.listStatus = FakeNvApi::failure;

    QVERIFY(!bench.find());

    QCOMPARE(bench.log.lines().last(), text("error: NvAPI_EnumPhysicalGPUs failed"));
}

void TestProviderWindowsNVIDIA::machineWithoutGpusHasNone()
{
    Bench bench;

    QVERIFY(!bench.provider.discoverGPUs());

    QCOMPARE(bench.log.lines().last(), text("info: NvAPI_EnumPhysicalGPUs 0"));
}

void TestProviderWindowsNVIDIA::gpuWithoutANameIsSkipped()
{
    Bench bench;
    bench.driver.add("Unnamed");
    bench.driver.add("Quadro 4000");
    bench.driver.gpus[0].nameStatus = FakeNvApi::failure;

    QVERIFY(bench.provider.discoverGPUs());

    QCOMPARE(bench.provider.getCount(), 1);
    QCOMPARE(bench.provider.getGpu(0)->name, text("Quadro 4000"));
}

void TestProviderWindowsNVIDIA::nameWithoutEndIsAsLongAsItsBuffer()
{
    Bench bench;
    bench.driver.add(std::string(200, 'Q'));

    QVERIFY(bench.provider.discoverGPUs());

    QCOMPARE(bench.provider.getGpu(0)->name, QString(64, QLatin1Char('Q')));
}

void TestProviderWindowsNVIDIA::countBeyondTheArrayIsCut_data()
{
    QTest::addColumn<quint32>("count");
    QTest::newRow("one more") << quint32 { 65 };
    QTest::newRow("1000") << quint32 { 1000 };
    QTest::newRow("-1") << quint32 { 0xFFFFFFFF };
}

void TestProviderWindowsNVIDIA::countBeyondTheArrayIsCut()
{
    QFETCH(quint32, count);
    Bench bench;
    for (int i = 0; i < 64; ++i) {
        bench.driver.add("Tesla");
    }
    bench.driver.claimedCount = count;

    QVERIFY(bench.provider.discoverGPUs());

    QCOMPARE(bench.provider.getCount(), 64);
}

void TestProviderWindowsNVIDIA::temperatureIsTheGpusOwn_data()
{
    QTest::addColumn<QVector<QPoint>>("sensors"); // what it measures, and its value
    QTest::addColumn<double>("celsius");
    QTest::newRow("the first") << QVector<QPoint> { { 1, 55 }, { 2, 60 } } << 55.0;
    QTest::newRow("the last") << QVector<QPoint> { { 2, 60 }, { 4, 61 }, { 1, 57 } } << 57.0;
    QTest::newRow("the first of two") << QVector<QPoint> { { 1, 55 }, { 1, 60 } } << 55.0;
    QTest::newRow("memory alone") << QVector<QPoint> { { 2, 60 } } << 0.0;
    QTest::newRow("none") << QVector<QPoint> {} << 0.0;
}

void TestProviderWindowsNVIDIA::temperatureIsTheGpusOwn()
{
    QFETCH(QVector<QPoint>, sensors);
    Bench bench;
    for (const QPoint& sensor : qAsConst(sensors)) {
        bench.driver.addSensor(sensor.x(), static_cast<std::uint32_t>(sensor.y()));
    }
    QVERIFY(bench.find());

    QTEST(bench.temperature(), "celsius");
}

void TestProviderWindowsNVIDIA::temperatureIsAskedWithTheRecordsVersion()
{
    Bench bench;
    bench.driver.add("Quadro");
    bench.driver.add("GeForce");
    QVERIFY(bench.provider.discoverGPUs());

    static_cast<void>(bench.provider.getTemperature(bench.provider.getGpu(1)));

    QCOMPARE(bench.driver.askedGpu, 1);
    QCOMPARE(bench.driver.askedSensors, 15U);
    QCOMPARE(bench.driver.askedSettings.version, 0x00010044U);
    QCOMPARE(bench.driver.askedSettings.count, 3U);
    QCOMPARE(bench.driver.askedSettings.sensor[0].target, 0);
}

void TestProviderWindowsNVIDIA::statusOfTheTemperatureIsNotLookedAt()
{
    Bench bench;
    bench.driver.addSensor(1, 55);
    bench.driver.temperatureStatus = FakeNvApi::failure;
    QVERIFY(bench.find());

    QCOMPARE(bench.temperature(), 55.0);
}

void TestProviderWindowsNVIDIA::countOfSensorsIsBounded_data()
{
    QTest::addColumn<quint32>("count");
    QTest::addColumn<double>("celsius");
    QTest::newRow("none") << quint32 { 0 } << 0.0;
    QTest::newRow("before the GPU's") << quint32 { 2 } << 0.0;
    QTest::newRow("all") << quint32 { 3 } << 57.0;
    QTest::newRow("one too many") << quint32 { 4 } << 57.0;
    QTest::newRow("1000") << quint32 { 1000 } << 57.0;
    QTest::newRow("-1") << quint32 { 0xFFFFFFFF } << 57.0;
}

void TestProviderWindowsNVIDIA::countOfSensorsIsBounded()
{
    QFETCH(quint32, count);
    Bench bench;
    bench.driver.addSensor(2, 60);
    bench.driver.addSensor(4, 61);
    bench.driver.addSensor(1, 57);
    bench.driver.sensorCount = count;
    QVERIFY(bench.find());

    QTEST(bench.temperature(), "celsius");
}

void TestProviderWindowsNVIDIA::noGpuHasNoTemperature()
{
    Bench bench;
    bench.driver.addSensor(1, 55);
    QVERIFY(bench.find());
    QCOMPARE(bench.provider.getTemperature(nullptr), 0.0);
}

void TestProviderWindowsNVIDIA::clearForgetsTheGpus()
{
    Bench bench;
    QVERIFY(bench.find());

    bench.provider.clear();

    QCOMPARE(bench.provider.getCount(), 0);
    QVERIFY(bench.provider.discoverGPUs());
    QCOMPARE(bench.provider.getCount(), 1);
    QCOMPARE(bench.driver.initialized, 1);
}

BRISORA_TEST_MAIN(TestProviderWindowsNVIDIA, QCoreApplication)
#include "test_provider_win_nvidia.moc"
