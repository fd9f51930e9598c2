#include <QCoreApplication>

#include "tests/gpu/amdbench.h"
#include "tests/support/testenvironment.h"

namespace {

QString text(const char* value) { return QString::fromUtf8(value); }

} // namespace

class TestProviderWindowsAMDTemperature : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void unknownCapabilitiesAreLogged();
    void temperatureIsReadByTheOverdriveVersion_data();
    void temperatureIsReadByTheOverdriveVersion();
    void failedReadingIsZero_data();
    void failedReadingIsZero();
    void sensorThatIsNotSupportedIsZero();
    void missingTemperatureFunctionIsAFailure_data();
    void missingTemperatureFunctionIsAFailure();
    void noGpuHasNoTemperature();
    void adapterNumberIsItsPlaceInTheList();
};

void TestProviderWindowsAMDTemperature::unknownCapabilitiesAreLogged()
{
    AmdBench bench;
    bench.driver.add("Radeon", 1);
    bench.driver.capabilities[0] = { FakeAdl::failure, 1, 1, 8 };
    bench.driver.thousandths = 61500;

    QVERIFY(bench.provider->discoverGPUs());

    QCOMPARE(bench.log.lines().last(), text("error: Can’t get Overdrive capabilities"));
    // Whatever the driver has put there, the version is not known.
    QCOMPARE(bench.temperature(), 61.5);
    QCOMPARE(bench.driver.calls, QStringList { text("5 0 8") });
}

void TestProviderWindowsAMDTemperature::temperatureIsReadByTheOverdriveVersion_data()
{
    QTest::addColumn<int>("version");
    QTest::addColumn<QString>("call");
    QTest::addColumn<double>("celsius");
    QTest::newRow("unknown") << -1 << text("5 0 8") << 45.25;
    QTest::newRow("0") << 0 << text("5 0 8") << 45.25;
    QTest::newRow("6") << 6 << text("5 0 8") << 45.25;
    QTest::newRow("7") << 7 << text("N 0 1") << 45.25;
    QTest::newRow("8") << 8 << text("log 0 2052") << 67.0;
    QTest::newRow("9") << 9 << text("log 0 2052") << 67.0;
}

void TestProviderWindowsAMDTemperature::temperatureIsReadByTheOverdriveVersion()
{
    QFETCH(int, version);
    QFETCH(QString, call);
    AmdBench bench;
    bench.driver.add("Radeon", 1);
    bench.driver.capabilities[0].version = version;
    bench.driver.thousandths = 45250;
    bench.driver.log.sensors[8] = { 1, 67 };
    QVERIFY(bench.provider->discoverGPUs());
    bench.log.clear();

    QTEST(bench.temperature(), "celsius");

    QCOMPARE(bench.driver.calls, QStringList { call });
    QCOMPARE(bench.log.lines(), QStringList());
}

void TestProviderWindowsAMDTemperature::failedReadingIsZero_data()
{
    QTest::addColumn<int>("version");
    QTest::addColumn<QString>("line");
    QTest::newRow("6") << 6 << text("warning: ADL_Overdrive5_Temperature_Get failed");
    QTest::newRow("7") << 7 << text("warning: ADL2_OverdriveN_Temperature_Get failed");
    QTest::newRow("8") << 8 << text("warning: ADL2_New_QueryPMLogData_Get failed");
}

void TestProviderWindowsAMDTemperature::failedReadingIsZero()
{
    QFETCH(int, version);
    QFETCH(QString, line);
    AmdBench bench;
    bench.driver.add("Radeon", 1);
    bench.driver.capabilities[0].version = version;
    bench.driver.thousandths = 45250;
    bench.driver.log.sensors[8] = { 1, 67 };
    bench.driver.temperatureStatus = FakeAdl::failure;
    QVERIFY(bench.provider->discoverGPUs());
    bench.log.clear();

    QCOMPARE(bench.temperature(), 0.0);

    QCOMPARE(bench.log.lines(), QStringList { line });
}

void TestProviderWindowsAMDTemperature::sensorThatIsNotSupportedIsZero()
{
    AmdBench bench;
    bench.driver.add("Radeon", 1);
    bench.driver.log.sensors[8] = { 0, 67 };
    QVERIFY(bench.provider->discoverGPUs());
    bench.log.clear();

    QCOMPARE(bench.temperature(), 0.0);

    QCOMPARE(bench.log.lines(),
             QStringList { text("warning: ADL_PMLOG_TEMPERATURE_EDGE not supported") });
}

void TestProviderWindowsAMDTemperature::missingTemperatureFunctionIsAFailure_data()
{
    QTest::addColumn<int>("version");
    QTest::newRow("ADL_Overdrive5_Temperature_Get") << 6;
    QTest::newRow("ADL2_OverdriveN_Temperature_Get") << 7;
    QTest::newRow("ADL2_New_QueryPMLogData_Get") << 8;
}

void TestProviderWindowsAMDTemperature::missingTemperatureFunctionIsAFailure()
{
    QFETCH(int, version);
    AmdBench bench;
    bench.driver.add("Radeon", 1);
    bench.driver.capabilities[0].version = version;
    bench.driver.thousandths = 45250;
    QCOMPARE(bench.loader.libraries["atiadlxx.dll"].erase(QTest::currentDataTag()), std::size_t(1));
    QVERIFY(bench.provider->discoverGPUs());
    bench.log.clear();

    QCOMPARE(bench.temperature(), 0.0);

    QCOMPARE(
        bench.log.lines(),
        QStringList { QStringLiteral("warning: %1 failed").arg(text(QTest::currentDataTag())) });
}

void TestProviderWindowsAMDTemperature::noGpuHasNoTemperature()
{
    AmdBench bench;
    QCOMPARE(bench.provider->getTemperature(nullptr), 0.0);
}

void TestProviderWindowsAMDTemperature::adapterNumberIsItsPlaceInTheList()
{
    AmdBench bench;
    bench.driver.add("Intel Graphics", 0, 2, 0, 8086);
    bench.driver.add("Radeon", 1);
    bench.driver.add("Radeon, second display", 1);
    bench.driver.add("Radeon Pro", 2);
    bench.driver.capabilities[3].version = 7;
    QVERIFY(bench.provider->discoverGPUs());

    static_cast<void>(bench.provider->getTemperature(bench.provider->getGpu(0)));
    static_cast<void>(bench.provider->getTemperature(bench.provider->getGpu(1)));

    QCOMPARE(bench.driver.calls, QStringList({ text("log 1 2052"), text("N 3 1") }));
}

BRISORA_TEST_MAIN(TestProviderWindowsAMDTemperature, QCoreApplication)
#include "test_provider_win_amd_temperature.moc"
