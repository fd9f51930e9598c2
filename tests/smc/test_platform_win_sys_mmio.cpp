#include <QCoreApplication>
#include <QTemporaryDir>

#include "app/smc/options.h"
#include "app/smc/platform_win_sys_mmio.h"
#include "tests/smc/fakedrivercalls.h"
#include "tests/support/logcapture.h"
#include "tests/support/testenvironment.h"

using SMC::Option;

namespace {

QString text(const char* value) { return QString::fromLatin1(value); }

constexpr const char* serviceDevice = "open \\\\.\\APPLESMCNONPNP c0000000 3 3 80";

// The transport of the program's own driver over a fake driver.
struct Bench {
    QStringList calls;
    FakeDriverCalls* driver = nullptr; // the transport's
    std::unique_ptr<SMC::PlatformWinProviderMMIO> mmio;

    Bench()
    {
        auto fake = std::make_unique<FakeDriverCalls>(calls);
        driver = fake.get();
        driver->interfaces = { { text("path 0") } };
        mmio = std::make_unique<SMC::PlatformWinProviderMMIO>(std::move(fake));
    }

    void open()
    {
        QVERIFY(mmio->open());
        calls.clear();
    }
};

} // namespace

class TestPlatformWinSysMmio : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { SMC::Options::clear(); }

    void aPlugAndPlayDeviceIsOpened();
    void theNextInterfaceIsTried();
    void anInterfaceThatCannotBeListedIsPassedOver();
    void noInterfaceIsTold();
    void noInterfaceThatOpensIsTold();
    void anEndlessListEnds();
    void aListThatFailsIsTold();
    void aLongPathIsCutInMessages();
    void theServiceIsStartedAndStopped();
    void aServiceThatRunsAlreadyIsUsed();
    void servicesThatFailAreTold_data();
    void servicesThatFailAreTold();
    void aServiceDeviceThatDoesNotOpenIsTold();
    void theExtraDelayIsIgnored();
    void keysAreRefusedWhileItIsNotOpen();
    void aKeyIsReadAsLongAsItIs();
    void aDriverThatClaimsMoreFillsNoMore();
    void aKeyIsWritten();
    void aWriteNeedsItsByte();
    void aNameIsGivenByItsIndex();
    void informationIsGiven();
    void aLengthOfZeroIsInformation();
    void repliesOfTheWrongSizeFailQuietly();
    void aCallThatFailsIsLogged();
    void fansAreLeftByTheDriver();
    void aPlugAndPlayDeviceIsClosedAlone();
};

void TestPlatformWinSysMmio::aPlugAndPlayDeviceIsOpened()
{
    const LogCapture log;
    const Bench bench;

    QVERIFY(bench.mmio->open());

    QCOMPARE(bench.calls,
             QStringList({ text("list aee3a6c3-67a-4919 12"), text("open path 0 c0000000 3 3 0"),
                           text("end of list") }));
    QVERIFY((bench.driver->askedClass.rest
             == std::array<std::uint8_t, 8> { 0x9b, 0xc7, 0xcd, 0xed, 0x78, 0x63, 0x46, 0xa7 }));
    QCOMPARE(log.lines(), QStringList(text("info: Trying to open SMC using with PNP driver")));
}

void TestPlatformWinSysMmio::theNextInterfaceIsTried()
{
    const LogCapture log;
    const Bench bench;
    bench.driver->interfaces
        = { { text("path 0") }, { text("path 1"), 0, false }, { text("path 2") } };
    bench.driver->openErrors[text("path 0")] = 5;

    QVERIFY(bench.mmio->open());

    QCOMPARE(
        bench.calls.filter(text("open")),
        QStringList({ text("open path 0 c0000000 3 3 0"), text("open path 2 c0000000 3 3 0") }));
    QCOMPARE(log.lines(),
             QStringList({ text("info: Trying to open SMC using with PNP driver"),
                           text("error: FAILED to open path 0") }));
}

void TestPlatformWinSysMmio::anInterfaceThatCannotBeListedIsPassedOver()
{
    const Bench bench;
    bench.driver->interfaces = { { text("path 0"), 87 }, { text("path 1") } };

    QVERIFY(bench.mmio->open());

    QCOMPARE(bench.calls.filter(text("open")), QStringList(text("open path 1 c0000000 3 3 0")));
}

void TestPlatformWinSysMmio::noInterfaceIsTold()
{
    const LogCapture log;
    const Bench bench;
    bench.driver->interfaces.clear();

    QVERIFY(!bench.mmio->open());

    QCOMPARE(log.lines(),
             QStringList({ text("info: Trying to open SMC using with PNP driver"),
                           text("error: No interfaces found, driver doesn't seem to be installed"),
                           text("error: Create file failed to open <no-interface>, error 259") }));
    QCOMPARE(bench.calls.last(), text("end of list"));
}

void TestPlatformWinSysMmio::noInterfaceThatOpensIsTold()
{
    const LogCapture log;
    const Bench bench;
    bench.driver->openErrors[text("path 0")] = 5;

    QVERIFY(!bench.mmio->open());

    QCOMPARE(log.lines(),
             QStringList({ text("info: Trying to open SMC using with PNP driver"),
                           text("error: FAILED to open path 0"),
                           text("error: Create file failed to open path 0, error 259") }));
}

void TestPlatformWinSysMmio::anEndlessListEnds()
{
    const Bench bench;
    bench.driver->endlessInterfaces = true;

    QVERIFY(!bench.mmio->open());

    QCOMPARE(bench.driver->enumerations, 256);
    QCOMPARE(bench.calls.last(), text("end of list"));
}

void TestPlatformWinSysMmio::aListThatFailsIsTold()
{
    const LogCapture log;
    const Bench bench;
    bench.driver->listsInterfaces = false;

    QVERIFY(!bench.mmio->open());

    QCOMPARE(log.lines(),
             QStringList({ text("info: Trying to open SMC using with PNP driver"),
                           text("error: SetupDiGetClassDevs failed with error 13"),
                           text("error: Create file failed to open , error 13") }));
    QVERIFY(!bench.calls.contains(text("end of list")));
}

void TestPlatformWinSysMmio::aLongPathIsCutInMessages()
{
    const LogCapture log;
    const Bench bench;
    const QString path(300, QLatin1Char('p'));
    bench.driver->interfaces = { { path } };
    bench.driver->openErrors[path] = 5;

    QVERIFY(!bench.mmio->open());

    QVERIFY(log.contains(text("error: FAILED to open ") + path.left(256)));
}

void TestPlatformWinSysMmio::theServiceIsStartedAndStopped()
{
    SMC::Options::set(Option::NonPnpDriver);
    const LogCapture log;
    Bench bench;

    QVERIFY(bench.mmio->open());
    QCOMPARE(bench.calls,
             QStringList({ text("manager f003f"), text("service AppleSMC2 f01ff"), text("start"),
                           text("close service"), text("close service"), text(serviceDevice) }));
    bench.calls.clear();
    bench.mmio->close();

    QCOMPARE(
        bench.calls,
        QStringList({ text("close"), text("manager f003f"), text("service AppleSMC2 f01ff"),
                      text("control service 1"), text("close service"), text("close service") }));
    QCOMPARE(log.lines(), QStringList(text("info: Trying to open SMC using with non-PNP driver")));
}

void TestPlatformWinSysMmio::aServiceThatRunsAlreadyIsUsed()
{
    SMC::Options::set(Option::NonPnpDriver);
    const LogCapture log;
    const Bench bench;
    bench.driver->startError = 1056;

    QVERIFY(bench.mmio->open());

    QVERIFY(log.contains(text("error: StartService failed with error 1056")));
}

void TestPlatformWinSysMmio::servicesThatFailAreTold_data()
{
    QTest::addColumn<int>("managerError");
    QTest::addColumn<int>("serviceError");
    QTest::addColumn<int>("controlError");
    QTest::addColumn<QString>("line");
    QTest::addColumn<int>("closed");
    QTest::newRow("no manager") << 5 << 0 << 0 << text("info: OpenSCManager failed with error 5")
                                << 0;
    QTest::newRow("no service") << 0 << 1060 << 0
                                << text("info: OpenService failed with error 1060") << 1;
    QTest::newRow("no stop") << 0 << 0 << 1062
                             << text("error: ControlService failed with error 1062") << 2;
}

void TestPlatformWinSysMmio::servicesThatFailAreTold()
{
    QFETCH(int, managerError);
    QFETCH(int, serviceError);
    QFETCH(int, controlError);
    QFETCH(QString, line);
    QFETCH(int, closed);
    SMC::Options::set(Option::NonPnpDriver);
    Bench bench;
    bench.open();
    const LogCapture log;
    bench.driver->managerError = static_cast<std::uint32_t>(managerError);
    bench.driver->serviceError = static_cast<std::uint32_t>(serviceError);
    bench.driver->controlError = static_cast<std::uint32_t>(controlError);

    bench.mmio->close();

    QCOMPARE(log.lines(), QStringList(line));
    QCOMPARE(bench.calls.count(text("close service")), closed);
}

void TestPlatformWinSysMmio::aServiceDeviceThatDoesNotOpenIsTold()
{
    SMC::Options::set(Option::NonPnpDriver);
    const LogCapture log;
    const Bench bench;
    bench.driver->managerError = 5;
    bench.driver->openErrors[text("\\\\.\\APPLESMCNONPNP")] = 2;

    QVERIFY(!bench.mmio->open());

    QCOMPARE(log.lines(),
             QStringList({ text("info: Trying to open SMC using with non-PNP driver"),
                           text("info: OpenSCManager failed with error 5"),
                           text("error: Create file failed to open , error 2") }));
}

void TestPlatformWinSysMmio::theExtraDelayIsIgnored()
{
    SMC::Options::set(Option::ExtraDelay, "no number");
    const Bench bench;
    QVERIFY(bench.mmio->open());
}

void TestPlatformWinSysMmio::keysAreRefusedWhileItIsNotOpen()
{
    const Bench bench;
    const LogCapture log;
    std::string key = "old";
    SMC::KeyInfo info;
    std::array<std::uint8_t, 32> value { 7 };

    QVERIFY(!bench.mmio->getKeyByIndex(0, key));
    QVERIFY(!bench.mmio->getKeyInfo("FNum", info));
    QVERIFY(!bench.mmio->readKey("FNum", value.data(), 1));
    QVERIFY(!bench.mmio->writeKey("F0Md", value.data(), 1));
    bench.mmio->leaveFans();
    bench.mmio->close();

    const QString line = text("error: The device is not opened");
    QCOMPARE(log.lines(), QStringList({ line, line, line, line }));
    QCOMPARE(bench.calls, QStringList());
    QCOMPARE(key, std::string("old"));
    QCOMPARE(static_cast<int>(value[0]), 7);
}

void TestPlatformWinSysMmio::aKeyIsReadAsLongAsItIs()
{
    Bench bench;
    bench.open();
    bench.driver->answers = { { QByteArray("\x1F\x40", 2), {}, 0 } };
    std::array<std::uint8_t, 32> value {};
    value.fill(9);

    QVERIFY(bench.mmio->readKey("F0Ac", value.data(), 4));

    QCOMPARE(bench.calls, QStringList(text("control 220000 [46 30 41 63] 32")));
    QCOMPARE(static_cast<int>(value[1]), 0x40);
    QCOMPARE(static_cast<int>(value[2]), 9);
}

void TestPlatformWinSysMmio::aDriverThatClaimsMoreFillsNoMore()
{
    Bench bench;
    bench.open();
    bench.driver->answers = { { QByteArray(100, 'x'), 100000, 0 } };
    std::array<std::uint8_t, 33> value {};

    QVERIFY(bench.mmio->readKey("F0Ac", value.data(), 1));

    QCOMPARE(static_cast<char>(value[31]), 'x');
    QCOMPARE(static_cast<int>(value[32]), 0);
}

void TestPlatformWinSysMmio::aKeyIsWritten()
{
    Bench bench;
    bench.open();
    bench.driver->answers = { { QByteArray(1, 'x'), {}, 0 }, { QByteArray(1, 0), {}, 0 } };
    const std::array<std::uint8_t, 255> value { 0x12, 0x34 };

    QVERIFY(bench.mmio->writeKey("F0Tg", value.data(), 2));
    QVERIFY(bench.mmio->writeKey("F0Tg", value.data(), 255));

    const QString zeros = text(" 00").repeated(30);
    QCOMPARE(bench.calls,
             QStringList({ text("control 220004 [46 30 54 67 02 12 34") + zeros + text("] 1"),
                           text("control 220004 [46 30 54 67 20 12 34") + zeros + text("] 1") }));
}

void TestPlatformWinSysMmio::aWriteNeedsItsByte()
{
    Bench bench;
    bench.open();
    bench.driver->answers = { { {}, {}, 0 } };
    const LogCapture log;
    const std::uint8_t value = 1;

    QVERIFY(!bench.mmio->writeKey("F0Md", &value, 1));

    QCOMPARE(log.lines(), QStringList());
}

void TestPlatformWinSysMmio::aNameIsGivenByItsIndex()
{
    Bench bench;
    bench.open();
    bench.driver->answers = { { "TC0P", {}, 0 }, { QByteArray("TC\0\0", 4), {}, 0 } };
    std::string key;

    QVERIFY(bench.mmio->getKeyByIndex(258, key));
    QCOMPARE(key, std::string("TC0P"));
    QVERIFY(bench.mmio->getKeyByIndex(0, key));
    QCOMPARE(key, std::string("TC"));

    QCOMPARE(bench.calls.first(), text("control 220008 [02 01 00 00] 4"));
}

void TestPlatformWinSysMmio::informationIsGiven()
{
    Bench bench;
    bench.open();
    bench.driver->answers = { { "\x04"
                                "flt \xC0",
                                {},
                                0 } };
    SMC::KeyInfo info;

    QVERIFY(bench.mmio->getKeyInfo("F0Ac", info));

    QCOMPARE(bench.calls, QStringList(text("control 22000c [46 30 41 63] 6")));
    QCOMPARE(static_cast<int>(info.length), 4);
    QVERIFY((info.type == std::array<char, 4> { 'f', 'l', 't', ' ' }));
    QCOMPARE(static_cast<int>(info.attributes), 0xC0);
}

void TestPlatformWinSysMmio::aLengthOfZeroIsInformation()
{
    Bench bench;
    bench.open();
    bench.driver->answers = { { QByteArray(6, 0), {}, 0 } };
    SMC::KeyInfo info;
    info.length = 9;

    QVERIFY(bench.mmio->getKeyInfo("ZZZZ", info));

    QCOMPARE(static_cast<int>(info.length), 0);
}

void TestPlatformWinSysMmio::repliesOfTheWrongSizeFailQuietly()
{
    Bench bench;
    bench.open();
    bench.driver->answers = { { "TC0", {}, 0 },
                              { "TC0PX", {}, 0 },
                              { "12345", {}, 0 },
                              { "1234567", {}, 0 },
                              { "12", {}, 0 } };
    const LogCapture log;
    std::string key = "old";
    SMC::KeyInfo info;
    const std::uint8_t value = 1;

    QVERIFY(!bench.mmio->getKeyByIndex(0, key));
    QVERIFY(!bench.mmio->getKeyByIndex(0, key));
    QVERIFY(!bench.mmio->getKeyInfo("TC0P", info));
    QVERIFY(!bench.mmio->getKeyInfo("TC0P", info));
    QVERIFY(!bench.mmio->writeKey("F0Md", &value, 1));

    QCOMPARE(key, std::string("old"));
    QCOMPARE(static_cast<int>(info.length), 0);
    QCOMPARE(log.lines(), QStringList());
}

void TestPlatformWinSysMmio::aCallThatFailsIsLogged()
{
    Bench bench;
    bench.open();
    bench.driver->answers = { { {}, {}, 31 }, { {}, {}, 5 }, { {}, {}, 1 }, { {}, {}, 2 } };
    const LogCapture log;
    std::string key;
    SMC::KeyInfo info;
    std::array<std::uint8_t, 32> value {};

    QVERIFY(!bench.mmio->readKey("FNum", value.data(), 1));
    QVERIFY(!bench.mmio->writeKey("F0Md", value.data(), 1));
    QVERIFY(!bench.mmio->getKeyInfo("FNum", info));
    QVERIFY(!bench.mmio->getKeyByIndex(0, key));

    QCOMPARE(log.lines(),
             QStringList({ text("error: Error in DeviceIoControl 31"),
                           text("error: Error in DeviceIoControl 5"),
                           text("error: Error in DeviceIoControl 1"),
                           text("error: Error in DeviceIoControl 2") }));
}

void TestPlatformWinSysMmio::fansAreLeftByTheDriver()
{
    Bench bench;
    bench.open();
    bench.mmio->leaveFans();
    QCOMPARE(bench.calls, QStringList(text("leave fans")));
}

void TestPlatformWinSysMmio::aPlugAndPlayDeviceIsClosedAlone()
{
    Bench bench;
    bench.open();
    bench.mmio->close();
    QCOMPARE(bench.calls, QStringList(text("close")));
}

BRISORA_TEST_MAIN(TestPlatformWinSysMmio, QCoreApplication)

#include "test_platform_win_sys_mmio.moc"
