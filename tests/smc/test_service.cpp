#include <thread>

#include <QCoreApplication>
#include <QSignalSpy>

#include "app/smc/service.h"
#include "tests/smc/servicebench.h"
#include "tests/support/testenvironment.h"

using SMC::FanKeyKind;
using SMC::Option;

class TestService : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void failedOpenDetectsNothing();
    void openDetectsEncodingAndScheme();
    void openWithoutFansTakesTwoByteSpeeds();
    void typeNameOfTheControllerCannotForgeALine();
    void disconnectIsPassedOnAfterOpen();
    void closeReachesTheTransport();
    void fanCountIsReadOnce();
    void unreadableFanCountIsNoFansAndRemembered();
    void impossibleFanCountIsTen_data();
    void impossibleFanCountIsTen();
    void dualFanCountsAsOne_data();
    void dualFanCountsAsOne();
    void xserveHasTenFans();
    void fanNameIsTrimmedText_data();
    void fanNameIsTrimmedText();
    void fanNameEndsAtItsValue();
    void unreadableFanNameIsTheIndex();
    void backlightIsReadAndWritten();
    void callersFromManyThreadsComeInOneByOne();
    void callsWithoutALoggerWork();
};

void TestService::failedOpenDetectsNothing()
{
    ServiceBench bench;
    bench.smc.setOpens(false);
    QVERIFY(!bench.service->open());
    QCOMPARE(bench.spy->calls, QStringList());
}

void TestService::openDetectsEncodingAndScheme()
{
    ServiceBench bench;
    bench.addTwoFloatFans();
    QVERIFY(bench.service->open());
    QCOMPARE(bench.spy->calls,
             QStringList({ QStringLiteral("info F0Mn"), QStringLiteral("info FS! ") }));
    QCOMPARE(bench.log.lines(),
             QStringList({ QStringLiteral("info: detectSmcFanKeySize KeyType flt "),
                           QStringLiteral("info: detectSmcFanKeySize KeyLen 4") }));
}

void TestService::openWithoutFansTakesTwoByteSpeeds()
{
    ServiceBench bench;
    QVERIFY(bench.service->open());
    QCOMPARE(bench.log.take(),
             QStringList(
                 { QStringLiteral("error: Unexpected failure at getKeyInfo, using 2, no fans?") }));
    bench.smc.setFanSpeed("F0Tg", 0);
    QVERIFY(bench.service->setFanRPM(0, 2000));
    QVERIFY(bench.smc.keyValue("F0Tg") == Bytes({ 0x1F, 0x40 }));
}

void TestService::typeNameOfTheControllerCannotForgeALine()
{
    ServiceBench bench;
    bench.smc.setKey("F0Mn", "a\nb\r", { 0, 0 });
    QVERIFY(bench.service->open());
    QCOMPARE(bench.log.lines().first(),
             QStringLiteral("info: detectSmcFanKeySize KeyType a\\nb\\r"));
}

void TestService::disconnectIsPassedOnAfterOpen()
{
    ServiceBench bench;
    QSignalSpy disconnects(bench.service.get(), &SMC::Service::error_unexpected_disconnect);
    Q_EMIT bench.spy->error_unexpected_disconnect();
    QCOMPARE(disconnects.count(), 0);
    bench.open();
    Q_EMIT bench.spy->error_unexpected_disconnect();
    QCOMPARE(disconnects.count(), 1);
}

void TestService::closeReachesTheTransport()
{
    ServiceBench bench;
    bench.open();
    QVERIFY(bench.smc.isOpen());
    bench.service->close();
    QVERIFY(!bench.smc.isOpen());
}

void TestService::fanCountIsReadOnce()
{
    ServiceBench bench;
    bench.addTwoFans();
    bench.open();
    QCOMPARE(static_cast<int>(bench.service->getFanCount()), 2);
    bench.smc.setKey("FNum", "ui8 ", { 5 });
    QCOMPARE(static_cast<int>(bench.service->getFanCount()), 2);
    QCOMPARE(bench.spy->calls, QStringList({ QStringLiteral("read FNum 1") }));
    QCOMPARE(bench.log.lines(), QStringList());
}

void TestService::unreadableFanCountIsNoFansAndRemembered()
{
    ServiceBench bench;
    bench.addTwoFans();
    bench.smc.setFailing("FNum", true);
    bench.open();
    QCOMPARE(static_cast<int>(bench.service->getFanCount()), 0);
    QCOMPARE(bench.log.lines(),
             QStringList({ QStringLiteral("error: Unable to read number of fans") }));

    bench.smc.setFailing("FNum", false);
    bench.spy->calls.clear();
    QCOMPARE(static_cast<int>(bench.service->getFanCount()), 0);
    QCOMPARE(bench.spy->calls, QStringList());
}

void TestService::impossibleFanCountIsTen_data()
{
    QTest::addColumn<int>("reported");
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("warnings");
    QTest::newRow("ten") << 10 << 10 << 0;
    QTest::newRow("eleven") << 11 << 10 << 1;
    QTest::newRow("all bits") << 255 << 10 << 1;
}

void TestService::impossibleFanCountIsTen()
{
    QFETCH(int, reported);
    QFETCH(int, warnings);
    ServiceBench bench;
    bench.smc.setKey("FNum", "ui8 ", { static_cast<std::uint8_t>(reported) });
    bench.open();
    QTEST(static_cast<int>(bench.service->getFanCount()), "count");
    QTEST(static_cast<int>(bench.service->getFanCount()), "count");
    QCOMPARE(bench.log.count(QStringLiteral("warning: %1 fans reported, using 10").arg(reported)),
             warnings);
    QCOMPARE(bench.spy->calls.size(), 1);
}

void TestService::dualFanCountsAsOne_data()
{
    QTest::addColumn<int>("reported");
    QTest::addColumn<int>("count");
    QTest::addColumn<bool>("logged");
    QTest::newRow("one fan") << 1 << 1 << false;
    QTest::newRow("two fans") << 2 << 1 << true;
    QTest::newRow("three fans") << 3 << 3 << false;
}

void TestService::dualFanCountsAsOne()
{
    QFETCH(int, reported);
    ServiceBench bench;
    SMC::Options::set(Option::DualFan);
    bench.smc.setKey("FNum", "ui8 ", { static_cast<std::uint8_t>(reported) });
    bench.open();
    QTEST(static_cast<int>(bench.service->getFanCount()), "count");
    QTEST(bench.log.contains(QStringLiteral(
              "info: Dual fan: the mac has a dual-fan cooler with two syncronized fans.")),
          "logged");
}

void TestService::xserveHasTenFans()
{
    ServiceBench bench;
    SMC::Options::set(Option::XserveFanLimit);
    bench.smc.addFan(0, "Front", 2000, 1000, 6000);
    bench.smc.setKey("FNum", "ui8 ", { 3 });
    bench.open();
    QCOMPARE(static_cast<int>(bench.service->getFanCount()), 10);
    QCOMPARE(bench.log.take(), QStringList({ QStringLiteral("info: XServe 10 fans limit") }));
    QCOMPARE(bench.service->getFanName(3), std::string("Fan 3"));
    std::uint16_t rpm = 7;
    QVERIFY(!bench.service->getFanRPM(9, FanKeyKind::Actual, rpm));
    QCOMPARE(bench.log.take(),
             QStringList({ QStringLiteral("error: Unable to read fan 3 name. smc key F3ID"),
                           QStringLiteral("error: Unable to read fan rpm, smc key F9Ac") }));
}

void TestService::fanNameIsTrimmedText_data()
{
    QTest::addColumn<Bytes>("value");
    QTest::addColumn<QString>("name");
    QTest::newRow("padded with zeros") << identifier("Left side") << QStringLiteral("Left side");
    QTest::newRow("padded with blanks") << identifier("  HDD       ") << QStringLiteral("HDD");
    QTest::newRow("all twelve") << identifier("Twelve chars") << QStringLiteral("Twelve chars");
    QTest::newRow("ends at a zero")
        << identifier(std::string("ODD\0tail", 8)) << QStringLiteral("ODD");
    QTest::newRow("only blanks") << identifier("            ") << QStringLiteral("Fan 0");
    QTest::newRow("tab and line break") << identifier("\t\r\n") << QStringLiteral("Fan 0");
    QTest::newRow("nothing") << identifier("") << QStringLiteral("Fan 0");
}

void TestService::fanNameIsTrimmedText()
{
    QFETCH(Bytes, value);
    ServiceBench bench;
    bench.smc.setKey("F0ID", "{fds", value);
    bench.open();
    QTEST(QString::fromStdString(bench.service->getFanName(0)), "name");
    QCOMPARE(bench.spy->calls, QStringList({ QStringLiteral("read F0ID 16") }));
    QCOMPARE(bench.log.lines(), QStringList());
}

void TestService::fanNameEndsAtItsValue()
{
    ServiceBench bench;
    bench.smc.setKey("F0ID", "{fds", identifier("Twelve chars"));
    bench.spy->fillsWholeBuffer = true;
    bench.open();
    QCOMPARE(bench.service->getFanName(0), std::string("Twelve chars"));
}

void TestService::unreadableFanNameIsTheIndex()
{
    ServiceBench bench;
    bench.open();
    QCOMPARE(bench.service->getFanName(2), std::string("Fan 2"));
    QCOMPARE(bench.log.lines(),
             QStringList({ QStringLiteral("error: Unable to read fan 2 name. smc key F2ID") }));
}

void TestService::backlightIsReadAndWritten()
{
    ServiceBench bench;
    bench.smc.setKey("LKSB", "{lkb", { 0x40, 0x01 });
    bench.open();
    std::uint8_t level = 0;
    QVERIFY(bench.service->getKeyboardBacklight(level));
    QCOMPARE(static_cast<int>(level), 0x40);
    QVERIFY(bench.service->setKeyboardBacklight(0x80));
    QVERIFY(bench.smc.keyValue("LKSB") == Bytes({ 0x80, 0x00 }));
    bench.smc.setFailing("LKSB", true);
    QVERIFY(!bench.service->getKeyboardBacklight(level));
    QVERIFY(!bench.service->setKeyboardBacklight(1));
    QCOMPARE(static_cast<int>(level), 0x40);
}

void TestService::callersFromManyThreadsComeInOneByOne()
{
    ServiceBench bench;
    bench.addTwoFans();
    bench.addSensors();
    bench.open();
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&bench] {
            for (int round = 0; round < 50; ++round) {
                std::uint16_t rpm = 0;
                double value = 0;
                std::vector<bool> modes;
                std::vector<std::string> keys;
                static_cast<void>(bench.service->getFanRPM(0, FanKeyKind::Actual, rpm));
                static_cast<void>(bench.service->setFanRPM(1, 2000));
                static_cast<void>(bench.service->getFansControlModes(modes));
                static_cast<void>(bench.service->setFansControlModes(modes));
                static_cast<void>(bench.service->getTemperatureKeys(keys));
                static_cast<void>(bench.service->getTemperature("TC0D", value, nullptr));
                static_cast<void>(bench.service->getFanName(0));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    QVERIFY(!bench.spy->overlapped);
    QCOMPARE(bench.spy->calls.count(QStringLiteral("read FNum 1")), 1);
}

void TestService::callsWithoutALoggerWork()
{
    FakeSmcPlatform smc;
    smc.addFan(0, "Left side", 2000, 1200, 5900);
    SMC::Service service(std::make_unique<SpyPlatform>(smc));
    QVERIFY(service.open());
    QVERIFY(service.setFanRPM(0, 2000));
}

BRISORA_TEST_MAIN(TestService, QCoreApplication)

#include "test_service.moc"
