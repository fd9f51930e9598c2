#include <QCoreApplication>

#include "app/smc/service.h"
#include "tests/smc/servicebench.h"
#include "tests/support/testenvironment.h"

using SMC::Option;

class TestServiceModes : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void maskGivesModes();
    void maskHasNoRoomForFansEightAndNine();
    void unreadableMaskFails();
    void modeKeysGiveModes();
    void modeKeysStopAtTheFirstFailure();
    void modesBeforeOpenHaveNoScheme();
    void maskIsWritten();
    void refusedMaskFails();
    void modeKeysAreWritten();
    void refusedModeKeyEndsTheRow();
    void invertedTransportWritesOnlyTheFirstModeKey();
    void dualFanWritesBothModeKeys();
    void dualFanWithThreeFansGoesOn();
    void wrongNumberOfModesMakesNoTraffic();
    void noFans_data();
    void noFans();
};

void TestServiceModes::maskGivesModes()
{
    ServiceBench bench;
    bench.addTwoFans();
    bench.smc.setKey("FS! ", "ui16", { 0xFF, 0x02 });
    bench.open();
    std::vector<bool> modes = { true };
    QVERIFY(bench.service->getFansControlModes(modes));
    QVERIFY(modes == std::vector<bool>({ true, false, true }));
    QCOMPARE(bench.spy->calls,
             QStringList({ QStringLiteral("read FNum 1"), QStringLiteral("read FS!  2") }));
}

void TestServiceModes::maskHasNoRoomForFansEightAndNine()
{
    ServiceBench bench;
    SMC::Options::set(Option::XserveFanLimit);
    bench.addTwoFans();
    bench.smc.setKey("FS! ", "ui16", { 0x03, 0xFF });
    bench.open();
    std::vector<bool> modes;
    QVERIFY(bench.service->getFansControlModes(modes));
    QVERIFY(modes
            == std::vector<bool>({ true, true, true, true, true, true, true, true, false, false }));

    QVERIFY(bench.service->setFansControlModes(
        { true, false, false, false, false, false, false, true, true, true }));
    QVERIFY(bench.smc.keyValue("FS! ") == Bytes({ 0x00, 0x81 }));
}

void TestServiceModes::unreadableMaskFails()
{
    ServiceBench bench;
    bench.addTwoFans();
    bench.open();
    bench.smc.setFailing("FS! ", true);
    std::vector<bool> modes;
    QVERIFY(!bench.service->getFansControlModes(modes));
    QVERIFY(modes.empty());
    QCOMPARE(bench.log.lines(),
             QStringList({ QStringLiteral("error: Unable to read fans control mode, key FS! ") }));
}

void TestServiceModes::modeKeysGiveModes()
{
    ServiceBench bench;
    bench.addTwoFloatFans();
    bench.smc.setKey("F1Md", "ui8 ", { 2 });
    bench.open();
    std::vector<bool> modes;
    QVERIFY(bench.service->getFansControlModes(modes));
    QVERIFY(modes == std::vector<bool>({ false, true }));
    QCOMPARE(bench.spy->calls,
             QStringList({ QStringLiteral("read FNum 1"), QStringLiteral("read F0Md 1"),
                           QStringLiteral("read F1Md 1") }));
}

void TestServiceModes::modeKeysStopAtTheFirstFailure()
{
    ServiceBench bench;
    bench.addTwoFloatFans();
    bench.smc.setKey("FNum", "ui8 ", { 3 });
    bench.smc.setKey("F0Md", "ui8 ", { 1 });
    bench.smc.setKey("F2Md", "ui8 ", { 1 });
    bench.smc.setFailing("F1Md", true);
    bench.open();
    std::vector<bool> modes;
    QVERIFY(bench.service->getFansControlModes(modes));
    QVERIFY(modes == std::vector<bool>({ true }));
    QCOMPARE(bench.log.lines(),
             QStringList({ QStringLiteral("error: Unable to query fan mode F1Md") }));
    QVERIFY(!bench.spy->calls.contains(QStringLiteral("read F2Md 1")));

    modes.clear();
    bench.smc.setFailing("F0Md", true);
    QVERIFY(!bench.service->getFansControlModes(modes));
    QVERIFY(modes.empty());
}

void TestServiceModes::modesBeforeOpenHaveNoScheme()
{
    ServiceBench bench;
    bench.addTwoFans();
    std::vector<bool> modes;
    QVERIFY(!bench.service->getFansControlModes(modes));
    QVERIFY(!bench.service->setFansControlModes({ true, true }));
    QCOMPARE(bench.log.lines(),
             QStringList({ QStringLiteral("error: Unknown m_smcFanModeKey"),
                           QStringLiteral("error: Unknown m_smcFanModeKey") }));
}

void TestServiceModes::maskIsWritten()
{
    ServiceBench bench;
    SMC::Options::set(Option::DualFan);
    bench.addTwoFans();
    bench.smc.setKey("FNum", "ui8 ", { 3 });
    bench.open();
    QVERIFY(bench.service->setFansControlModes({ true, false, true }));
    QVERIFY(bench.smc.writes()
            == std::vector<FakeSmcPlatform::Write>({ { "FS! ", { 0x00, 0x05 } } }));
    QCOMPARE(bench.log.lines(), QStringList({ QStringLiteral("info: Set fans mode 5") }));
}

void TestServiceModes::refusedMaskFails()
{
    ServiceBench bench;
    bench.addTwoFans();
    bench.open();
    bench.smc.setFailing("FS! ", true);
    QVERIFY(!bench.service->setFansControlModes({ true, true }));
    QCOMPARE(bench.log.lines(),
             QStringList({ QStringLiteral("error: Unable to set fan control modes") }));
}

void TestServiceModes::modeKeysAreWritten()
{
    ServiceBench bench;
    bench.addTwoFloatFans();
    bench.open();
    QVERIFY(bench.service->setFansControlModes({ true, false }));
    QVERIFY(bench.smc.writes()
            == std::vector<FakeSmcPlatform::Write>({ { "F0Md", { 1 } }, { "F1Md", { 0 } } }));
    QCOMPARE(bench.log.lines(),
             QStringList({ QStringLiteral("info: Set fan 0 mode 1"),
                           QStringLiteral("info: Set fan 1 mode 0") }));
}

void TestServiceModes::refusedModeKeyEndsTheRow()
{
    ServiceBench bench;
    bench.addTwoFloatFans();
    bench.smc.setKey("FNum", "ui8 ", { 3 });
    bench.smc.setFailing("F1Md", true);
    bench.open();
    QVERIFY(!bench.service->setFansControlModes({ true, true, true }));
    QCOMPARE(bench.log.lines(),
             QStringList({ QStringLiteral("info: Set fan 0 mode 1"),
                           QStringLiteral("error: Unable to set fan 1 control mode") }));
    QVERIFY(bench.smc.writesOf("F2Md").empty());
}

void TestServiceModes::invertedTransportWritesOnlyTheFirstModeKey()
{
    ServiceBench bench;
    bench.addTwoFloatFans();
    bench.smc.setInvertedWrites(true);
    bench.open();
    QVERIFY(!bench.service->setFansControlModes({ true, true }));
    QVERIFY(bench.smc.keyValue("F0Md") == Bytes({ 1 }));
    QVERIFY(bench.smc.keyValue("F1Md") == Bytes({ 0 }));
    QCOMPARE(bench.log.lines(),
             QStringList({ QStringLiteral("error: Unable to set fan 0 control mode") }));
}

void TestServiceModes::dualFanWritesBothModeKeys()
{
    ServiceBench bench;
    SMC::Options::set(Option::DualFan);
    bench.addTwoFloatFans();
    bench.open();
    QVERIFY(bench.service->setFansControlModes({ true }));
    QVERIFY(bench.smc.writes()
            == std::vector<FakeSmcPlatform::Write>({ { "F0Md", { 1 } }, { "F1Md", { 1 } } }));
    std::vector<bool> modes;
    QVERIFY(bench.service->getFansControlModes(modes));
    QVERIFY(modes == std::vector<bool>({ true }));
}

void TestServiceModes::dualFanWithThreeFansGoesOn()
{
    ServiceBench bench;
    SMC::Options::set(Option::DualFan);
    bench.addTwoFloatFans();
    bench.smc.setKey("FNum", "ui8 ", { 3 });
    bench.smc.setKey("F2Md", "ui8 ", { 0 });
    bench.open();
    QVERIFY(bench.service->setFansControlModes({ true, false, true }));
    QCOMPARE(bench.log.lines(),
             QStringList({ QStringLiteral("error: Dual fan: unexpected error, must only one fan"),
                           QStringLiteral("info: Set fan 0 mode 1"),
                           QStringLiteral("info: Set fan 1 mode 0"),
                           QStringLiteral("info: Set fan 2 mode 1") }));
}

void TestServiceModes::wrongNumberOfModesMakesNoTraffic()
{
    ServiceBench bench;
    bench.addTwoFans();
    bench.open();
    QCOMPARE(static_cast<int>(bench.service->getFanCount()), 2);
    bench.spy->calls.clear();
    QVERIFY(!bench.service->setFansControlModes({ true }));
    QVERIFY(!bench.service->setFansControlModes({ true, true, true }));
    QCOMPARE(bench.spy->calls, QStringList());
    QCOMPARE(
        bench.log.count(QStringLiteral("error: setFansControlModes: fanCount != vModes.size()")),
        2);
}

void TestServiceModes::noFans_data()
{
    QTest::addColumn<bool>("mask");
    QTest::newRow("mask") << true;
    QTest::newRow("mode keys") << false;
}

void TestServiceModes::noFans()
{
    QFETCH(bool, mask);
    ServiceBench bench;
    bench.smc.setKey("FNum", "ui8 ", { 0 });
    if (mask) {
        bench.smc.setKey("FS! ", "ui16", { 0x00, 0x03 });
    }
    bench.open();
    std::vector<bool> modes;
    QCOMPARE(bench.service->getFansControlModes(modes), mask);
    QVERIFY(modes.empty());
    QCOMPARE(bench.spy->calls.contains(QStringLiteral("read FS!  2")), mask);
    QCOMPARE(bench.service->setFansControlModes({}), mask);
    QVERIFY(bench.smc.keyValue("FS! ") == (mask ? Bytes({ 0, 0 }) : Bytes()));
}

BRISORA_TEST_MAIN(TestServiceModes, QCoreApplication)

#include "test_service_modes.moc"
