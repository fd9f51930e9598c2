#include <limits>

#include <QCoreApplication>

#include "tests/gpu/amdbench.h"
#include "tests/support/testenvironment.h"

namespace {

QString text(const char* value) { return QString::fromUtf8(value); }

} // namespace

class TestProviderWindowsAMD : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void libraryIsLoadedByEitherName_data();
    void libraryIsLoadedByEitherName();
    void withoutALibraryThereAreNoGpus();
    void everyNeededFunctionMustBeThere_data();
    void everyNeededFunctionMustBeThere();
    void driverThatCannotBeStartedGivesNoGpus_data();
    void driverThatCannotBeStartedGivesNoGpus();
    void driverIsAskedInOrder();
    void adaptersOfAmdBecomeGpus();
    void oneGpuIsFoundOnce();
    void placesAreComparedByTheirBits_data();
    void placesAreComparedByTheirBits();
    void adaptersAreLogged();
    void unknownPrimaryAdapterIsNone();
    void unusableCountsAreRefused_data();
    void unusableCountsAreRefused();
    void longListFitsItsBuffer();
    void listThatCannotBeReadIsLogged();
    void nameWithoutEndIsAsLongAsItsField();
    void namesInTheLogStayOnTheirLines();
    void clearForgetsEverything();
    void eachDiscoveryHasASessionOfItsOwn();
    void libraryIsUnloadedInTheEnd();
};

void TestProviderWindowsAMD::libraryIsLoadedByEitherName_data()
{
    QTest::addColumn<QByteArray>("library");
    QTest::addColumn<QStringList>("loads");
    QTest::newRow("of the system's width")
        << QByteArray("atiadlxx.dll") << QStringList { text("atiadlxx.dll") };
    QTest::newRow("32 bits on 64")
        << QByteArray("atiadlxy.dll") << QStringList { text("atiadlxx.dll"), text("atiadlxy.dll") };
}

void TestProviderWindowsAMD::libraryIsLoadedByEitherName()
{
    QFETCH(QByteArray, library);
    QFETCH(QStringList, loads);
    AmdBench bench(library.constData());
    bench.driver.add("Radeon", 1);

    QVERIFY(bench.provider->discoverGPUs());

    QCOMPARE(bench.loader.loads, loads);
    QCOMPARE(bench.log.lines().first(), QStringLiteral("info: %1 loaded").arg(text(library)));
}

void TestProviderWindowsAMD::withoutALibraryThereAreNoGpus()
{
    AmdBench bench("other.dll");

    QVERIFY(!bench.provider->discoverGPUs());

    QCOMPARE(bench.log.take(),
             QStringList({ text("error: Failed to load atiadlxx.dll, error = 126"),
                           text("error: ADL init failed") }));
    // The library is looked for once.
    QVERIFY(!bench.provider->discoverGPUs());
    QCOMPARE(bench.log.take(), QStringList { text("error: ADL init failed") });
    QCOMPARE(bench.loader.loads.size(), 2);
    bench.provider.reset();
    QCOMPARE(bench.loader.unloads, 0);
}

void TestProviderWindowsAMD::everyNeededFunctionMustBeThere_data()
{
    QTest::addColumn<bool>("isNeeded");
    const auto functions = FakeAdl::functions();
    const QStringList needed {
        text("ADL_Main_Control_Create"),          text("ADL_Main_Control_Destroy"),
        text("ADL_Adapter_NumberOfAdapters_Get"), text("ADL_Adapter_AdapterInfo_Get"),
        text("ADL2_Adapter_Primary_Get"),         text("ADL2_Main_Control_Create")
    };
    for (const auto& [name, function] : functions) {
        QTest::newRow(name.c_str()) << needed.contains(QString::fromStdString(name));
    }
}

void TestProviderWindowsAMD::everyNeededFunctionMustBeThere()
{
    QFETCH(bool, isNeeded);
    AmdBench bench;
    bench.driver.add("Radeon", 1);
    QCOMPARE(bench.loader.libraries["atiadlxx.dll"].erase(QTest::currentDataTag()), std::size_t(1));

    QCOMPARE(bench.provider->discoverGPUs(), !isNeeded);

    QCOMPARE(bench.log.contains(text("error: ADL init failed")), isNeeded);
    QCOMPARE(bench.provider->getCount(), isNeeded ? 0 : 1);
}

void TestProviderWindowsAMD::driverThatCannotBeStartedGivesNoGpus_data()
{
    QTest::addColumn<bool>("starts");
    QTest::addColumn<bool>("starts2");
    QTest::addColumn<bool>("givesContext");
    QTest::addColumn<QStringList>("lines");
    const QString failed = text("error: ADL init failed");
    const QString failed2 = text("error: Failed to initialize ADL2 context");
    QTest::newRow("the first") << false << true << true << QStringList { failed };
    QTest::newRow("the second") << true << false << true << QStringList { failed2, failed };
    QTest::newRow("both") << false << false << true << QStringList { failed2, failed };
    QTest::newRow("no context") << true << true << false << QStringList { failed2, failed };
}

void TestProviderWindowsAMD::driverThatCannotBeStartedGivesNoGpus()
{
    QFETCH(bool, starts);
    QFETCH(bool, starts2);
    QFETCH(bool, givesContext);
    QFETCH(QStringList, lines);
    AmdBench bench;
    bench.driver.add("Radeon", 1);
    bench.driver.createStatus = starts ? GPU::ADL_OK : FakeAdl::failure;
    bench.driver.create2Status = starts2 ? GPU::ADL_OK : FakeAdl::failure;
    bench.driver.createsContext = givesContext;

    QVERIFY(!bench.provider->discoverGPUs());

    QCOMPARE(bench.log.lines().mid(1), lines);
    QCOMPARE(bench.driver.sessions, 0);
    QCOMPARE(bench.driver.sessions2, 0);
}

void TestProviderWindowsAMD::driverIsAskedInOrder()
{
    AmdBench bench;
    bench.driver.add("Radeon", 1);

    QVERIFY(bench.provider->discoverGPUs());

    QCOMPARE(bench.driver.steps,
             QStringList({ text("create"), text("create 2"), text("count"), text("primary"),
                           text("list"), text("capabilities") }));
}

void TestProviderWindowsAMD::adaptersOfAmdBecomeGpus()
{
    AmdBench bench;
    bench.driver.add("Intel Graphics", 0, 2, 0, 8086);
    bench.driver.add("Radeon R9 M370X", 1);
    bench.driver.add("Radeon RX 580", 5);

    QVERIFY(bench.provider->discoverGPUs());

    QCOMPARE(bench.names(), QStringList({ text("Radeon R9 M370X"), text("Radeon RX 580") }));
    const GPU::Info* gpu = bench.provider->getGpu(1);
    QCOMPARE(gpu->provider, bench.provider.get());
    QVERIFY(gpu->handle != nullptr);
    QVERIFY(!gpu->noSmcMatch);
    QVERIFY(bench.provider->getGpu(2) == nullptr);
    QVERIFY(bench.provider->getGpu(-1) == nullptr);
}

void TestProviderWindowsAMD::oneGpuIsFoundOnce()
{
    AmdBench bench;
    bench.driver.add("First display", 1);
    bench.driver.add("Second display", 1);
    bench.driver.add("Second function", 1, 0, 1);
    bench.driver.add("Second device", 1, 1, 0);

    QVERIFY(bench.provider->discoverGPUs());

    QCOMPARE(
        bench.names(),
        QStringList({ text("First display"), text("Second function"), text("Second device") }));
    // A second discovery finds nothing new.
    QVERIFY(bench.provider->discoverGPUs());
    QCOMPARE(bench.provider->getCount(), 3);
}

void TestProviderWindowsAMD::placesAreComparedByTheirBits_data()
{
    QTest::addColumn<int>("bus");
    QTest::addColumn<int>("device");
    QTest::addColumn<int>("function");
    QTest::addColumn<int>("gpus");
    // Beside a GPU at bus 1, device 2, function 3.
    QTest::newRow("the same") << 1 << 2 << 3 << 1;
    QTest::newRow("bus beyond a byte") << 257 << 2 << 3 << 1;
    QTest::newRow("device beyond five bits") << 1 << 34 << 3 << 1;
    QTest::newRow("function beyond three bits") << 1 << 2 << 11 << 1;
    QTest::newRow("negative numbers") << -255 << -30 << -5 << 1;
    QTest::newRow("another bus") << 2 << 2 << 3 << 2;
    QTest::newRow("bus and device change places") << 2 << 1 << 3 << 2;
}

void TestProviderWindowsAMD::placesAreComparedByTheirBits()
{
    QFETCH(int, bus);
    QFETCH(int, device);
    QFETCH(int, function);
    AmdBench bench;
    bench.driver.add("Radeon", 1, 2, 3);
    bench.driver.add("Radeon", bus, device, function);

    QVERIFY(bench.provider->discoverGPUs());

    QTEST(bench.provider->getCount(), "gpus");
}

void TestProviderWindowsAMD::adaptersAreLogged()
{
    AmdBench bench;
    bench.driver.add("Radeon R9 M370X", 1, 2, 3);
    bench.driver.add("Radeon RX 580", 5);
    bench.driver.adapters[1].iPresent = 0;
    bench.driver.primary = 1;
    bench.driver.capabilities[1] = { GPU::ADL_OK, 1, 0, 7 };

    QVERIFY(bench.provider->discoverGPUs());

    QCOMPARE(bench.log.lines(),
             QStringList({
                 text("info: atiadlxx.dll loaded"),
                 text("info: ADL_Adapter_AdapterInfo_Get 2"),
                 text("info: Adapter[0]"),
                 text("\tAdapter Index: 10"),
                 text("\tUDID: PCI_VEN_1002"),
                 text("\tLocation: PCI bus 1, device 2, function 3"),
                 text("\tVendorID: 1002"),
                 text("\tAdapter Name: Radeon R9 M370X"),
                 text("\tDisplay Name: \\\\.\\DISPLAY1"),
                 text("\tPresent: yes"),
                 text("\tPrimary: no"),
                 text("info: iOverdriveSupported - 1, iOverdriveEnabled = 1, "
                      "iOverdriveVersion = 8"),
                 text("info: Adapter[1]"),
                 text("\tAdapter Index: 11"),
                 text("\tUDID: PCI_VEN_1002"),
                 text("\tLocation: PCI bus 5, device 0, function 0"),
                 text("\tVendorID: 1002"),
                 text("\tAdapter Name: Radeon RX 580"),
                 text("\tDisplay Name: \\\\.\\DISPLAY1"),
                 text("\tPresent: no"),
                 text("\tPrimary: yes"),
                 text("info: iOverdriveSupported - 1, iOverdriveEnabled = 0, "
                      "iOverdriveVersion = 7"),
             }));
}

void TestProviderWindowsAMD::unknownPrimaryAdapterIsNone()
{
    AmdBench bench;
    bench.driver.add("Radeon", 1);
    bench.driver.primaryStatus = FakeAdl::failure;

    QVERIFY(bench.provider->discoverGPUs());

    QVERIFY(bench.log.contains(text("\tPrimary: no")));
}

void TestProviderWindowsAMD::unusableCountsAreRefused_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("status");
    QTest::newRow("none") << 0 << GPU::ADL_OK;
    QTest::newRow("negative") << -1 << GPU::ADL_OK;
    QTest::newRow("least") << std::numeric_limits<int>::min() << GPU::ADL_OK;
    QTest::newRow("too many") << 1025 << GPU::ADL_OK;
    QTest::newRow("most") << std::numeric_limits<int>::max() << GPU::ADL_OK;
    QTest::newRow("not told") << 1 << FakeAdl::failure;
}

void TestProviderWindowsAMD::unusableCountsAreRefused()
{
    QFETCH(int, count);
    QFETCH(int, status);
    AmdBench bench;
    bench.driver.add("Radeon", 1);
    bench.driver.count = count;
    bench.driver.countStatus = status;

    QVERIFY(!bench.provider->discoverGPUs());

    QCOMPARE(bench.log.lines().last(), text("error: ADL_Adapter_AdapterInfo_Get failed"));
    QCOMPARE(bench.driver.listBytes, -1);
}

void TestProviderWindowsAMD::longListFitsItsBuffer()
{
    AmdBench bench;
    bench.driver.add("Radeon", 1);
    bench.driver.count = 1000;

    QVERIFY(bench.provider->discoverGPUs());

    QCOMPARE(bench.driver.listBytes, 1000 * 1572);
    QVERIFY(bench.log.contains(text("info: ADL_Adapter_AdapterInfo_Get 1000")));
    // The driver has left the others empty.
    QCOMPARE(bench.provider->getCount(), 1);
}

void TestProviderWindowsAMD::listThatCannotBeReadIsLogged()
{
    AmdBench bench;
    bench.driver.add("Radeon", 1);
    bench.driver.listStatus = FakeAdl::failure;

    QVERIFY(!bench.provider->discoverGPUs());

    QCOMPARE(bench.log.lines().last(), text("error: ADL_Adapter_AdapterInfo_Get failed"));
}

void TestProviderWindowsAMD::nameWithoutEndIsAsLongAsItsField()
{
    AmdBench bench;
    bench.driver.add("Radeon", 1);
    bench.driver.adapters[0].strAdapterName.fill('R');
    bench.driver.adapters[0].strUDID.fill('U');

    QVERIFY(bench.provider->discoverGPUs());

    QCOMPARE(bench.names(), QStringList { QString(256, QLatin1Char('R')) });
    QVERIFY(bench.log.contains(QStringLiteral("\tUDID: ") + QString(256, QLatin1Char('U'))));
}

void TestProviderWindowsAMD::namesInTheLogStayOnTheirLines()
{
    AmdBench bench;
    bench.driver.add("Radeon\nerror: forged", 1);

    QVERIFY(bench.provider->discoverGPUs());

    QVERIFY(bench.log.contains(text("\tAdapter Name: Radeon\\nerror: forged")));
}

void TestProviderWindowsAMD::clearForgetsEverything()
{
    AmdBench bench;
    bench.driver.add("Radeon", 1);
    QVERIFY(bench.provider->discoverGPUs());

    bench.provider->clear();

    QCOMPARE(bench.provider->getCount(), 0);
    QVERIFY(bench.provider->discoverGPUs());
    QCOMPARE(bench.provider->getCount(), 1);
}

void TestProviderWindowsAMD::eachDiscoveryHasASessionOfItsOwn()
{
    AmdBench bench;
    bench.driver.add("Radeon", 1);
    QVERIFY(bench.provider->discoverGPUs());
    bench.provider->clear();
    QVERIFY(bench.provider->discoverGPUs());

    QCOMPARE(bench.driver.created, 2);
    QCOMPARE(bench.driver.sessions, 1);
    QCOMPARE(bench.driver.sessions2, 1);
    QCOMPARE(bench.loader.loads.size(), 1);
}

void TestProviderWindowsAMD::libraryIsUnloadedInTheEnd()
{
    AmdBench bench;
    bench.driver.add("Radeon", 1);
    QVERIFY(bench.provider->discoverGPUs());
    bench.provider->clear();
    QCOMPARE(bench.loader.unloads, 0);

    bench.provider.reset();

    QCOMPARE(bench.loader.unloads, 1);
    QCOMPARE(bench.driver.sessions, 0);
    QCOMPARE(bench.driver.sessions2, 0);
}

BRISORA_TEST_MAIN(TestProviderWindowsAMD, QCoreApplication)
#include "test_provider_win_amd.moc"
