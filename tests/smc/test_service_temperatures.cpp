#include <limits>

#include <QCoreApplication>

#include "app/smc/service.h"
#include "tests/smc/servicebench.h"
#include "tests/support/testenvironment.h"

using SMC::Option;

class TestServiceTemperatures : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void temperatureRangeIsExclusive_data();
    void temperatureRangeIsExclusive();
    void floatTemperatureOutOfRangeIsRefused_data();
    void floatTemperatureOutOfRangeIsRefused();
    void temperatureBeforeTheKeysReadsNothing();
    void failedTemperatureReadIsSilent();
    void coreTemperaturesAreInvertedOnRequest_data();
    void coreTemperaturesAreInvertedOnRequest();
};

void TestServiceTemperatures::temperatureRangeIsExclusive_data()
{
    QTest::addColumn<Bytes>("bytes");
    QTest::addColumn<QString>("warning");
    const QString warning
        = QStringLiteral("warning: getTemperature - skipping sensor TC0D with value of %1");
    QTest::newRow("zero") << Bytes({ 0x00, 0x00 }) << warning.arg(QStringLiteral("0"));
    QTest::newRow("just above zero") << Bytes({ 0x00, 0x01 }) << QString();
    QTest::newRow("126.99") << Bytes({ 0x7E, 0xFD }) << QString();
    QTest::newRow("127") << Bytes({ 0x7F, 0x00 }) << warning.arg(QStringLiteral("127"));
    QTest::newRow("128") << Bytes({ 0x80, 0x00 }) << warning.arg(QStringLiteral("128"));
    QTest::newRow("minus 127") << Bytes({ 0x81, 0x00 }) << warning.arg(QStringLiteral("129"));
}

void TestServiceTemperatures::temperatureRangeIsExclusive()
{
    QFETCH(Bytes, bytes);
    QFETCH(QString, warning);
    ServiceBench bench;
    bench.addSensors();
    bench.smc.setKey("TC0D", "sp78", bytes);
    bench.open();
    bench.findSensors();
    double value = -1;
    double rawValue = -1;
    QCOMPARE(bench.service->getTemperature("TC0D", value, &rawValue), warning.isEmpty());
    QVERIFY(value == bytes[0] + bytes[1] / 256.0);
    QVERIFY(rawValue == value);
    QCOMPARE(bench.log.lines(), warning.isEmpty() ? QStringList() : QStringList({ warning }));
}

void TestServiceTemperatures::floatTemperatureOutOfRangeIsRefused_data()
{
    QTest::addColumn<float>("celsius");
    QTest::addColumn<bool>("accepted");
    QTest::newRow("0.004") << 0.004F << true;
    QTest::newRow("126.99") << 126.99F << true;
    QTest::newRow("127") << 127.0F << false;
    QTest::newRow("negative") << -127.0F << false;
    QTest::newRow("infinite") << std::numeric_limits<float>::infinity() << false;
    QTest::newRow("not a number") << std::numeric_limits<float>::quiet_NaN() << false;
}

void TestServiceTemperatures::floatTemperatureOutOfRangeIsRefused()
{
    QFETCH(float, celsius);
    QFETCH(bool, accepted);
    ServiceBench bench;
    bench.smc.setKey("BALG", "ui16", { 0, 0 });
    bench.smc.setKey("TC0P", "flt ", single(celsius));
    bench.smc.setKey("VP0R", "sp4b", { 0, 0 });
    bench.open();
    bench.findSensors();
    double value = 0;
    QCOMPARE(bench.service->getTemperature("TC0P", value, nullptr), accepted);
    QCOMPARE(bench.log.lines().size(), accepted ? 0 : 1);
}

void TestServiceTemperatures::temperatureBeforeTheKeysReadsNothing()
{
    ServiceBench bench;
    bench.addSensors();
    bench.open();
    double value = 42.5;
    double rawValue = 0;
    QVERIFY(bench.service->getTemperature("TC0D", value, &rawValue));
    QVERIFY(value == 42.5);
    QVERIFY(rawValue == 42.5);
    QCOMPARE(bench.spy->calls, QStringList({ QStringLiteral("read TC0D 0") }));

    value = 0;
    QVERIFY(!bench.service->getTemperature("TC0D", value, nullptr));
}

void TestServiceTemperatures::failedTemperatureReadIsSilent()
{
    ServiceBench bench;
    bench.addSensors();
    bench.open();
    bench.findSensors();
    bench.smc.setFailing("TC0D", true);
    double value = 42.5;
    double rawValue = 43.5;
    QVERIFY(!bench.service->getTemperature("TC0D", value, &rawValue));
    QVERIFY(value == 42.5);
    QVERIFY(rawValue == 43.5);
    QCOMPARE(bench.log.lines(), QStringList());
}

void TestServiceTemperatures::coreTemperaturesAreInvertedOnRequest_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<bool>("option");
    QTest::addColumn<double>("corrected");
    for (const char* key : { "TCAC", "TCBC", "TC0C", "TC1C", "TC2C", "TC3C" }) {
        QTest::newRow(key) << QString::fromLatin1(key) << true << 60.0;
    }
    QTest::newRow("TC0D") << QStringLiteral("TC0D") << true << 40.0;
    QTest::newRow("TC4C") << QStringLiteral("TC4C") << true << 40.0;
    QTest::newRow("TC0C without the option") << QStringLiteral("TC0C") << false << 40.0;
}

void TestServiceTemperatures::coreTemperaturesAreInvertedOnRequest()
{
    QFETCH(QString, key);
    QFETCH(bool, option);
    QFETCH(double, corrected);
    ServiceBench bench;
    if (option) {
        SMC::Options::set(Option::InvertCoreTemps);
    }
    bench.addSensors();
    bench.smc.setTemperature(key.toStdString(), 40);
    bench.open();
    bench.findSensors();
    double value = 0;
    double rawValue = 0;
    QVERIFY(bench.service->getTemperature(qPrintable(key), value, &rawValue));
    QVERIFY(value == corrected);
    QVERIFY(rawValue == 40.0);
}

BRISORA_TEST_MAIN(TestServiceTemperatures, QCoreApplication)

#include "test_service_temperatures.moc"
