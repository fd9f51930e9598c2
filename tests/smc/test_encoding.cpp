#include <bit>
#include <cmath>
#include <limits>

#include <QCoreApplication>

#include "app/smc/encoding.h"
#include "tests/support/testenvironment.h"

namespace {

SMC::FourBytes single(float value)
{
    const auto bits = std::bit_cast<std::uint32_t>(value);
    return { static_cast<std::uint8_t>(bits), static_cast<std::uint8_t>(bits >> 8),
             static_cast<std::uint8_t>(bits >> 16), static_cast<std::uint8_t>(bits >> 24) };
}

SMC::TwoBytes twoBytes(int first, int second)
{
    return { static_cast<std::uint8_t>(first), static_cast<std::uint8_t>(second) };
}

} // namespace

class TestEncoding : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void fixedPointSpeedIsRead_data();
    void fixedPointSpeedIsRead();
    void fixedPointSpeedIsWritten_data();
    void fixedPointSpeedIsWritten();
    void floatSpeedIsRead_data();
    void floatSpeedIsRead();
    void floatThatIsNoSpeedGivesNothing_data();
    void floatThatIsNoSpeedGivesNothing();
    void floatSpeedIsWritten();
    void fixedPointTemperatureHasNoSign_data();
    void fixedPointTemperatureHasNoSign();
    void floatTemperatureIsReadAsItStands();
    void numberIsMostSignificantByteFirst();
    void keyIsItsFirstFourCharacters();
};

void TestEncoding::fixedPointSpeedIsRead_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("second");
    QTest::addColumn<int>("rpm");
    QTest::newRow("zero") << 0x00 << 0x00 << 0;
    QTest::newRow("whole") << 0x1F << 0x40 << 2000;
    QTest::newRow("fraction is dropped") << 0x1F << 0x43 << 2000;
    QTest::newRow("lowest step") << 0x00 << 0x04 << 1;
    QTest::newRow("highest") << 0xFF << 0xFF << 16383;
}

void TestEncoding::fixedPointSpeedIsRead()
{
    QFETCH(int, first);
    QFETCH(int, second);
    QTEST(static_cast<int>(SMC::fpe2ToRpm(twoBytes(first, second))), "rpm");
}

void TestEncoding::fixedPointSpeedIsWritten_data()
{
    QTest::addColumn<int>("rpm");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("second");
    QTest::newRow("zero") << 0 << 0x00 << 0x00;
    QTest::newRow("whole") << 2000 << 0x1F << 0x40;
    QTest::newRow("highest") << 16383 << 0xFF << 0xFC;
    QTest::newRow("wraps") << 16384 << 0x00 << 0x00;
    QTest::newRow("wraps past the limit") << 18384 << 0x1F << 0x40;
}

void TestEncoding::fixedPointSpeedIsWritten()
{
    QFETCH(int, rpm);
    QFETCH(int, first);
    QFETCH(int, second);
    QVERIFY(SMC::rpmToFpe2(static_cast<std::uint16_t>(rpm)) == twoBytes(first, second));
}

void TestEncoding::floatSpeedIsRead_data()
{
    QTest::addColumn<float>("value");
    QTest::addColumn<int>("rpm");
    QTest::newRow("cut toward zero") << 2000.9F << 2000;
    QTest::newRow("zero") << 0.0F << 0;
    QTest::newRow("negative zero") << -0.0F << 0;
    QTest::newRow("below one") << 0.99F << 0;
    QTest::newRow("highest") << 65535.0F << 65535;
    QTest::newRow("low 16 bits") << 65537.0F << 1;
    QTest::newRow("beyond any integer") << std::numeric_limits<float>::max() << 0;
}

void TestEncoding::floatSpeedIsRead()
{
    QFETCH(float, value);
    const auto read = SMC::floatToRpm(single(value));
    QVERIFY(read.has_value());
    QTEST(static_cast<int>(*read), "rpm");
}

void TestEncoding::floatThatIsNoSpeedGivesNothing_data()
{
    QTest::addColumn<float>("value");
    QTest::newRow("not a number") << std::numeric_limits<float>::quiet_NaN();
    QTest::newRow("infinite") << std::numeric_limits<float>::infinity();
    QTest::newRow("negative infinite") << -std::numeric_limits<float>::infinity();
    QTest::newRow("negative") << -1.0F;
    QTest::newRow("just below zero") << -0.5F;
}

void TestEncoding::floatThatIsNoSpeedGivesNothing()
{
    QFETCH(float, value);
    QVERIFY(!SMC::floatToRpm(single(value)).has_value());
}

void TestEncoding::floatSpeedIsWritten()
{
    QVERIFY(SMC::rpmToFloat(2000) == (SMC::FourBytes { 0x00, 0x00, 0xFA, 0x44 }));
    QVERIFY(SMC::rpmToFloat(0) == SMC::FourBytes {});
    QVERIFY(SMC::rpmToFloat(65535) == single(65535.0F));
}

void TestEncoding::fixedPointTemperatureHasNoSign_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("second");
    QTest::addColumn<double>("celsius");
    QTest::newRow("half a degree") << 0x2D << 0x80 << 45.5;
    QTest::newRow("smallest step") << 0x00 << 0x01 << 0.00390625;
    QTest::newRow("highest taken") << 0x7E << 0xFD << 126.98828125;
    QTest::newRow("sign bit") << 0x80 << 0x00 << 128.0;
    QTest::newRow("all bits") << 0xFF << 0xFF << 255.99609375;
}

void TestEncoding::fixedPointTemperatureHasNoSign()
{
    QFETCH(int, first);
    QFETCH(int, second);
    QFETCH(double, celsius);
    QVERIFY(SMC::sp78ToCelsius(twoBytes(first, second)) == celsius);
}

void TestEncoding::floatTemperatureIsReadAsItStands()
{
    QVERIFY(SMC::floatToCelsius(single(45.5F)) == 45.5);
    QVERIFY(SMC::floatToCelsius(single(-127.0F)) == -127.0);
    QVERIFY(std::isnan(SMC::floatToCelsius(single(std::numeric_limits<float>::quiet_NaN()))));
}

void TestEncoding::numberIsMostSignificantByteFirst()
{
    QCOMPARE(SMC::bigEndianToNumber({ 0x00, 0x00, 0x04, 0xD2 }), 1234U);
    QCOMPARE(SMC::bigEndianToNumber({ 0xFF, 0x00, 0x00, 0x01 }), 0xFF000001U);
    QCOMPARE(SMC::littleEndianToNumber({ 0x00, 0x00, 0x04, 0xD2 }), 0xD2040000U);
    QVERIFY(SMC::numberToBigEndian(0x12345678) == (SMC::FourBytes { 0x12, 0x34, 0x56, 0x78 }));
}

void TestEncoding::keyIsItsFirstFourCharacters()
{
    QVERIFY(SMC::keyBytes("FS! ") == (SMC::FourBytes { 'F', 'S', '!', ' ' }));
    QVERIFY(SMC::keyBytes("F10Ac") == (SMC::FourBytes { 'F', '1', '0', 'A' }));
    QVERIFY(SMC::keyBytes("T") == (SMC::FourBytes { 'T', 0, 0, 0 }));
    QVERIFY(SMC::keyBytes("") == SMC::FourBytes {});
}

BRISORA_TEST_MAIN(TestEncoding, QCoreApplication)

#include "test_encoding.moc"
