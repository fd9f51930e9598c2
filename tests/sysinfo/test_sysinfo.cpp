#include <QCoreApplication>

#include "app/sysinfo/sysinfo.h"
#include "tests/support/fakemachineidentity.h"
#include "tests/support/logcapture.h"
#include "tests/support/testenvironment.h"
#include "tests/sysinfo/smbiosblock.h"

namespace {

// Leaves a machine that says nothing.
void silence(FakeMachineIdentity& identity)
{
    identity.management.manufacturer.clear();
    identity.management.model.clear();
}

QString apple() { return QStringLiteral("Apple Inc."); }

QByteArray table(const char* manufacturer, const char* product)
{
    return SmbiosBlock::block(SmbiosBlock::machine(manufacturer, product) + SmbiosBlock::end());
}

} // namespace

class TestSysInfo : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void firstSourceIsEnough();
    void registryIsTheSecondSource();
    void registryIsAskedWhenEitherTextLacks_data();
    void registryIsAskedWhenEitherTextLacks();
    void firmwareIsTheThirdSource();
    void firmwareFollowsRegistryWithoutManufacturer();
    void registryWithoutModelEndsTheSearch();
    void managementTableServesWhereTheFirmwareHasNone();
    void firmwareTableGoesBeforeTheManagementTable();
    void firmwareStructureWithoutTextsIsNoFailure();
    void noSourceGivesAnUnknownMachine();
    void manufacturerDecides_data();
    void manufacturerDecides();
    void lineBreaksInIdentityAreEscapedInTheLog();
    void foreignModelHasNoFamily();
    void operatingSystemNameIsTaken();
    void brandIsTidied_data();
    void brandIsTidied();
    void coreCountOfTheProcessorGoesFirst();
    void coreCountOfTheOperatingSystemIsTheFallback();
    void processorThatCannotBeAskedLeavesBothEmpty();
    void recordOfTheFirstSourceIsKept();
};

void TestSysInfo::firstSourceIsEnough()
{
    FakeMachineIdentity identity(QStringLiteral("MacBookPro15,1"));
    identity.registryExists = true;
    const LogCapture log;

    const SystemInfo info(identity);

    QCOMPARE(info.machineName(), QStringLiteral("MacBookPro15,1"));
    QCOMPARE(info.family(), ModelFamily::MacBookPro);
    QCOMPARE(info.modelNumber(), std::uint16_t(151));
    QCOMPARE(log.lines(), QStringList { QStringLiteral("info: platform_getMachineName") });
}

void TestSysInfo::registryIsTheSecondSource()
{
    FakeMachineIdentity identity;
    silence(identity);
    identity.registryExists = true;
    identity.registry = ManufacturerAndModel { apple(), QStringLiteral("iMac20,1") };
    const LogCapture log;

    const SystemInfo info(identity);

    QCOMPARE(info.machineName(), QStringLiteral("iMac20,1"));
    QCOMPARE(log.lines(),
             QStringList({ QStringLiteral("info: platform_getMachineName"),
                           QStringLiteral("info: readFromRegistry"),
                           QStringLiteral("info: Manufacturer: Apple Inc."),
                           QStringLiteral("info: Product Name: iMac20,1") }));
}

void TestSysInfo::registryIsAskedWhenEitherTextLacks_data()
{
    QTest::addColumn<QString>("manufacturer");
    QTest::addColumn<QString>("model");
    QTest::addColumn<QString>("expected");

    QTest::newRow("no model") << apple() << QString() << "iMac20,1";
    QTest::newRow("no manufacturer") << QString() << "iMac7,1"
                                     << "iMac20,1";
    QTest::newRow("both there") << apple() << "iMac7,1"
                                << "iMac7,1";
}

void TestSysInfo::registryIsAskedWhenEitherTextLacks()
{
    QFETCH(QString, manufacturer);
    QFETCH(QString, model);
    FakeMachineIdentity identity(model);
    identity.management.manufacturer = manufacturer;
    identity.registryExists = true;
    identity.registry = ManufacturerAndModel { apple(), QStringLiteral("iMac20,1") };

    QTEST(SystemInfo(identity).machineName(), "expected");
}

void TestSysInfo::firmwareIsTheThirdSource()
{
    FakeMachineIdentity identity;
    silence(identity);
    identity.registryExists = true;
    identity.firmware = table("Apple Inc.", "Macmini8,1");
    const LogCapture log;

    const SystemInfo info(identity);

    QCOMPARE(info.machineName(), QStringLiteral("Macmini8,1"));
    QCOMPARE(info.family(), ModelFamily::Macmini);
    QCOMPARE(log.lines(),
             QStringList({ QStringLiteral("info: platform_getMachineName"),
                           QStringLiteral("info: readFromRegistry"),
                           QStringLiteral("warning: Unable to open registry key"),
                           QStringLiteral("info: readFromBIOS"),
                           QStringLiteral("info: Manufacturer: Apple Inc."),
                           QStringLiteral("info: Product Name: Macmini8,1") }));
}

void TestSysInfo::firmwareFollowsRegistryWithoutManufacturer()
{
    FakeMachineIdentity identity;
    silence(identity);
    identity.registryExists = true;
    identity.registry = ManufacturerAndModel { QString(), QStringLiteral("iMac20,1") };
    identity.firmware = table("Apple Inc.", "Macmini8,1");
    const LogCapture log;

    const SystemInfo info(identity);

    QCOMPARE(info.machineName(), QStringLiteral("Macmini8,1"));
    QVERIFY(log.contains(QStringLiteral("info: Product Name: iMac20,1")));
}

void TestSysInfo::registryWithoutModelEndsTheSearch()
{
    FakeMachineIdentity identity;
    silence(identity);
    identity.registryExists = true;
    identity.registry = ManufacturerAndModel { apple(), QString() };
    identity.firmware = table("Apple Inc.", "Macmini8,1");

    QCOMPARE(SystemInfo(identity).machineName(), QString());
}

void TestSysInfo::managementTableServesWhereTheFirmwareHasNone()
{
    FakeMachineIdentity identity;
    silence(identity);
    identity.management.smbiosData = table("Apple Inc.", "MacPro5,1");

    QCOMPARE(SystemInfo(identity).machineName(), QStringLiteral("MacPro5,1"));
}

void TestSysInfo::firmwareTableGoesBeforeTheManagementTable()
{
    FakeMachineIdentity identity;
    silence(identity);
    identity.management.smbiosData = table("Apple Inc.", "MacPro5,1");
    identity.firmware = table("Apple Inc.", "MacPro6,1");

    QCOMPARE(SystemInfo(identity).machineName(), QStringLiteral("MacPro6,1"));
}

void TestSysInfo::firmwareStructureWithoutTextsIsNoFailure()
{
    FakeMachineIdentity identity;
    silence(identity);
    identity.firmware
        = SmbiosBlock::block(SmbiosBlock::structure(1, SmbiosBlock::bytes({ 0, 0, 0, 0 }), {}));
    const LogCapture log;

    const SystemInfo info(identity);

    QCOMPARE(info.machineName(), QString());
    QVERIFY(log.contains(QStringLiteral("info: Manufacturer: ")));
    QVERIFY(!log.contains(QStringLiteral("warning: Unable to read BIOS system info")));
}

void TestSysInfo::noSourceGivesAnUnknownMachine()
{
    FakeMachineIdentity identity;
    silence(identity);
    const LogCapture log;

    const SystemInfo info(identity);

    QCOMPARE(info.machineName(), QString());
    QCOMPARE(info.family(), ModelFamily::Undefined);
    QCOMPARE(info.modelNumber(), std::uint16_t(0));
    QVERIFY(info.isModelMatch("all"));
    QCOMPARE(
        log.lines(),
        QStringList({ QStringLiteral("info: platform_getMachineName"),
                      QStringLiteral("info: readFromBIOS"),
                      QStringLiteral("warning: Unable to read BIOS system info"),
                      QStringLiteral("warning: Manufacturer string doesn't contain Apple ('')") }));
}

void TestSysInfo::manufacturerDecides_data()
{
    QTest::addColumn<QString>("manufacturer");
    QTest::addColumn<QString>("expected");

    QTest::newRow("usual") << "Apple Inc."
                           << "iMac7,1";
    QTest::newRow("anywhere") << "by Apple"
                              << "iMac7,1";
    QTest::newRow("other case") << "apple"
                                << "";
    QTest::newRow("other maker") << "Dell Inc."
                                 << "";
}

void TestSysInfo::manufacturerDecides()
{
    QFETCH(QString, manufacturer);
    QFETCH(QString, expected);
    FakeMachineIdentity identity(QStringLiteral("iMac7,1"));
    identity.management.manufacturer = manufacturer;
    const LogCapture log;

    const SystemInfo info(identity);

    QCOMPARE(info.machineName(), expected);
    QCOMPARE(
        log.contains(QStringLiteral("warning: Manufacturer string doesn't contain Apple ('%1')")
                         .arg(manufacturer)),
        expected.isEmpty());
}

void TestSysInfo::lineBreaksInIdentityAreEscapedInTheLog()
{
    FakeMachineIdentity identity(QStringLiteral("iMac7,1"));
    identity.management.manufacturer = QStringLiteral("Evil\nCorp");
    const LogCapture log;

    const SystemInfo info(identity);

    QVERIFY(log.contains(
        QStringLiteral("warning: Manufacturer string doesn't contain Apple ('Evil\\nCorp')")));
}

void TestSysInfo::foreignModelHasNoFamily()
{
    FakeMachineIdentity identity(QStringLiteral("PowerBook5,1"));

    const SystemInfo info(identity);

    QCOMPARE(info.machineName(), QStringLiteral("PowerBook5,1"));
    QCOMPARE(info.family(), ModelFamily::Undefined);
}

void TestSysInfo::operatingSystemNameIsTaken()
{
    FakeMachineIdentity identity;
    identity.osName = QStringLiteral("Windows 10 x64");
    QCOMPARE(SystemInfo(identity).osName(), QStringLiteral("Windows 10 x64"));
}

void TestSysInfo::brandIsTidied_data()
{
    QTest::addColumn<QString>("brand");
    QTest::addColumn<QString>("expected");

    QTest::newRow("as it is") << "Intel(R) Core(TM) i7 CPU @ 2.30GHz"
                              << "Intel(R) Core(TM) i7 CPU @ 2.30GHz";
    QTest::newRow("blanks around") << "  Intel CPU  "
                                   << "Intel CPU";
    QTest::newRow("two blanks within") << "Intel  CPU"
                                       << "Intel CPU";
    QTest::newRow("runs of blanks") << "Intel \t  CPU     @ 2 GHz"
                                    << "Intel CPU @ 2 GHz";
    QTest::newRow("only blanks") << "     "
                                 << "";
    QTest::newRow("empty") << ""
                           << "";
}

void TestSysInfo::brandIsTidied()
{
    QFETCH(QString, brand);
    FakeMachineIdentity identity;
    identity.cpu = MachineIdentity::Processor { brand, std::nullopt };
    QTEST(SystemInfo(identity).cpuName(), "expected");
}

void TestSysInfo::coreCountOfTheProcessorGoesFirst()
{
    FakeMachineIdentity identity;
    identity.cpu = MachineIdentity::Processor { QStringLiteral("CPU"), std::uint8_t(6) };
    identity.coreCount = 12;
    QCOMPARE(SystemInfo(identity).coreCount(), std::uint8_t(6));
}

void TestSysInfo::coreCountOfTheOperatingSystemIsTheFallback()
{
    FakeMachineIdentity identity;
    identity.cpu = MachineIdentity::Processor { QStringLiteral("CPU"), std::nullopt };
    identity.coreCount = 12;
    QCOMPARE(SystemInfo(identity).coreCount(), std::uint8_t(12));
}

void TestSysInfo::processorThatCannotBeAskedLeavesBothEmpty()
{
    FakeMachineIdentity identity;
    identity.cpu.reset();
    identity.coreCount = 12;

    const SystemInfo info(identity);

    QCOMPARE(info.cpuName(), QString());
    QCOMPARE(info.coreCount(), std::uint8_t(0));
}

void TestSysInfo::recordOfTheFirstSourceIsKept()
{
    FakeMachineIdentity identity;
    identity.management.videoControllers = QStringList { QStringLiteral("Radeon") };
    QCOMPARE(SystemInfo(identity).wmiSystemData().videoControllers,
             QStringList { QStringLiteral("Radeon") });
}

BRISORA_TEST_MAIN(TestSysInfo, QCoreApplication)
#include "test_sysinfo.moc"
