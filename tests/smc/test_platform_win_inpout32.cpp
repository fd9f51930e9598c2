#include <array>

#include <QCoreApplication>

#include "app/smc/platform_win_inpout32.h"
#include "tests/smc/portbench.h"
#include "tests/support/testenvironment.h"

class TestPlatformWinInpOut32 : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void openLoadsAndResolves();
    void missingLibraryFails();
    void libraryWithoutIsInpOutDriverOpenFails();
    void driverIsAskedTwice();
    void driverThatIsNotReadyFailsSilently();
    void missingLibrarysReasonIsTold();
    void reasonOfADriverThatIsNotReadyIsToldOnce();
    void reasonIsNotToldWhenTheDriverIsReady();
    void libraryWithoutOut32OpensAndDoesNothing();
    void libraryWithoutInp32ReadsZero();
    void closeUnloadsWhatWasLoaded();
    void twoByteKeyIsReadInEightWaits();
    void emptyReadHasNoDataWait();
    void readOfTheLongestValueFillsTheBuffer();
    void commandByteThatIsLostEndsTheRead();
    void busyIsTestedBeforeAccepted();
    void busyControllerIsNotSentTheByteAgain();
    void lostByteIsSentAgain();
    void silentControllerGetsElevenSends();
    void keyByteThatIsLostEndsTheRead();
    void lengthByteThatIsRefusedEndsTheRead();
    void valueThatDoesNotComeEndsTheRead();
    void highStatusBitsDoNotCount();
};

void TestPlatformWinInpOut32::openLoadsAndResolves()
{
    PortBench bench;
    QVERIFY(bench.platform->open());
    QCOMPARE(bench.driver->calls,
             words("load, resolve IsInpOutDriverOpen, resolve Out32, resolve Inp32, "
                   "IsInpOutDriverOpen"));
    QCOMPARE(bench.log.lines(), words("info: Using inpout32 module"));
}

void TestPlatformWinInpOut32::missingLibraryFails()
{
    PortBench bench;
    bench.driver->loads = false;
    bench.driver->error = 126;
    QVERIFY(!bench.platform->open());
    QCOMPARE(bench.driver->calls, words("load"));
    QCOMPARE(bench.log.lines(), words("error: inpout32 loading failed with 126"));
    bench.platform->close();
    QCOMPARE(bench.driver->calls, words("load"));
}

void TestPlatformWinInpOut32::libraryWithoutIsInpOutDriverOpenFails()
{
    PortBench bench;
    bench.driver->hasIsInpOutDriverOpen = false;
    bench.driver->hasOut32 = false; // its error is not the one to be told
    QVERIFY(!bench.platform->open());
    QCOMPARE(bench.log.lines(), words("error: GetProcAddress failed with 127"));
    QVERIFY(!bench.driver->calls.contains(QStringLiteral("IsInpOutDriverOpen")));
}

void TestPlatformWinInpOut32::driverIsAskedTwice()
{
    PortBench bench;
    bench.driver->ready = { 0, 1 };
    QVERIFY(bench.platform->open());
    QCOMPARE(bench.driver->calls.count(QStringLiteral("IsInpOutDriverOpen")), 2);
    QCOMPARE(bench.log.lines(), words("info: Using inpout32 module"));
}

void TestPlatformWinInpOut32::driverThatIsNotReadyFailsSilently()
{
    PortBench bench;
    bench.driver->ready = { 0, 0, 1 };
    QVERIFY(!bench.platform->open());
    QCOMPARE(bench.driver->calls.count(QStringLiteral("IsInpOutDriverOpen")), 2);
    QCOMPARE(bench.log.lines(), QStringList());
}

void TestPlatformWinInpOut32::missingLibrarysReasonIsTold()
{
    PortBench bench;
    bench.driver->loads = false;
    bench.driver->error = 126;
    bench.driver->reason = "no such\nfile";
    QVERIFY(!bench.platform->open());
    QCOMPARE(bench.log.lines(),
             words("error: inpout32 loading failed with 126, error: no such\\nfile"));
}

void TestPlatformWinInpOut32::reasonOfADriverThatIsNotReadyIsToldOnce()
{
    PortBench bench;
    bench.driver->ready = { 0, 0 };
    bench.driver->reason = "somebody else holds the ports";
    QVERIFY(!bench.platform->open());
    QCOMPARE(bench.log.lines(), words("error: somebody else holds the ports"));
}

void TestPlatformWinInpOut32::reasonIsNotToldWhenTheDriverIsReady()
{
    PortBench bench;
    bench.driver->ready = { 0, 1 };
    bench.driver->reason = "the first try was too early";
    QVERIFY(bench.platform->open());
    QCOMPARE(bench.log.lines(), words("info: Using inpout32 module"));
}

void TestPlatformWinInpOut32::libraryWithoutOut32OpensAndDoesNothing()
{
    PortBench bench;
    bench.driver->hasOut32 = false;
    bench.open();
    std::uint8_t value = 0;
    QVERIFY(!bench.platform->readKey("FNum", &value, 1));
    QCOMPARE(bench.driver->calls, words(backOff));
    QCOMPARE(bench.log.lines(), words("error: PlatformWinProviderInpOut32::send_byte failed"));
}

void TestPlatformWinInpOut32::libraryWithoutInp32ReadsZero()
{
    PortBench bench;
    bench.driver->hasInp32 = false;
    bench.driver->statuses = { accepted };
    bench.open();
    std::uint8_t value = 0;
    QVERIFY(!bench.platform->readKey("FNum", &value, 1));
    QCOMPARE(bench.driver->callsOf(QStringLiteral("out")).size(), 11);
}

void TestPlatformWinInpOut32::closeUnloadsWhatWasLoaded()
{
    PortBench bench;
    bench.platform->close();
    QCOMPARE(bench.driver->calls, QStringList());
    bench.open();
    bench.platform->close();
    QCOMPARE(bench.driver->calls, words("unload"));
}

void TestPlatformWinInpOut32::twoByteKeyIsReadInEightWaits()
{
    PortBench bench;
    bench.open();
    bench.driver->statuses = promptAnswer(2);
    bench.driver->values = { 0x1F, 0x40 };
    std::array<std::uint8_t, 3> value = { 0, 0, 0xEE };
    QVERIFY(bench.platform->readKey("F0Ac", value.data(), 2));
    QVERIFY(value == (std::array<std::uint8_t, 3> { 0x1F, 0x40, 0xEE }));
    QCOMPARE(bench.driver->calls,
             words("out 304 10, sleep 2, "
                   "out 300 46, sleep 2, out 300 30, sleep 2, out 300 41, sleep 2, "
                   "out 300 63, sleep 2, out 300 02, sleep 2, "
                   "sleep 2, in 300, sleep 2, in 300"));
    QCOMPARE(bench.driver->callsOf(QStringLiteral("sleep")).size(), 8);
    QCOMPARE(bench.log.lines(), QStringList());
}

void TestPlatformWinInpOut32::emptyReadHasNoDataWait()
{
    PortBench bench;
    bench.open();
    bench.driver->statuses = promptAnswer(0);
    QVERIFY(bench.platform->readKey("TC0D", nullptr, 0));
    QCOMPARE(bench.driver->callsOf(QStringLiteral("sleep")).size(), 6);
    QCOMPARE(bench.driver->callsOf(QStringLiteral("out")).last(), QStringLiteral("out 300 00"));
    QCOMPARE(bench.driver->callsOf(QStringLiteral("in")), QStringList());
}

void TestPlatformWinInpOut32::readOfTheLongestValueFillsTheBuffer()
{
    PortBench bench;
    bench.open();
    bench.driver->statuses = promptAnswer(32);
    bench.driver->values = std::deque<std::uint8_t>(32, 0x5A);
    std::array<std::uint8_t, 32> value = {};
    QVERIFY(bench.platform->readKey("RVBF", value.data(), 32));
    QCOMPARE(static_cast<int>(value.back()), 0x5A);
}

void TestPlatformWinInpOut32::commandByteThatIsLostEndsTheRead()
{
    PortBench bench;
    bench.open();
    bench.driver->statuses = { busy };
    std::uint8_t value = 0;
    QVERIFY(!bench.platform->readKey("FNum", &value, 1));
    QCOMPARE(bench.driver->callsOf(QStringLiteral("out")), words("out 304 10"));
    QCOMPARE(bench.log.lines(), words("error: PlatformWinProviderInpOut32::send_byte failed"));
}

void TestPlatformWinInpOut32::busyIsTestedBeforeAccepted()
{
    PortBench bench;
    bench.open();
    bench.driver->statuses = { busyAndAccepted, accepted };
    QVERIFY(bench.platform->readKey("FNum", nullptr, 0));
    QCOMPARE(bench.driver->calls.mid(0, 4), words("out 304 10, sleep 2, sleep 4, out 300 46"));
}

void TestPlatformWinInpOut32::busyControllerIsNotSentTheByteAgain()
{
    PortBench bench;
    bench.open();
    bench.driver->statuses = { busy, busy, accepted };
    QVERIFY(bench.platform->readKey("FNum", nullptr, 0));
    QCOMPARE(bench.driver->calls.mid(0, 5),
             words("out 304 10, sleep 2, sleep 4, sleep 8, out 300 46"));
}

void TestPlatformWinInpOut32::lostByteIsSentAgain()
{
    PortBench bench;
    bench.open();
    bench.driver->statuses = { accepted, 0x00, 0x01, accepted };
    QVERIFY(bench.platform->readKey("FNum", nullptr, 0));
    QCOMPARE(bench.driver->calls.mid(0, 9),
             words("out 304 10, sleep 2, out 300 46, sleep 2, out 300 46, sleep 4, out 300 46, "
                   "sleep 8, out 300 4e"));
}

void TestPlatformWinInpOut32::silentControllerGetsElevenSends()
{
    PortBench bench;
    bench.open();
    bench.driver->statuses = { 0x00 };
    QVERIFY(!bench.platform->readKey("FNum", nullptr, 0));
    QCOMPARE(bench.driver->callsOf(QStringLiteral("out")).count(QStringLiteral("out 304 10")), 11);
    QCOMPARE(bench.driver->callsOf(QStringLiteral("out")).size(), 11);
    QCOMPARE(bench.driver->callsOf(QStringLiteral("sleep")), words(backOff));
    QCOMPARE(bench.driver->calls.last(), QStringLiteral("out 304 10"));
    QCOMPARE(bench.log.lines(), words("error: PlatformWinProviderInpOut32::send_byte failed"));
}

void TestPlatformWinInpOut32::keyByteThatIsLostEndsTheRead()
{
    PortBench bench;
    bench.open();
    bench.driver->statuses = { accepted, accepted, busy };
    QVERIFY(!bench.platform->readKey("FNum", nullptr, 0));
    QCOMPARE(bench.driver->callsOf(QStringLiteral("out")),
             words("out 304 10, out 300 46, out 300 4e"));
    QCOMPARE(bench.log.lines(), words("error: PlatformWinProviderInpOut32::send_byte failed"));
}

void TestPlatformWinInpOut32::lengthByteThatIsRefusedEndsTheRead()
{
    PortBench bench;
    bench.open();
    bench.driver->statuses = { accepted, accepted, accepted, accepted, accepted, 0x00 };
    std::uint8_t value = 7;
    QVERIFY(!bench.platform->readKey("NONE", &value, 1));
    QCOMPARE(bench.driver->callsOf(QStringLiteral("out")).count(QStringLiteral("out 300 01")), 11);
    QCOMPARE(static_cast<int>(value), 7);
    QCOMPARE(bench.log.lines(), words("error: PlatformWinProviderInpOut32::send_byte failed"));
}

void TestPlatformWinInpOut32::valueThatDoesNotComeEndsTheRead()
{
    PortBench bench;
    bench.open();
    bench.driver->statuses = promptAnswer(1);
    bench.driver->statuses.push_back(accepted); // ready to take is not ready to give
    bench.driver->values = { 0x11, 0x22 };
    std::array<std::uint8_t, 2> value = {};
    QVERIFY(!bench.platform->readKey("F0Ac", value.data(), 2));
    QVERIFY(value == (std::array<std::uint8_t, 2> { 0x11, 0x00 }));
    QCOMPARE(bench.driver->calls.mid(bench.driver->calls.size() - 10), words(backOff));
    QCOMPARE(bench.log.lines(), words("error: PlatformWinProviderInpOut32::read_smc failed"));
}

void TestPlatformWinInpOut32::highStatusBitsDoNotCount()
{
    PortBench bench;
    bench.open();
    bench.driver->statuses = { 0x0C, 0xF4, 0x44, 0x84, 0xC4, 0xF4, 0x55, 0x0D, 0xF5 };
    bench.driver->values = { 0x11, 0x22 };
    std::array<std::uint8_t, 2> value = {};
    QVERIFY(bench.platform->readKey("F0Ac", value.data(), 2));
    // 0x0D differs in the four bits that count: one more wait.
    QCOMPARE(bench.driver->calls.mid(bench.driver->calls.size() - 5),
             words("sleep 2, in 300, sleep 2, sleep 4, in 300"));
}

BRISORA_TEST_MAIN(TestPlatformWinInpOut32, QCoreApplication)

#include "test_platform_win_inpout32.moc"
