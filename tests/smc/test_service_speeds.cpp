#include <limits>

#include <QCoreApplication>

#include "app/smc/service.h"
#include "tests/smc/servicebench.h"
#include "tests/support/testenvironment.h"

using SMC::FanKeyKind;
using SMC::Option;

class TestServiceSpeeds : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void speedOfEachKindIsRead_data();
    void speedOfEachKindIsRead();
    void floatSpeedIsRead();
    void floatThatIsNoSpeedIsAFailedRead();
    void failedSpeedReadLeavesTheCallersValue();
    void strangeSpeedSizeReadsFixedPointAndRefusesWrites();
    void speedSizeBeyondAnyValueStaysInTheBuffer();
    void speedIsWrittenInTheFansEncoding();
    void failedSpeedWriteIsLogged();
    void invertedTransportLogsSuccessAsFailure();
    void dualFanWritesBothTargets();
    void dualFanTakesTheSecondResult();
    void dualFanRefusesOtherFans();
};

void TestServiceSpeeds::speedOfEachKindIsRead_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("key");
    QTest::newRow("actual") << static_cast<int>(FanKeyKind::Actual) << QStringLiteral("F1Ac");
    QTest::newRow("minimum") << static_cast<int>(FanKeyKind::Min) << QStringLiteral("F1Mn");
    QTest::newRow("maximum") << static_cast<int>(FanKeyKind::Max) << QStringLiteral("F1Mx");
    QTest::newRow("target") << static_cast<int>(FanKeyKind::Target) << QStringLiteral("F1Tg");
    QTest::newRow("safe") << static_cast<int>(FanKeyKind::Safe) << QStringLiteral("F1Sf");
}

void TestServiceSpeeds::speedOfEachKindIsRead()
{
    QFETCH(int, kind);
    QFETCH(QString, key);
    ServiceBench bench;
    bench.addTwoFans();
    bench.smc.setFanSpeed(key.toStdString(), 3210);
    bench.open();
    std::uint16_t rpm = 0;
    QVERIFY(bench.service->getFanRPM(1, static_cast<FanKeyKind>(kind), rpm));
    QCOMPARE(static_cast<int>(rpm), 3210);
    QCOMPARE(bench.spy->calls, QStringList({ QStringLiteral("read %1 2").arg(key) }));
}

void TestServiceSpeeds::floatSpeedIsRead()
{
    ServiceBench bench;
    bench.addTwoFloatFans();
    bench.open();
    std::uint16_t rpm = 0;
    QVERIFY(bench.service->getFanRPM(0, FanKeyKind::Actual, rpm));
    QCOMPARE(static_cast<int>(rpm), 2000);
    QCOMPARE(bench.spy->calls, QStringList({ QStringLiteral("read F0Ac 4") }));
}

void TestServiceSpeeds::floatThatIsNoSpeedIsAFailedRead()
{
    ServiceBench bench;
    bench.addTwoFloatFans();
    bench.smc.setKey("F0Ac", "flt ", single(std::numeric_limits<float>::quiet_NaN()));
    bench.open();
    std::uint16_t rpm = 7;
    QVERIFY(!bench.service->getFanRPM(0, FanKeyKind::Actual, rpm));
    QCOMPARE(static_cast<int>(rpm), 7);
    QCOMPARE(bench.log.lines(),
             QStringList({ QStringLiteral("error: Unable to read fan rpm, smc key F0Ac") }));
}

void TestServiceSpeeds::failedSpeedReadLeavesTheCallersValue()
{
    ServiceBench bench;
    bench.addTwoFans();
    bench.smc.setFailing("F0Ac", true);
    bench.open();
    std::uint16_t rpm = 7;
    QVERIFY(!bench.service->getFanRPM(0, FanKeyKind::Actual, rpm));
    QCOMPARE(static_cast<int>(rpm), 7);
    QCOMPARE(bench.log.lines(),
             QStringList({ QStringLiteral("error: Unable to read fan rpm, smc key F0Ac") }));
}

void TestServiceSpeeds::strangeSpeedSizeReadsFixedPointAndRefusesWrites()
{
    ServiceBench bench;
    bench.smc.setKey("F0Mn", "ui8 ", { 0x1F });
    bench.smc.setKey("F0Ac", "ui8 ", { 0x1F });
    bench.open();
    std::uint16_t rpm = 0;
    QVERIFY(bench.service->getFanRPM(0, FanKeyKind::Actual, rpm));
    QCOMPARE(static_cast<int>(rpm), 0x1F << 6);
    QCOMPARE(bench.spy->calls, QStringList({ QStringLiteral("read F0Ac 1") }));

    QVERIFY(!bench.service->setFanRPM(0, 2000));
    QVERIFY(bench.smc.writes().empty());
    QCOMPARE(bench.log.lines(), QStringList({ QStringLiteral("error: Unknown m_smcFanKeySize") }));
}

void TestServiceSpeeds::speedSizeBeyondAnyValueStaysInTheBuffer()
{
    ServiceBench bench;
    bench.smc.setKey("F0Mn", "ch8*", Bytes(200, 0));
    bench.smc.setKey("F0Ac", "ch8*", Bytes(200, 0x04));
    bench.open();
    std::uint16_t rpm = 0;
    QVERIFY(bench.service->getFanRPM(0, FanKeyKind::Actual, rpm));
    QCOMPARE(bench.spy->calls, QStringList({ QStringLiteral("read F0Ac 32") }));
}

void TestServiceSpeeds::speedIsWrittenInTheFansEncoding()
{
    {
        ServiceBench bench;
        bench.addTwoFans();
        bench.open();
        QVERIFY(bench.service->setFanRPM(1, 2000));
        QVERIFY(bench.smc.writes()
                == std::vector<FakeSmcPlatform::Write>({ { "F1Tg", { 0x1F, 0x40 } } }));
        QCOMPARE(bench.log.lines(),
                 QStringList({ QStringLiteral("info: setFanRPM 2000 for F1Tg") }));
    }
    {
        ServiceBench bench;
        bench.addTwoFloatFans();
        bench.open();
        QVERIFY(bench.service->setFanRPM(1, 2000));
        QVERIFY(bench.smc.writes()
                == std::vector<FakeSmcPlatform::Write>({ { "F1Tg", single(2000) } }));
    }
}

void TestServiceSpeeds::failedSpeedWriteIsLogged()
{
    ServiceBench bench;
    bench.addTwoFans();
    bench.smc.setFailing("F0Tg", true);
    bench.open();
    QVERIFY(!bench.service->setFanRPM(0, 2000));
    QCOMPARE(bench.log.lines(),
             QStringList({ QStringLiteral("error: Unable to set fan F0Tg RPM 2000") }));
}

void TestServiceSpeeds::invertedTransportLogsSuccessAsFailure()
{
    ServiceBench bench;
    bench.addTwoFans();
    bench.smc.setInvertedWrites(true);
    bench.open();
    QVERIFY(!bench.service->setFanRPM(0, 2000));
    QVERIFY(bench.smc.keyValue("F0Tg") == Bytes({ 0x1F, 0x40 }));
    bench.smc.setFailing("F0Tg", true);
    QVERIFY(bench.service->setFanRPM(0, 3000));
    QCOMPARE(bench.log.lines(),
             QStringList({ QStringLiteral("error: Unable to set fan F0Tg RPM 2000"),
                           QStringLiteral("info: setFanRPM 3000 for F0Tg") }));
}

void TestServiceSpeeds::dualFanWritesBothTargets()
{
    ServiceBench bench;
    SMC::Options::set(Option::DualFan);
    bench.addTwoFloatFans();
    bench.smc.setKey("F0ID", "{fds", identifier("Exhaust"));
    bench.open();
    QCOMPARE(static_cast<int>(bench.service->getFanCount()), 1);
    QCOMPARE(bench.service->getFanName(0), std::string("Exhaust"));
    QVERIFY(bench.service->setFanRPM(0, 2000));
    QVERIFY(bench.smc.writes()
            == std::vector<FakeSmcPlatform::Write>(
                { { "F0Tg", single(2000) }, { "F1Tg", single(2000) } }));
}

void TestServiceSpeeds::dualFanTakesTheSecondResult()
{
    ServiceBench bench;
    SMC::Options::set(Option::DualFan);
    bench.addTwoFloatFans();
    bench.smc.setFailing("F1Tg", true);
    bench.open();
    QVERIFY(!bench.service->setFanRPM(0, 2000));
    bench.smc.setFailing("F1Tg", false);
    bench.smc.setFailing("F0Tg", true);
    QVERIFY(bench.service->setFanRPM(0, 2000));
}

void TestServiceSpeeds::dualFanRefusesOtherFans()
{
    ServiceBench bench;
    SMC::Options::set(Option::DualFan);
    bench.addTwoFloatFans();
    bench.open();
    QVERIFY(bench.service->setFanRPM(1, 2000));
    QCOMPARE(bench.spy->calls, QStringList({ QStringLiteral("write F1Tg 4") }));
    QCOMPARE(bench.log.lines(),
             QStringList({ QStringLiteral("info: setFanRPM 2000 for F1Tg"),
                           QStringLiteral("error: Dual fan: unexpected error, fan index is "
                                          "supposed to be 0") }));
}

BRISORA_TEST_MAIN(TestServiceSpeeds, QCoreApplication)

#include "test_service_speeds.moc"
