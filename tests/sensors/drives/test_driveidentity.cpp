#include <vector>

#include <QCoreApplication>
#include <QtTest>

#include "app/sensors/drives/driveidentity.h"
#include "tests/sensors/drives/driveblocks.h"
#include "tests/support/testenvironment.h"

namespace {

QString text(const char* value) { return QString::fromLatin1(value); }

} // namespace

class TestDriveIdentity : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void textsAreReadWordByWord();
    void textsAreTrimmed_data();
    void textsAreTrimmed();
    void textEndsAtAZeroByte();
    void aWholeFieldIsTaken();
    void aDriveWithoutAModelIsNamedByANumberThatIsAlwaysZero();
    void aDriveWithNeitherModelNorSerialHasAnEmptyName();
    void percentSignsInNamesStay();
    void typeFollowsTheRotationRate_data();
    void typeFollowsTheRotationRate();
    void selfMonitoringIsOnWhenTheDriveSaysSo_data();
    void selfMonitoringIsOnWhenTheDriveSaysSo();
    void cutAnswersGiveWhatIsThere_data();
    void cutAnswersGiveWhatIsThere();
    void longAnswersAreReadLikeOthers();
};

void TestDriveIdentity::textsAreReadWordByWord()
{
    DriveBlock block {};
    block[54] = 'P'; // the bytes of "APPLE" as they come
    block[55] = 'A';
    block[56] = 'L';
    block[57] = 'P';
    block[58] = ' ';
    block[59] = 'E';
    setAtaText(block, 20, 20, "S1K4NYAF");
    setAtaText(block, 46, 8, "UXM6JA1Q");

    const DriveIdentity identity = DriveIdentity::parse(block);

    QCOMPARE(identity.model, text("APPLE"));
    QCOMPARE(identity.serial, text("S1K4NYAF"));
    QCOMPARE(identity.firmwareRevision, text("UXM6JA1Q"));
    QCOMPARE(identity.key(), text("APPLE (S1K4NYAF)"));
}

void TestDriveIdentity::textsAreTrimmed_data()
{
    QTest::addColumn<QByteArray>("field");
    QTest::addColumn<QString>("expected");
    QTest::newRow("blanks behind") << QByteArray("Model") << text("Model");
    QTest::newRow("blanks before") << QByteArray("      Model") << text("Model");
    QTest::newRow("other white space") << QByteArray("\t\nModel\r\v\f") << text("Model");
    QTest::newRow("blanks within stay") << QByteArray(" APPLE  SSD ") << text("APPLE  SSD");
    QTest::newRow("blanks alone") << QByteArray(40, ' ') << text("Drive 0");
}

void TestDriveIdentity::textsAreTrimmed()
{
    QFETCH(QByteArray, field);
    QTEST(DriveIdentity::parse(identifyBlock(field, "1")).model, "expected");
}

void TestDriveIdentity::textEndsAtAZeroByte()
{
    const DriveBlock block
        = identifyBlock(QByteArray("Model\0rest", 10), QByteArray("12 \0rest", 8));

    const DriveIdentity identity = DriveIdentity::parse(block);

    QCOMPARE(identity.model, text("Model"));
    QCOMPARE(identity.serial, text("12"));
}

void TestDriveIdentity::aWholeFieldIsTaken()
{
    const DriveIdentity identity
        = DriveIdentity::parse(identifyBlock(QByteArray(40, 'm'), QByteArray(20, 's')));

    QCOMPARE(identity.model, QString(40, QLatin1Char('m')));
    QCOMPARE(identity.serial, QString(20, QLatin1Char('s')));
    QCOMPARE(identity.firmwareRevision, text("FW1.0"));
}

void TestDriveIdentity::aDriveWithoutAModelIsNamedByANumberThatIsAlwaysZero()
{
    const DriveIdentity first = DriveIdentity::parse(identifyBlock("", "AAA"));
    const DriveIdentity second = DriveIdentity::parse(identifyBlock("", "BBB"));

    QCOMPARE(first.model, text("Drive 0"));
    QCOMPARE(second.model, text("Drive 0"));
    QCOMPARE(first.key(), text("Drive 0 (AAA)"));
    QCOMPARE(second.key(), text("Drive 0 (BBB)"));
}

void TestDriveIdentity::aDriveWithNeitherModelNorSerialHasAnEmptyName()
{
    const DriveIdentity identity = DriveIdentity::parse(identifyBlock("", ""));

    QCOMPARE(identity.model, QString());
    QCOMPARE(identity.key(), text(" ()"));
}

void TestDriveIdentity::percentSignsInNamesStay()
{
    QCOMPARE(DriveIdentity::parse(identifyBlock("%2 %1", "%1")).key(), text("%2 %1 (%1)"));
}

void TestDriveIdentity::typeFollowsTheRotationRate_data()
{
    QTest::addColumn<int>("rate");
    QTest::addColumn<bool>("isSolidState");
    QTest::newRow("not told") << 0 << false;
    QTest::newRow("solid state") << 1 << true;
    QTest::newRow("reserved") << 2 << false;
    QTest::newRow("high byte") << 0x0100 << false;
    QTest::newRow("5400") << 5400 << false;
    QTest::newRow("7200") << 7200 << false;
}

void TestDriveIdentity::typeFollowsTheRotationRate()
{
    QFETCH(int, rate);
    QFETCH(bool, isSolidState);
    const DriveIdentity identity
        = DriveIdentity::parse(identifyBlock("M", "1", static_cast<std::uint16_t>(rate)));

    QCOMPARE(identity.isSolidState, isSolidState);
    QCOMPARE(identity.type(), isSolidState ? SensorType::ssd : SensorType::hdd);
}

void TestDriveIdentity::selfMonitoringIsOnWhenTheDriveSaysSo_data()
{
    QTest::addColumn<int>("enabled");
    QTest::addColumn<int>("validity");
    QTest::addColumn<bool>("expected");
    QTest::newRow("on") << 0x0001 << 0x4000 << true;
    QTest::newRow("on, with others") << 0x746B << 0x6123 << true;
    QTest::newRow("off") << 0x746A << 0x4000 << false;
    QTest::newRow("nothing is valid") << 0x0001 << 0x0000 << false;
    QTest::newRow("all ones") << 0xFFFF << 0xFFFF << false;
}

void TestDriveIdentity::selfMonitoringIsOnWhenTheDriveSaysSo()
{
    QFETCH(int, enabled);
    QFETCH(int, validity);
    DriveBlock block = identifyBlock("M", "1");
    setWord(block, 85, static_cast<std::uint16_t>(enabled));
    setWord(block, 87, static_cast<std::uint16_t>(validity));

    QTEST(DriveIdentity::parse(block).isSmartEnabled, "expected");
}

void TestDriveIdentity::cutAnswersGiveWhatIsThere_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<QString>("key");
    QTest::newRow("empty") << 0 << text(" ()");
    QTest::newRow("one byte") << 1 << text(" ()");
    QTest::newRow("before the serial") << 20 << text(" ()");
    QTest::newRow("serial") << 40 << text("Drive 0 (SERIAL)");
    QTest::newRow("a part of the model") << 56 << text("AP (SERIAL)");
    QTest::newRow("half a word of the model") << 57 << text("AP (SERIAL)");
    QTest::newRow("without the rotation rate") << 434 << text("APPLE SSD (SERIAL)");
}

void TestDriveIdentity::cutAnswersGiveWhatIsThere()
{
    QFETCH(int, size);
    const DriveBlock block = identifyBlock("APPLE SSD", "SERIAL", solidState);
    // A copy of its own, so that the sanitizers see each byte beyond the end.
    const std::vector<std::uint8_t> cut(block.begin(), block.begin() + size);

    const DriveIdentity identity = DriveIdentity::parse(cut);

    QTEST(identity.key(), "key");
    QVERIFY(!identity.isSolidState);
}

void TestDriveIdentity::longAnswersAreReadLikeOthers()
{
    const DriveBlock block = identifyBlock("APPLE SSD", "SERIAL", solidState);
    std::vector<std::uint8_t> longer(block.begin(), block.end());
    longer.resize(4096, 0xEE);

    QCOMPARE(DriveIdentity::parse(longer).key(), text("APPLE SSD (SERIAL)"));
    QVERIFY(DriveIdentity::parse(longer).isSolidState);
}

BRISORA_TEST_MAIN(TestDriveIdentity, QCoreApplication)

#include "test_driveidentity.moc"
