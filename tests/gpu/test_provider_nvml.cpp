#include <QCoreApplication>

#include "app/gpu/provider_nvml.h"
#include "tests/gpu/fakenvml.h"
#include "tests/support/logcapture.h"
#include "tests/support/testenvironment.h"

namespace {

QString text(const char* value) { return QString::fromUtf8(value); }

// A driver, a loader that finds it, and the provider over them.
struct Bench {
    FakeNvml driver;
    FakeLoader loader;
    LogCapture log;
    std::unique_ptr<GPU::ProviderNvml> provider;

    Bench()
    {
        loader.libraries["libnvidia-ml.so.1"] = FakeNvml::functions();
        provider = std::make_unique<GPU::ProviderNvml>(loader.make());
    }
};

} // namespace

class TestProviderNvml : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void gpusAreFoundInTheDriversOrder();
    void missingLibraryIsNoFailure();
    void everyFunctionMustBeThere_data();
    void everyFunctionMustBeThere();
    void driverWithoutHardwareGivesNoGpus();
    void failedCountGivesNoGpus();
    void gpuThatCannotBeNamedIsSkipped_data();
    void gpuThatCannotBeNamedIsSkipped();
    void nameWithoutEndIsAsLongAsItsBuffer();
    void countBeyondAnyMachineIsCut_data();
    void countBeyondAnyMachineIsCut();
    void temperatureIsRead();
    void failedReadingIsZero();
    void sessionLastsUntilTheEnd();
};

void TestProviderNvml::gpusAreFoundInTheDriversOrder()
{
    Bench bench;
    bench.driver.add({ "NVIDIA GeForce GT 750M" });
    bench.driver.add({ "Quadro K4000" });

    QVERIFY(bench.provider->discoverGPUs());

    QCOMPARE(bench.provider->getCount(), 2);
    QCOMPARE(bench.provider->getGpu(0)->name, text("NVIDIA GeForce GT 750M"));
    QCOMPARE(bench.provider->getGpu(1)->name, text("Quadro K4000"));
    QCOMPARE(bench.provider->getGpu(1)->provider, bench.provider.get());
    QCOMPARE(bench.log.lines(),
             QStringList(
                 { text("info: libnvidia-ml.so.1 loaded"), text("info: nvmlDeviceGetCount 2") }));
}

void TestProviderNvml::missingLibraryIsNoFailure()
{
    Bench bench;
    bench.loader.libraries.clear();

    QVERIFY(!bench.provider->discoverGPUs());

    QCOMPARE(bench.log.lines(), QStringList { text("info: There is no libnvidia-ml.so.1") });
    bench.provider.reset();
    QCOMPARE(bench.loader.unloads, 0);
}

void TestProviderNvml::everyFunctionMustBeThere_data()
{
    QTest::addColumn<bool>("isThere");
    const auto functions = FakeNvml::functions();
    for (const auto& [name, function] : functions) {
        QTest::newRow(name.c_str()) << false;
    }
}

void TestProviderNvml::everyFunctionMustBeThere()
{
    Bench bench;
    bench.driver.add({ "Quadro" });
    auto& functions = bench.loader.libraries["libnvidia-ml.so.1"];
    QCOMPARE(functions.erase(QTest::currentDataTag()), std::size_t(1));

    QVERIFY(!bench.provider->discoverGPUs());

    QCOMPARE(bench.log.lines(),
             QStringList { text("warning: libnvidia-ml.so.1 lacks a function") });
    bench.provider.reset();
    QCOMPARE(bench.loader.unloads, 1);
    QCOMPARE(bench.driver.inits, 0);
}

void TestProviderNvml::driverWithoutHardwareGivesNoGpus()
{
    Bench bench;
    bench.driver.add({ "Quadro" });
    bench.driver.initStatus = 9;

    QVERIFY(!bench.provider->discoverGPUs());
    QCOMPARE(bench.log.lines().last(), text("warning: nvmlInit failed with 9"));

    // It may be there later, as an external one is.
    bench.driver.initStatus = GPU::NVML_SUCCESS;
    QVERIFY(bench.provider->discoverGPUs());
    QCOMPARE(bench.driver.inits, 2);
}

void TestProviderNvml::failedCountGivesNoGpus()
{
    Bench bench;
    bench.driver.add({ "Quadro" });
    bench.driver.countStatus = FakeNvml::failure;

    QVERIFY(!bench.provider->discoverGPUs());

    QCOMPARE(bench.log.lines().last(), text("error: nvmlDeviceGetCount failed"));
}

void TestProviderNvml::gpuThatCannotBeNamedIsSkipped_data()
{
    QTest::addColumn<int>("handleStatus");
    QTest::addColumn<int>("nameStatus");
    QTest::newRow("no handle") << FakeNvml::failure << GPU::NVML_SUCCESS;
    QTest::newRow("no name") << GPU::NVML_SUCCESS << FakeNvml::failure;
}

void TestProviderNvml::gpuThatCannotBeNamedIsSkipped()
{
    QFETCH(int, handleStatus);
    QFETCH(int, nameStatus);
    Bench bench;
    bench.driver.add({ "Lost", 50, handleStatus, nameStatus });
    bench.driver.add({ "Quadro" });

    QVERIFY(bench.provider->discoverGPUs());

    QCOMPARE(bench.provider->getCount(), 1);
    QCOMPARE(bench.provider->getGpu(0)->name, text("Quadro"));
}

void TestProviderNvml::nameWithoutEndIsAsLongAsItsBuffer()
{
    Bench bench;
    bench.driver.add({ std::string(200, 'Q') });

    QVERIFY(bench.provider->discoverGPUs());

    QCOMPARE(bench.provider->getGpu(0)->name, QString(96, QLatin1Char('Q')));
}

void TestProviderNvml::countBeyondAnyMachineIsCut_data()
{
    QTest::addColumn<unsigned>("count");
    QTest::newRow("1000") << 1000U;
    QTest::newRow("-1") << 0xFFFFFFFFU;
}

void TestProviderNvml::countBeyondAnyMachineIsCut()
{
    QFETCH(unsigned, count);
    Bench bench;
    for (int i = 0; i < 100; ++i) {
        bench.driver.add({ "Tesla" });
    }
    bench.driver.claimedCount = count;

    QVERIFY(bench.provider->discoverGPUs());

    QCOMPARE(bench.provider->getCount(), 64);
}

void TestProviderNvml::temperatureIsRead()
{
    Bench bench;
    bench.driver.add({ "Quadro", 61 });
    QVERIFY(bench.provider->discoverGPUs());

    QCOMPARE(bench.provider->getTemperature(bench.provider->getGpu(0)), 61.0);
}

void TestProviderNvml::failedReadingIsZero()
{
    Bench bench;
    bench.driver.add({ "Quadro", 61 });
    QVERIFY(bench.provider->discoverGPUs());
    bench.driver.gpus[0].temperatureStatus = FakeNvml::failure;

    QCOMPARE(bench.provider->getTemperature(bench.provider->getGpu(0)), 0.0);
    QCOMPARE(bench.provider->getTemperature(nullptr), 0.0);
}

void TestProviderNvml::sessionLastsUntilTheEnd()
{
    Bench bench;
    bench.driver.add({ "Quadro" });
    QVERIFY(bench.provider->discoverGPUs());
    bench.provider->clear();
    QCOMPARE(bench.provider->getCount(), 0);
    QVERIFY(bench.provider->discoverGPUs());
    QCOMPARE(bench.provider->getCount(), 1);
    QCOMPARE(bench.driver.sessions, 1);

    bench.provider.reset();

    QCOMPARE(bench.driver.sessions, 0);
    QCOMPARE(bench.loader.loads.size(), 1);
    QCOMPARE(bench.loader.unloads, 1);
}

BRISORA_TEST_MAIN(TestProviderNvml, QCoreApplication)
#include "test_provider_nvml.moc"
