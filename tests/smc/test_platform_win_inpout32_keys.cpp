#include <array>

#include <QCoreApplication>

#include "app/smc/platform_win_inpout32.h"
#include "tests/smc/portbench.h"
#include "tests/support/testenvironment.h"

class TestPlatformWinInpOut32Keys : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void writeSendsValueBytesWhenTheyAreWanted();
    void completedWriteGivesFalse();
    void failedWriteGivesTrue_data();
    void failedWriteGivesTrue();
    void writeSendsNoMoreThanAValueHolds();
    void keyInfoIsRead();
    void unknownKeyIsSilent();
    void failedKeyInfoIsLogged();
    void indexGoesOutMostSignificantByteFirst();
    void nameEndsAtAZero();
    void failedKeyByIndexIsLogged();
    void everySleepLiesInAnExchange();
};

void TestPlatformWinInpOut32Keys::writeSendsValueBytesWhenTheyAreWanted()
{
    PortBench bench;
    bench.open();
    bench.driver->statuses
        = { accepted, accepted, accepted, accepted, accepted, accepted, ready, accepted, accepted };
    const std::array<std::uint8_t, 2> value = { 0x00, 0x03 };
    static_cast<void>(bench.platform->writeKey("FS! ", value.data(), 2));
    QCOMPARE(bench.driver->calls,
             words("out 304 11, sleep 2, "
                   "out 300 46, sleep 2, out 300 53, sleep 2, out 300 21, sleep 2, "
                   "out 300 20, sleep 2, out 300 02, sleep 2, "
                   "sleep 2, sleep 4, out 300 00, sleep 2, out 300 03"));
    QCOMPARE(bench.log.lines(), QStringList());
}

void TestPlatformWinInpOut32Keys::completedWriteGivesFalse()
{
    PortBench bench;
    bench.open();
    bench.driver->statuses = { accepted };
    const std::uint8_t value = 1;
    QVERIFY(!bench.platform->writeKey("F0Md", &value, 1));
}

void TestPlatformWinInpOut32Keys::failedWriteGivesTrue_data()
{
    QTest::addColumn<int>("takenBytes");
    QTest::addColumn<int>("sentBytes");
    QTest::addColumn<QStringList>("log");
    const QStringList sendFailed = words("error: PlatformWinProviderInpOut32::send_byte failed");
    QTest::newRow("command") << 0 << 1 << sendFailed;
    QTest::newRow("key") << 3 << 4 << sendFailed;
    QTest::newRow("length") << 5 << 6 << sendFailed;
    QTest::newRow("value") << 6 << 6 << QStringList();
}

void TestPlatformWinInpOut32Keys::failedWriteGivesTrue()
{
    QFETCH(int, takenBytes);
    QFETCH(int, sentBytes);
    QFETCH(QStringList, log);
    PortBench bench;
    bench.open();
    bench.driver->statuses
        = std::deque<std::uint8_t>(static_cast<std::size_t>(takenBytes), accepted);
    bench.driver->statuses.push_back(busy);
    const std::uint8_t value = 1;
    QVERIFY(bench.platform->writeKey("F0Md", &value, 1));
    QCOMPARE(bench.driver->callsOf(QStringLiteral("out")).size(), sentBytes);
    QCOMPARE(bench.log.lines(), log);
}

void TestPlatformWinInpOut32Keys::writeSendsNoMoreThanAValueHolds()
{
    PortBench bench;
    bench.open();
    bench.driver->statuses = { accepted };
    const std::array<std::uint8_t, 32> value = {};
    QVERIFY(!bench.platform->writeKey("LONG", value.data(), 255));
    const QStringList sent = bench.driver->callsOf(QStringLiteral("out"));
    QCOMPARE(sent.at(5), QStringLiteral("out 300 20"));
    QCOMPARE(sent.size(), 6 + 32);
}

void TestPlatformWinInpOut32Keys::keyInfoIsRead()
{
    PortBench bench;
    bench.open();
    bench.driver->statuses = promptAnswer(6);
    bench.driver->values = { 2, 'f', 'p', 'e', '2', 0xD0 };
    SMC::KeyInfo info;
    QVERIFY(bench.platform->getKeyInfo("F0Mn", info));
    QCOMPARE(static_cast<int>(info.length), 2);
    QCOMPARE(QByteArray(info.type.data(), 4), QByteArray("fpe2"));
    QCOMPARE(static_cast<int>(info.attributes), 0xD0);
    QCOMPARE(bench.driver->callsOf(QStringLiteral("out")),
             words("out 304 13, out 300 46, out 300 30, out 300 4d, out 300 6e, out 300 06"));
}

void TestPlatformWinInpOut32Keys::unknownKeyIsSilent()
{
    PortBench bench;
    bench.open();
    bench.driver->statuses = promptAnswer(6);
    SMC::KeyInfo info;
    info.length = 9;
    QVERIFY(!bench.platform->getKeyInfo("NONE", info));
    QCOMPARE(static_cast<int>(info.length), 9);
    QCOMPARE(bench.log.lines(), QStringList());
}

void TestPlatformWinInpOut32Keys::failedKeyInfoIsLogged()
{
    PortBench bench;
    bench.open();
    bench.driver->statuses = promptAnswer(1);
    bench.driver->statuses.push_back(0x00);
    SMC::KeyInfo info;
    QVERIFY(!bench.platform->getKeyInfo("F0Mn", info));
    QCOMPARE(bench.log.take(),
             words("error: PlatformWinProviderInpOut32::read_smc failed, "
                   "error: getKeyInfo: read_smc failed"));

    bench.driver->statuses = { busy };
    QVERIFY(!bench.platform->getKeyInfo("F0Mn", info));
    QCOMPARE(bench.log.take(),
             words("error: PlatformWinProviderInpOut32::send_byte failed, "
                   "error: getKeyInfo: read_smc failed"));
}

void TestPlatformWinInpOut32Keys::indexGoesOutMostSignificantByteFirst()
{
    PortBench bench;
    bench.open();
    bench.driver->statuses = promptAnswer(4);
    bench.driver->values = { 'T', 'C', '0', 'D' };
    std::string key;
    QVERIFY(bench.platform->getKeyByIndex(0x12345678, key));
    QCOMPARE(key, std::string("TC0D"));
    QCOMPARE(bench.driver->callsOf(QStringLiteral("out")),
             words("out 304 12, out 300 12, out 300 34, out 300 56, out 300 78, out 300 04"));
}

void TestPlatformWinInpOut32Keys::nameEndsAtAZero()
{
    PortBench bench;
    bench.open();
    bench.driver->statuses = promptAnswer(4);
    bench.driver->values = { 'A', 'B', 0, 'D' };
    std::string key = "old";
    QVERIFY(bench.platform->getKeyByIndex(0, key));
    QCOMPARE(key, std::string("AB"));
}

void TestPlatformWinInpOut32Keys::failedKeyByIndexIsLogged()
{
    PortBench bench;
    bench.open();
    bench.driver->statuses = { busy };
    std::string key = "old";
    QVERIFY(!bench.platform->getKeyByIndex(0, key));
    QCOMPARE(key, std::string("old"));
    QCOMPARE(bench.log.lines(),
             words("error: PlatformWinProviderInpOut32::send_byte failed, "
                   "error: getKeyByIndex: read_smc failed"));
}

void TestPlatformWinInpOut32Keys::everySleepLiesInAnExchange()
{
    PortBench bench;
    bench.open();
    bench.driver->statuses = { accepted };
    std::array<std::uint8_t, 2> value = {};
    std::string name;
    SMC::KeyInfo info;

    static_cast<void>(bench.platform->readKey("F0Ac", value.data(), 2));
    static_cast<void>(bench.platform->writeKey("FS! ", value.data(), 2));
    static_cast<void>(bench.platform->getKeyInfo("F0Ac", info));
    static_cast<void>(bench.platform->getKeyByIndex(1, name));

    QVERIFY(!bench.driver->callsOf(QStringLiteral("sleep")).isEmpty());
    QCOMPARE(bench.driver->sleepsOutside, 0);
    QCOMPARE(bench.driver->exchanges, 4);
    QCOMPARE(bench.driver->openExchanges, 0);
}

BRISORA_TEST_MAIN(TestPlatformWinInpOut32Keys, QCoreApplication)

#include "test_platform_win_inpout32_keys.moc"
