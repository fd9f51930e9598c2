#include <stdexcept>

#include <QCoreApplication>
#include <QTemporaryDir>

#include "app/smc/options.h"
#include "app/smc/platform_win_sys.h"
#include "app/smc/reversed_name.h"
#include "build_config.h"
#include "tests/smc/fakedrivercalls.h"
#include "tests/support/logcapture.h"
#include "tests/support/manualclock.h"
#include "tests/support/testenvironment.h"

using SMC::Option;

namespace {

QString text(const char* value) { return QString::fromLatin1(value); }

QString deviceName() { return SMC::turnedRound(BuildConfig::halDeviceReversed); }

// The HAL driver's transport over a fake driver.
struct Bench {
    QStringList calls;
    FakeDriverCalls* driver = nullptr; // the transport's
    ManualClock clock;
    std::unique_ptr<SMC::PlatformWinProviderMacHAL> hal;

    Bench()
    {
        auto fake = std::make_unique<FakeDriverCalls>(calls);
        driver = fake.get();
        hal = std::make_unique<SMC::PlatformWinProviderMacHAL>(std::move(fake), clock);
    }

    void open()
    {
        QVERIFY(hal->open());
        calls.clear();
    }
};

} // namespace

class TestPlatformWinSys : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { SMC::Options::clear(); }

    void theDeviceIsOpenedForReadingAlone();
    void versionsAreLogged();
    void aDeviceThatDoesNotOpenIsLogged();
    void theExtraDelayComesFirst_data();
    void theExtraDelayComesFirst();
    void extraDelayThatIsNoNumberThrows_data();
    void extraDelayThatIsNoNumberThrows();
    void keysAreRefusedWhileItIsNotOpen();
    void aKeyIsRead();
    void aKeyIsWritten();
    void noMoreThanAValueIsWritten();
    void aNameIsGivenByItsIndex_data();
    void aNameIsGivenByItsIndex();
    void informationIsGiven();
    void aLengthOfZeroIsNoKey_data();
    void aLengthOfZeroIsNoKey();
    void aCallThatFailsIsLogged();
    void fansAreLeftByTheDriver();
    void theDeviceIsClosed();
};

void TestPlatformWinSys::theDeviceIsOpenedForReadingAlone()
{
    const LogCapture log;
    const Bench bench;

    QVERIFY(bench.hal->open());

    QCOMPARE(bench.calls, QStringList(QStringLiteral("open %1 80000000 0 3 80").arg(deviceName())));
    QCOMPARE(log.lines(), QStringList(text("info: Using standard port X")));
    QCOMPARE(bench.clock.elapsedMilliseconds(), std::int64_t { 0 });
}

void TestPlatformWinSys::versionsAreLogged()
{
    const LogCapture log;
    const Bench bench;
    bench.driver->files[SMC::turnedRound(BuildConfig::halToolReversed)] = { text("6.1.0.0"), 900 };
    bench.driver->files[SMC::turnedRound(BuildConfig::halDriverReversed)]
        = { text("3.2\n1"), 22872 };

    QVERIFY(bench.hal->open());

    QCOMPARE(
        log.lines(),
        QStringList({ text("info: Using standard port X"), text("info: Ex version 6.1.0.0 (900)"),
                      text("info: Sy version 3.2\\n1 (22872)") }));
}

void TestPlatformWinSys::aDeviceThatDoesNotOpenIsLogged()
{
    const LogCapture log;
    const Bench bench;
    bench.driver->openErrors[deviceName()] = 2;

    QVERIFY(!bench.hal->open());

    QCOMPARE(
        log.lines(),
        QStringList(text("error: Failed to open standard port X (error 2), will try inpout32")));
}

void TestPlatformWinSys::theExtraDelayComesFirst_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<int>("milliseconds");
    QTest::newRow("two seconds") << text("2000") << 2000;
    QTest::newRow("zero") << text("0") << 0;
    QTest::newRow("negative") << text("-5") << 0;
}

void TestPlatformWinSys::theExtraDelayComesFirst()
{
    QFETCH(QString, value);
    SMC::Options::set(Option::ExtraDelay, value.toStdString());
    const LogCapture log;
    const Bench bench;

    QVERIFY(bench.hal->open());

    QTEST(static_cast<int>(bench.clock.elapsedMilliseconds()), "milliseconds");
    QCOMPARE(log.lines().first(), text("info: Extra delay of ") + value);
}

void TestPlatformWinSys::extraDelayThatIsNoNumberThrows_data()
{
    QTest::addColumn<QString>("value");
    QTest::newRow("no number") << text("long");
    QTest::newRow("too large") << text("99999999999");
}

void TestPlatformWinSys::extraDelayThatIsNoNumberThrows()
{
    QFETCH(QString, value);
    SMC::Options::set(Option::ExtraDelay, value.toStdString());
    const Bench bench;
    QVERIFY_EXCEPTION_THROWN(static_cast<void>(bench.hal->open()), std::logic_error);
}

void TestPlatformWinSys::keysAreRefusedWhileItIsNotOpen()
{
    const Bench bench;
    const LogCapture log;
    std::string key = "old";
    SMC::KeyInfo info;
    std::uint8_t value = 7;

    QVERIFY(!bench.hal->getKeyByIndex(0, key));
    QVERIFY(!bench.hal->getKeyInfo("FNum", info));
    QVERIFY(!bench.hal->readKey("FNum", &value, 1));
    QVERIFY(!bench.hal->writeKey("F0Md", &value, 1));
    bench.hal->leaveFans();
    bench.hal->close();

    const QString line = text("error: Port X not opened");
    QCOMPARE(log.lines(), QStringList({ line, line, line, line }));
    QCOMPARE(bench.calls, QStringList());
    QCOMPARE(key, std::string("old"));
    QCOMPARE(static_cast<int>(value), 7);
}

void TestPlatformWinSys::aKeyIsRead()
{
    Bench bench;
    bench.open();
    bench.driver->answers = { { QByteArray("\x1F\x40\x77", 3), {}, 0 } };
    std::array<std::uint8_t, 3> value { 0, 0, 9 };

    QVERIFY(bench.hal->readKey("F0AcTail", value.data(), 2));

    QCOMPARE(bench.calls, QStringList(text("control 9c402454 [46 30 41 63 00] 2")));
    QVERIFY((value == std::array<std::uint8_t, 3> { 0x1F, 0x40, 9 }));
}

void TestPlatformWinSys::aKeyIsWritten()
{
    Bench bench;
    bench.open();
    bench.driver->answers = { {}, {} };
    const std::array<std::uint8_t, 2> value { 0, 3 };

    QVERIFY(bench.hal->writeKey("FS! ", value.data(), 2));
    QVERIFY(bench.hal->writeKey("K", value.data(), 1));

    QCOMPARE(bench.calls,
             QStringList({ text("control 9c402458 [46 53 21 20 00 00 03] 0"),
                           text("control 9c402458 [4b 00 00 00 00 00] 0") }));
}

void TestPlatformWinSys::noMoreThanAValueIsWritten()
{
    Bench bench;
    bench.open();
    bench.driver->answers = { {} };
    const std::array<std::uint8_t, 255> value {};

    QVERIFY(bench.hal->writeKey("F0Tg", value.data(), 255));

    QCOMPARE(bench.calls.first().count(QLatin1Char(' ')), 2 + 4 + 32 + 1);
}

void TestPlatformWinSys::aNameIsGivenByItsIndex_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("whole") << QByteArray("TC0P\0", 5) << QByteArray("TC0P");
    QTest::newRow("without a terminator") << QByteArray("TC0PX") << QByteArray("TC0P");
    QTest::newRow("short") << QByteArray("TC\0\0\0", 5) << QByteArray("TC");
    QTest::newRow("nothing") << QByteArray() << QByteArray();
}

void TestPlatformWinSys::aNameIsGivenByItsIndex()
{
    QFETCH(QByteArray, reply);
    QFETCH(QByteArray, name);
    Bench bench;
    bench.open();
    bench.driver->answers = { { reply, {}, 0 } };
    std::string key;

    QVERIFY(bench.hal->getKeyByIndex(0x01020304, key));

    QCOMPARE(bench.calls, QStringList(text("control 9c40245c [04 03 02 01] 5")));
    QCOMPARE(key, name.toStdString());
}

void TestPlatformWinSys::informationIsGiven()
{
    Bench bench;
    bench.open();
    bench.driver->answers = { { QByteArray("\x02\x09\x09\x09"
                                           "sp78\xD0\x09\x09\x09",
                                           12),
                                {},
                                0 } };
    SMC::KeyInfo info;

    QVERIFY(bench.hal->getKeyInfo("TC0P", info));

    QCOMPARE(bench.calls, QStringList(text("control 9c402460 [54 43 30 50 00] 12")));
    QCOMPARE(static_cast<int>(info.length), 2);
    QVERIFY((info.type == std::array<char, 4> { 's', 'p', '7', '8' }));
    QCOMPARE(static_cast<int>(info.attributes), 0xD0);
}

void TestPlatformWinSys::aLengthOfZeroIsNoKey_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::newRow("zero") << QByteArray(12, 0);
    QTest::newRow("a low byte of zero") << QByteArray("\0\1\0\0sp78\0\0\0\0", 12);
    QTest::newRow("nothing") << QByteArray();
}

void TestPlatformWinSys::aLengthOfZeroIsNoKey()
{
    QFETCH(QByteArray, reply);
    Bench bench;
    bench.open();
    bench.driver->answers = { { reply, {}, 0 } };
    const LogCapture log;
    SMC::KeyInfo info;

    QVERIFY(!bench.hal->getKeyInfo("ZZZZ", info));

    QCOMPARE(log.lines(), QStringList());
}

void TestPlatformWinSys::aCallThatFailsIsLogged()
{
    Bench bench;
    bench.open();
    bench.driver->answers = { { {}, {}, 31 }, { {}, {}, 5 }, { {}, {}, 1 }, { {}, {}, 2 } };
    const LogCapture log;
    std::string key;
    SMC::KeyInfo info;
    std::uint8_t value = 7;

    QVERIFY(!bench.hal->readKey("FNum", &value, 1));
    QVERIFY(!bench.hal->writeKey("F0Md", &value, 1));
    QVERIFY(!bench.hal->getKeyInfo("FNum", info));
    QVERIFY(!bench.hal->getKeyByIndex(0, key));

    QCOMPARE(log.lines(),
             QStringList({ text("error: readKey: ioctl failed, GetLastError() = 31"),
                           text("error: writeKey: ioctl failed, GetLastError() = 5"),
                           text("error: GetKeyInfo: ioctl failed, GetLastError() = 1"),
                           text("error: getKeyByIndex: ioctl failed, GetLastError() = 2") }));
    QCOMPARE(static_cast<int>(value), 7);
}

void TestPlatformWinSys::fansAreLeftByTheDriver()
{
    Bench bench;
    bench.open();
    bench.hal->leaveFans();
    QCOMPARE(bench.calls, QStringList(text("leave fans")));
}

void TestPlatformWinSys::theDeviceIsClosed()
{
    Bench bench;
    bench.open();
    bench.hal->close();
    QCOMPARE(bench.calls, QStringList(text("close")));
}

BRISORA_TEST_MAIN(TestPlatformWinSys, QCoreApplication)

#include "test_platform_win_sys.moc"
