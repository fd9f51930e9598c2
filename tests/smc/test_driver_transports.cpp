#include <stdexcept>

#include <QCoreApplication>

#include "app/smc/options.h"
#include "app/smc/platform_win_sys.h"
#include "app/smc/platform_win_sys_mmio.h"
#include "tests/support/logcapture.h"
#include "tests/support/manualclock.h"
#include "tests/support/testenvironment.h"

using SMC::Option;

class TestDriverTransports : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { SMC::Options::clear(); }

    void halWithoutADeviceFails();
    void halWaitsForTheExtraDelay_data();
    void halWaitsForTheExtraDelay();
    void extraDelayThatIsNoNumberThrows_data();
    void extraDelayThatIsNoNumberThrows();
    void halRefusesKeysWhenItIsNotOpen();
    void mmioWithoutADeviceFails();
    void mmioRefusesKeysWhenItIsNotOpen();

private:
    static void expectRefusals(SMC::Platform& platform, const QString& line);
};

void TestDriverTransports::halWithoutADeviceFails()
{
    const LogCapture log;
    ManualClock clock;
    SMC::PlatformWinProviderMacHAL hal(clock);
    QVERIFY(!hal.open());
    QCOMPARE(clock.elapsedMilliseconds(), std::int64_t { 0 });
    QCOMPARE(log.lines(),
             QStringList({ QStringLiteral(
                 "error: Failed to open standard port X (error 2), will try inpout32") }));
}

void TestDriverTransports::halWaitsForTheExtraDelay_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<int>("milliseconds");
    QTest::newRow("two seconds") << QStringLiteral("2000") << 2000;
    QTest::newRow("zero") << QStringLiteral("0") << 0;
    QTest::newRow("negative") << QStringLiteral("-5") << 0;
}

void TestDriverTransports::halWaitsForTheExtraDelay()
{
    QFETCH(QString, value);
    SMC::Options::set(Option::ExtraDelay, value.toStdString());
    const LogCapture log;
    ManualClock clock;
    SMC::PlatformWinProviderMacHAL hal(clock);
    QVERIFY(!hal.open());
    QTEST(static_cast<int>(clock.elapsedMilliseconds()), "milliseconds");
    QCOMPARE(log.lines().first(), QStringLiteral("info: Extra delay of ") + value);
}

void TestDriverTransports::extraDelayThatIsNoNumberThrows_data()
{
    QTest::addColumn<QString>("value");
    QTest::newRow("no number") << QStringLiteral("long");
    QTest::newRow("too large") << QStringLiteral("99999999999");
}

void TestDriverTransports::extraDelayThatIsNoNumberThrows()
{
    QFETCH(QString, value);
    SMC::Options::set(Option::ExtraDelay, value.toStdString());
    ManualClock clock;
    SMC::PlatformWinProviderMacHAL hal(clock);
    QVERIFY_EXCEPTION_THROWN(static_cast<void>(hal.open()), std::logic_error);
}

void TestDriverTransports::expectRefusals(SMC::Platform& platform, const QString& line)
{
    const LogCapture log;
    std::string key = "old";
    SMC::KeyInfo info;
    std::uint8_t value = 7;
    QVERIFY(!platform.getKeyByIndex(0, key));
    QVERIFY(!platform.getKeyInfo("FNum", info));
    QVERIFY(!platform.readKey("FNum", &value, 1));
    QVERIFY(!platform.writeKey("F0Md", &value, 1));
    platform.close();
    QCOMPARE(log.lines(), QStringList({ line, line, line, line }));
    QCOMPARE(key, std::string("old"));
    QCOMPARE(static_cast<int>(value), 7);
}

void TestDriverTransports::halRefusesKeysWhenItIsNotOpen()
{
    ManualClock clock;
    SMC::PlatformWinProviderMacHAL hal(clock);
    expectRefusals(hal, QStringLiteral("error: Port X not opened"));
}

void TestDriverTransports::mmioWithoutADeviceFails()
{
    const LogCapture log;
    SMC::PlatformWinProviderMMIO mmio;
    QVERIFY(!mmio.open());
    QCOMPARE(
        log.lines(),
        QStringList(
            { QStringLiteral("info: Trying to open SMC using with PNP driver"),
              QStringLiteral("error: No interfaces found, driver doesn't seem to be installed"),
              QStringLiteral("error: Create file failed to open <no-interface>, error 2") }));

    const LogCapture secondLog;
    SMC::Options::set(Option::NonPnpDriver);
    QVERIFY(!mmio.open());
    QCOMPARE(secondLog.lines(),
             QStringList({ QStringLiteral("info: Trying to open SMC using with non-PNP driver"),
                           QStringLiteral("error: Create file failed to open , error 2") }));
}

void TestDriverTransports::mmioRefusesKeysWhenItIsNotOpen()
{
    SMC::PlatformWinProviderMMIO mmio;
    expectRefusals(mmio, QStringLiteral("error: The device is not opened"));
}

BRISORA_TEST_MAIN(TestDriverTransports, QCoreApplication)

#include "test_driver_transports.moc"
