#include <numeric>

#include <QCoreApplication>

#include "app/sysinfo/smbios.h"
#include "tests/support/testenvironment.h"
#include "tests/sysinfo/smbiosblock.h"

using namespace SmbiosBlock;

namespace {

SMBIOS::Text text(const char* value) { return QString::fromLatin1(value); }

QByteArray wholeTable()
{
    QByteArray uuid(16, '\0');
    std::iota(uuid.begin(), uuid.end(), char(1));
    return structure(0, bytes({ 1, 2, 0, 0, 3 }), { "Vendor", "BIOS version", "01/02/2020" })
        + structure(1, bytes({ 1, 2, 3, 4 }) + uuid + bytes({ 6, 5, 6 }),
                    { "Apple Inc.", "MacBookPro11,3", "1.0", "SERIAL", "SKU", "Mac" })
        + structure(2, bytes({ 1, 2, 3, 4, 5 }),
                    { "Apple Inc.", "Mac-2BD1B31983FE1663", "1.0 board", "BOARD", "Tag" })
        + end();
}

} // namespace

class TestSmbios : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void wholeTableIsRead();
    void otherStructuresAreSkipped();
    void fieldBeyondFormattedPartIsAbsent();
    void uuidNeedsItsWholeRoom();
    void textNumberGivesText_data();
    void textNumberGivesText();
    void nothingIsReadAfterTheEnd();
    void endOfAnotherLengthIsNoEnd();
    void lengthOfHeaderBoundsTheTable();
    void bytesAboveAsciiAreLatin1();
    void textCutOffByTheEndOfDataIsEmpty();
    void damagedTableIsSurvived_data();
    void damagedTableIsSurvived();
    void everyPrefixOfATableIsSurvived();
};

void TestSmbios::wholeTableIsRead()
{
    const SMBIOS smbios(block(wholeTable()));

    QCOMPARE(smbios.majorVersion(), std::uint8_t(2));
    QCOMPARE(smbios.minorVersion(), std::uint8_t(4));
    QCOMPARE(smbios.dmiRevision(), std::uint8_t(9));
    QVERIFY(smbios.bios().vendor == text("Vendor"));
    QVERIFY(smbios.bios().version == text("BIOS version"));
    QVERIFY(smbios.bios().releaseDate == text("01/02/2020"));
    QVERIFY(smbios.system().manufacturer == text("Apple Inc."));
    QVERIFY(smbios.system().product == text("MacBookPro11,3"));
    QVERIFY(smbios.system().version == text("1.0"));
    QVERIFY(smbios.system().serialNumber == text("SERIAL"));
    QVERIFY(smbios.system().uuid.has_value());
    QCOMPARE(smbios.system().uuid->front(), std::uint8_t(1));
    QCOMPARE(smbios.system().uuid->back(), std::uint8_t(16));
    QVERIFY(smbios.system().sku == text("SKU"));
    QVERIFY(smbios.system().family == text("Mac"));
    QVERIFY(smbios.baseboard().manufacturer == text("Apple Inc."));
    QVERIFY(smbios.baseboard().product == text("Mac-2BD1B31983FE1663"));
    QVERIFY(smbios.baseboard().version == text("1.0 board"));
    QVERIFY(smbios.baseboard().serialNumber == text("BOARD"));
    QVERIFY(smbios.baseboard().assetTag == text("Tag"));
}

void TestSmbios::otherStructuresAreSkipped()
{
    const SMBIOS smbios(block(structure(4, bytes({ 1, 2, 3 }), { "CPU", "Socket" })
                              + structure(32, bytes({ 0, 0, 0 }), {}) + machine("Apple", "iMac7,1")
                              + structure(17, bytes({ 1, 2 }), { "DIMM" }) + end()));

    QVERIFY(smbios.system().manufacturer == text("Apple"));
    QVERIFY(smbios.system().product == text("iMac7,1"));
    QVERIFY(!smbios.bios().vendor.has_value());
    QVERIFY(!smbios.baseboard().product.has_value());
}

void TestSmbios::fieldBeyondFormattedPartIsAbsent()
{
    const SMBIOS smbios(block(structure(1, bytes({ 1 }), { "Apple", "iMac7,1" }) + end()));

    QVERIFY(smbios.system().manufacturer == text("Apple"));
    QVERIFY(!smbios.system().product.has_value());
    QVERIFY(!smbios.system().uuid.has_value());
    QVERIFY(!smbios.system().sku.has_value());
    QVERIFY(!smbios.system().family.has_value());
}

void TestSmbios::uuidNeedsItsWholeRoom()
{
    const auto uuidOf = [](int room) {
        const SMBIOS smbios(
            block(structure(1, bytes({ 1, 2, 0, 0 }) + QByteArray(room, '\x07'), { "A", "B" })));
        return smbios.system().uuid;
    };

    QVERIFY(!uuidOf(0).has_value());
    QVERIFY(!uuidOf(15).has_value());
    QVERIFY(uuidOf(16).has_value());
    QCOMPARE(uuidOf(16)->back(), std::uint8_t(7));
}

void TestSmbios::textNumberGivesText_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<QByteArrayList>("texts");
    QTest::addColumn<QString>("expected");

    const QByteArrayList texts { "one", "two", "three" };
    QTest::newRow("first") << 1 << texts << "one";
    QTest::newRow("last") << 3 << texts << "three";
    QTest::newRow("none") << 0 << texts << "";
    QTest::newRow("one too many") << 4 << texts << "";
    QTest::newRow("far too many") << 255 << texts << "";
    QTest::newRow("no texts") << 1 << QByteArrayList() << "";
}

void TestSmbios::textNumberGivesText()
{
    QFETCH(int, number);
    QFETCH(QByteArrayList, texts);

    // Another structure follows, whose texts must not be taken.
    const SMBIOS smbios(
        block(structure(1, bytes({ number }), texts) + structure(11, bytes({ 1 }), { "next" })));

    QVERIFY(smbios.system().manufacturer.has_value());
    QTEST(*smbios.system().manufacturer, "expected");
}

void TestSmbios::nothingIsReadAfterTheEnd()
{
    const SMBIOS smbios(block(end() + machine("Apple", "iMac7,1")));
    QVERIFY(!smbios.system().manufacturer.has_value());
}

void TestSmbios::endOfAnotherLengthIsNoEnd()
{
    const SMBIOS smbios(block(structure(127, bytes({ 0 }), {}) + machine("Apple", "iMac7,1")));
    QVERIFY(smbios.system().manufacturer == text("Apple"));
}

void TestSmbios::lengthOfHeaderBoundsTheTable()
{
    const QByteArray table = structure(11, bytes({ 1 }), { "x" }) + machine("Apple", "iMac7,1");

    QVERIFY(SMBIOS(block(table, 0x7FFFFFFF)).system().product == text("iMac7,1"));
    QVERIFY(SMBIOS(block(table, table.size())).system().product == text("iMac7,1"));
    QVERIFY(!SMBIOS(block(table, 8)).system().product.has_value());
    QVERIFY(!SMBIOS(block(table, 0)).system().product.has_value());
}

void TestSmbios::bytesAboveAsciiAreLatin1()
{
    const SMBIOS smbios(block(machine("M\xFCller", "X")));
    QVERIFY(smbios.system().manufacturer == QString(QStringLiteral("M\u00FCller")));
}

void TestSmbios::textCutOffByTheEndOfDataIsEmpty()
{
    QByteArray table = machine("Apple", "MacBookPro15,1");
    table.chop(3); // both zeros and the 1

    const SMBIOS smbios(block(table));

    QVERIFY(smbios.system().manufacturer == text("Apple"));
    QVERIFY(smbios.system().product == text(""));
}

void TestSmbios::damagedTableIsSurvived_data()
{
    QTest::addColumn<QByteArray>("data");

    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("part of a header") << bytes({ 0, 2, 4 });
    QTest::newRow("header only") << block(QByteArray());
    QTest::newRow("length 0") << block(bytes({ 1, 0, 0, 0, 1, 2, 3, 4 }));
    QTest::newRow("length 3") << block(bytes({ 1, 3, 0, 0, 1, 2, 3, 4 }));
    QTest::newRow("formatted part cut off") << block(bytes({ 1, 27, 0, 0, 1, 2, 3 }));
    QTest::newRow("length 255") << block(bytes({ 1, 255, 0, 0 }) + QByteArray(200, '\xFF'));
    QTest::newRow("one byte") << block(bytes({ 1 }));
    QTest::newRow("zeros") << block(QByteArray(1000, '\0'));
    QTest::newRow("ones") << block(QByteArray(1000, '\xFF'));
}

void TestSmbios::damagedTableIsSurvived()
{
    QFETCH(QByteArray, data);
    const SMBIOS smbios(data);
    QVERIFY(!smbios.system().manufacturer.has_value());
    QVERIFY(!smbios.bios().vendor.has_value());
}

void TestSmbios::everyPrefixOfATableIsSurvived()
{
    const QByteArray whole = wholeTable();
    for (int size = 0; size < whole.size(); ++size) {
        // A copy of just that size, so that a read beyond it is seen.
        const SMBIOS smbios(block(QByteArray(whole.constData(), size), whole.size()));
        const auto product = smbios.system().product;
        QVERIFY(!product || product->isEmpty() || product == text("MacBookPro11,3"));
    }
}

BRISORA_TEST_MAIN(TestSmbios, QCoreApplication)
#include "test_smbios.moc"
