#include <QtTest>

#include "core/system/hwmontemperature.h"
#include "tests/support/testenvironment.h"

class HwmonTemperatureTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void numbersAreThousandths_data();
    void numbersAreThousandths();
    void whatIsNoNumberIsNothing_data();
    void whatIsNoNumberIsNothing();
};

namespace {

std::optional<double> parse(const QByteArray& contents)
{
    return hwmonTemperature({ contents.data(), static_cast<std::size_t>(contents.size()) });
}

} // namespace

void HwmonTemperatureTest::numbersAreThousandths_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::addColumn<double>("celsius");
    QTest::newRow("whole degrees") << QByteArray("38000\n") << 38.0;
    QTest::newRow("with thousandths") << QByteArray("38850\n") << 38.85;
    QTest::newRow("without an end of line") << QByteArray("41850") << 41.85;
    QTest::newRow("zero") << QByteArray("0\n") << 0.0;
    QTest::newRow("below zero") << QByteArray("-5150\n") << -5.15;
    QTest::newRow("the largest") << QByteArray("2147483647\n") << 2147483.647;
}

void HwmonTemperatureTest::numbersAreThousandths()
{
    QFETCH(QByteArray, contents);
    const auto celsius = parse(contents);
    QVERIFY(celsius.has_value());
    QTEST(*celsius, "celsius");
}

void HwmonTemperatureTest::whatIsNoNumberIsNothing_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("an end of line alone") << QByteArray("\n");
    QTest::newRow("a sign alone") << QByteArray("-\n");
    QTest::newRow("a word") << QByteArray("hot\n");
    QTest::newRow("a word behind the number") << QByteArray("38000 C\n");
    QTest::newRow("two lines") << QByteArray("38000\n39000\n");
    QTest::newRow("a blank before it") << QByteArray(" 38000\n");
    QTest::newRow("a plus sign") << QByteArray("+38000\n");
    QTest::newRow("a fraction") << QByteArray("38.85\n");
    QTest::newRow("a zero byte") << QByteArray("38000\0\n", 7);
    QTest::newRow("too large") << QByteArray("2147483648\n");
    QTest::newRow("bytes that are no text") << QByteArray("\xFF\xFE\x80");
}

void HwmonTemperatureTest::whatIsNoNumberIsNothing()
{
    QFETCH(QByteArray, contents);
    QVERIFY(!parse(contents).has_value());
}

BRISORA_TEST_MAIN(HwmonTemperatureTest, QCoreApplication)

#include "test_hwmontemperature.moc"
