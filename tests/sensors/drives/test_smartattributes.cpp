#include <vector>

#include <QCoreApplication>
#include <QtTest>

#include "app/sensors/drives/smartattributes.h"
#include "tests/sensors/drives/driveblocks.h"
#include "tests/support/testenvironment.h"

namespace {

constexpr int none = -1;

struct Record {
    int place;
    int attribute;
    int rawByte;
};
using Records = std::vector<Record>;

DriveBlock blockOf(const Records& records)
{
    DriveBlock block {};
    for (const Record& record : records) {
        setAttribute(block, static_cast<std::size_t>(record.place),
                     static_cast<std::uint8_t>(record.attribute),
                     static_cast<std::uint8_t>(record.rawByte));
    }
    return block;
}

int celsiusOf(std::span<const std::uint8_t> data)
{
    const auto celsius = smartTemperature(data);
    return celsius ? *celsius : none;
}

} // namespace

Q_DECLARE_METATYPE(Records)

class TestSmartAttributes : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theTemperatureIsFound_data();
    void theTemperatureIsFound();
    void onlyTheFirstRawByteCounts();
    void theRevisionIsNoAttribute();
    void cutTablesAreReadAsFarAsTheyGo_data();
    void cutTablesAreReadAsFarAsTheyGo();
};

void TestSmartAttributes::theTemperatureIsFound_data()
{
    QTest::addColumn<Records>("records");
    QTest::addColumn<int>("celsius");
    QTest::newRow("no attributes") << Records {} << none;
    QTest::newRow("194") << Records { { 0, 1, 100 }, { 1, 194, 38 } } << 38;
    QTest::newRow("190") << Records { { 0, 1, 100 }, { 1, 190, 41 } } << 41;
    QTest::newRow("194 before 190") << Records { { 0, 194, 38 }, { 1, 190, 41 } } << 38;
    QTest::newRow("190 before 194") << Records { { 0, 190, 41 }, { 1, 194, 38 } } << 38;
    QTest::newRow("194 is 0, 190 isn't asked") << Records { { 0, 194, 0 }, { 1, 190, 40 } } << none;
    QTest::newRow("190 is 0") << Records { { 0, 190, 0 } } << none;
    QTest::newRow("the first 194 of two") << Records { { 3, 194, 30 }, { 5, 194, 50 } } << 30;
    QTest::newRow("the first 194 of two is 0") << Records { { 3, 194, 0 }, { 5, 194, 50 } } << none;
    QTest::newRow("the last record") << Records { { 29, 194, 255 } } << 255;
    QTest::newRow("beyond the last record") << Records { { 30, 194, 44 } } << none;
    QTest::newRow("other attributes") << Records { { 0, 193, 20 }, { 1, 231, 30 } } << none;
}

void TestSmartAttributes::theTemperatureIsFound()
{
    QFETCH(Records, records);
    QTEST(celsiusOf(blockOf(records)), "celsius");
}

void TestSmartAttributes::onlyTheFirstRawByteCounts()
{
    DriveBlock block = blockOf({ { 0, 194, 38 } });
    for (std::size_t place = 3; place < 14; ++place) {
        if (place != 7) {
            block.at(place) = 0xFF;
        }
    }
    QCOMPARE(celsiusOf(block), 38);
}

void TestSmartAttributes::theRevisionIsNoAttribute()
{
    DriveBlock block {};
    block[0] = 194;
    block[5] = 44;
    QCOMPARE(celsiusOf(block), none);
}

void TestSmartAttributes::cutTablesAreReadAsFarAsTheyGo_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("celsius");
    QTest::newRow("empty") << 0 << none;
    QTest::newRow("one byte") << 1 << none;
    QTest::newRow("revision") << 2 << none;
    QTest::newRow("within the record") << 25 << none;
    QTest::newRow("the record is whole") << 26 << 38;
    QTest::newRow("whole") << 512 << 38;
}

void TestSmartAttributes::cutTablesAreReadAsFarAsTheyGo()
{
    QFETCH(int, size);
    const DriveBlock block = blockOf({ { 0, 1, 100 }, { 1, 194, 38 } });
    // A copy of its own, so that the sanitizers see each byte beyond the end.
    const std::vector<std::uint8_t> cut(block.begin(), block.begin() + size);

    QTEST(celsiusOf(cut), "celsius");
}

BRISORA_TEST_MAIN(TestSmartAttributes, QCoreApplication)

#include "test_smartattributes.moc"
