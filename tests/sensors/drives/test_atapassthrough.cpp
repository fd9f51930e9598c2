#include <vector>

#include <QByteArray>
#include <QCoreApplication>
#include <QtTest>

#include "app/sensors/drives/atapassthrough.h"
#include "tests/sensors/drives/driveblocks.h"
#include "tests/support/testenvironment.h"

namespace {

constexpr int none = -1;

QByteArray hexOf(const ScsiCommand& command)
{
    const auto* bytes = static_cast<const char*>(static_cast<const void*>(&command.bytes));
    return QByteArray(bytes, static_cast<int>(command.bytes.size())).toHex(' ');
}

ScsiOutcome outcomeOf(int status, const QByteArray& senseInHex)
{
    const QByteArray sense = QByteArray::fromHex(senseInHex);
    ScsiOutcome outcome;
    outcome.status = static_cast<std::uint8_t>(status);
    outcome.senseSize = std::min(outcome.sense.size(), static_cast<std::size_t>(sense.size()));
    std::copy_n(sense.begin(), outcome.senseSize, outcome.sense.begin());
    return outcome;
}

} // namespace

class TestAtaPassThrough : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void commandsAreLaidOut();
    void aCommandTimesOutAfterSeconds();
    void successIsTold_data();
    void successIsTold();
    void theSectorCountIsFound_data();
    void theSectorCountIsFound();
    void anAnswerThatDidNotArriveIsNone_data();
    void anAnswerThatDidNotArriveIsNone();
    void anySenseSizeIsTaken();
};

void TestAtaPassThrough::commandsAreLaidOut()
{
    DriveBlock block {};
    const ScsiCommand identify = AtaPassThrough::reading(AtaCommands::identifyDevice, block);
    const ScsiCommand read = AtaPassThrough::reading(AtaCommands::smartReadData, block);
    const ScsiCommand enable = AtaPassThrough::plain(AtaCommands::smartEnable);
    const ScsiCommand power = AtaPassThrough::asking(AtaCommands::checkPowerMode);

    QCOMPARE(hexOf(identify), QByteArray("85 08 0e 00 00 00 01 00 01 00 00 00 00 a0 ec 00"));
    QCOMPARE(hexOf(read), QByteArray("85 08 0e 00 d0 00 01 00 01 00 4f 00 c2 a0 b0 00"));
    QCOMPARE(hexOf(enable), QByteArray("85 06 00 00 d8 00 01 00 01 00 4f 00 c2 a0 b0 00"));
    QCOMPARE(hexOf(power), QByteArray("85 06 20 00 00 00 00 00 00 00 00 00 00 a0 e5 00"));
    QCOMPARE(read.data.data(), block.data());
    QCOMPARE(read.data.size(), block.size());
    QVERIFY(enable.data.empty());
    QVERIFY(power.data.empty());
}

void TestAtaPassThrough::aCommandTimesOutAfterSeconds()
{
    QCOMPARE(AtaPassThrough::plain(AtaCommands::smartEnable).timeout, 7000U);
    QCOMPARE(AtaPassThrough::asking(AtaCommands::checkPowerMode).timeout, 7000U);
}

void TestAtaPassThrough::successIsTold_data()
{
    QTest::addColumn<int>("error");
    QTest::addColumn<int>("status");
    QTest::addColumn<int>("hostStatus");
    QTest::addColumn<int>("driverStatus");
    QTest::addColumn<bool>("succeeded");
    QTest::newRow("done") << 0 << 0 << 0 << 0 << true;
    QTest::newRow("done, with sense bytes") << 0 << 0 << 0 << 8 << true;
    QTest::newRow("the kernel refused") << 1 << 0 << 0 << 0 << false;
    QTest::newRow("the drive refused") << 0 << 2 << 0 << 8 << false;
    QTest::newRow("busy") << 0 << 8 << 0 << 0 << false;
    QTest::newRow("timed out") << 0 << 0 << 3 << 0 << false;
    QTest::newRow("driver failure") << 0 << 0 << 0 << 6 << false;
}

void TestAtaPassThrough::successIsTold()
{
    QFETCH(int, error);
    QFETCH(int, status);
    QFETCH(int, hostStatus);
    QFETCH(int, driverStatus);
    ScsiOutcome outcome;
    outcome.error = error;
    outcome.status = static_cast<std::uint8_t>(status);
    outcome.hostStatus = static_cast<std::uint16_t>(hostStatus);
    outcome.driverStatus = static_cast<std::uint16_t>(driverStatus);

    QTEST(AtaPassThrough::succeeded(outcome), "succeeded");
}

void TestAtaPassThrough::theSectorCountIsFound_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("sense");
    QTest::addColumn<int>("count");
    const auto row = [](const char* name, const char* sense, int count, int status = 2) {
        QTest::newRow(name) << status << QByteArray(sense) << count;
    };
    // Descriptors: 72, key, code, qualifier; from byte 8 on the ATA return.
    row("descriptor", "72 01 00 1d 00000000 09 0c 00 00 00 80 000000000000 a0 50", 0x80);
    row("standby", "72 01 00 1d 0000000e 09 0c 00 00 00 00 000000000000 a0 50", 0x00);
    row("current form, with the top bit",
        "f2 01 00 1d 0000000e 09 0c 00 00 00 ff 000000000000 a0 50", 0xFF);
    row("behind another descriptor",
        "72 01 00 1d 00000014 03 04 0000 0000 09 0c 00 00 00 ff 000000000000 a0 50", 0xFF);
    row("fixed", "f0 00 01 00 50 40 ff 0a 00000000 00 1d", 0xFF);
    row("fixed, standby", "70 00 01 00 50 40 00 0a 00000000 00 1d", 0x00);
    row("no sense bytes", "", none);
    row("one byte", "72", none);
    row("header alone", "72 01 00 1d 00000000", none);
    row("half a descriptor", "72 01 00 1d 0000000e 09 0c 00 00 00 80 0000", none);
    row("fixed, cut", "70 00 01 00 50 40 ff 0a 00000000 00", none);
    row("another descriptor", "72 01 00 1d 0000000e 0a 0c 00 00 00 80 000000000000 a0 50", none);
    row("a descriptor that points nowhere", "72 01 00 1d 00000002 03 ff", none);
    row("aborted", "72 0b 00 1d 0000000e 09 0c 00 00 00 80 000000000000 a0 50", none);
    row("another code", "72 01 04 1d 0000000e 09 0c 00 00 00 80 000000000000 a0 50", none);
    row("another qualifier", "72 01 00 00 0000000e 09 0c 00 00 00 80 000000000000 a0 50", none);
    row("fixed, aborted", "70 00 0b 00 50 40 ff 0a 00000000 00 1d", none);
    row("the drive's error bit", "72 01 00 1d 0000000e 09 0c 00 04 00 80 000000000000 a0 51", none);
    row("the drive's fault bit", "72 01 00 1d 0000000e 09 0c 00 00 00 80 000000000000 a0 70", none);
    row("unknown format", "7e 01 00 1d 0000000e 09 0c 00 00 00 80 000000000000 a0 50", none);
    row("no condition to check", "72 01 00 1d 0000000e 09 0c 00 00 00 80 000000000000 a0 50", none,
        0);
}

void TestAtaPassThrough::theSectorCountIsFound()
{
    QFETCH(int, status);
    QFETCH(QByteArray, sense);
    const auto count = AtaPassThrough::returnedSectorCount(outcomeOf(status, sense));
    QTEST(count ? static_cast<int>(*count) : none, "count");
}

void TestAtaPassThrough::anAnswerThatDidNotArriveIsNone_data()
{
    QTest::addColumn<int>("error");
    QTest::addColumn<int>("hostStatus");
    QTest::newRow("arrived") << 0 << 0;
    QTest::newRow("refused") << 1 << 0;
    QTest::newRow("timed out") << 0 << 3;
}

void TestAtaPassThrough::anAnswerThatDidNotArriveIsNone()
{
    QFETCH(int, error);
    QFETCH(int, hostStatus);
    ScsiOutcome outcome = outcomeOf(2, "72 01 00 1d 0000000e 09 0c 00 00 00 80 000000000000 a0 50");
    outcome.error = error;
    outcome.hostStatus = static_cast<std::uint16_t>(hostStatus);

    QCOMPARE(AtaPassThrough::returnedSectorCount(outcome).has_value(),
             error == 0 && hostStatus == 0);
}

void TestAtaPassThrough::anySenseSizeIsTaken()
{
    ScsiOutcome outcome = outcomeOf(2, "72 01 00 1d 0000000e 09 0c 00 00 00 80 000000000000 a0 50");
    outcome.senseSize = 1000; // more than there is room for

    QVERIFY(AtaPassThrough::returnedSectorCount(outcome).has_value());
}

BRISORA_TEST_MAIN(TestAtaPassThrough, QCoreApplication)

#include "test_atapassthrough.moc"
