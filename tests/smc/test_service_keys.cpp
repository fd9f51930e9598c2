#include <QCoreApplication>
#include <QSet>

#include "app/smc/service.h"
#include "tests/smc/servicebench.h"
#include "tests/support/testenvironment.h"

class TestServiceKeys : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void temperatureKeysAreFoundAndKept();
    void temperatureKeysNeedFewProbes();
    void keyCountIsLogged();
    void impossibleKeyCountFails_data();
    void impossibleKeyCountFails();
    void temperatureKeysNeedNeighbours_data();
    void temperatureKeysNeedNeighbours();
    void failedProbeFailsTheSearch();
    void unreadableEntryIsLeftOut();
    void tableWithoutTemperaturesOfAKnownTypeIsEmpty();
    void firstTemperatureFixesTheWidth_data();
    void firstTemperatureFixesTheWidth();
};

void TestServiceKeys::temperatureKeysAreFoundAndKept()
{
    ServiceBench bench;
    bench.addSensors();
    bench.open();
    std::vector<std::string> keys = { "old" };
    QVERIFY(bench.service->getTemperatureKeys(keys));
    QVERIFY(keys == std::vector<std::string>({ "TC0C", "TC0D", "TG0D" }));

    bench.spy->calls.clear();
    bench.smc.setMute(true);
    std::vector<std::string> again;
    QVERIFY(bench.service->getTemperatureKeys(again));
    QVERIFY(again == keys);
    QCOMPARE(bench.spy->calls, QStringList());
}

void TestServiceKeys::temperatureKeysNeedFewProbes()
{
    ServiceBench bench;
    for (int i = 0; i < 500; ++i) {
        bench.smc.setKey("A" + std::to_string(100 + i), "ui8 ", { 0 });
        bench.smc.setKey("V" + std::to_string(100 + i), "ui8 ", { 0 });
    }
    bench.smc.setTemperature("TC0P", 40);
    bench.open();
    std::vector<std::string> keys;
    QVERIFY(bench.service->getTemperatureKeys(keys));
    QVERIFY(keys == std::vector<std::string>({ "TC0P" }));
    QVERIFY2(bench.smc.indexCount() <= 20, qPrintable(QString::number(bench.smc.indexCount())));
    const auto probes = bench.spy->calls.filter(QStringLiteral("index "));
    const QSet<QString> distinct(probes.begin(), probes.end());
    QCOMPARE(distinct.size(), probes.size());
}

void TestServiceKeys::keyCountIsLogged()
{
    ServiceBench bench;
    bench.smc.setKey("#KEY", "ui32", { 0x00, 0x00, 0x04, 0xD2 });
    bench.open();
    std::vector<std::string> keys;
    QVERIFY(!bench.service->getTemperatureKeys(keys));
    QCOMPARE(bench.log.lines().first(), QStringLiteral("info: getSMCKeysCount: 3523477504 1234"));
}

void TestServiceKeys::impossibleKeyCountFails_data()
{
    QTest::addColumn<Bytes>("count");
    QTest::addColumn<int>("errors");
    QTest::newRow("zero") << Bytes({ 0, 0, 0, 0 }) << 0;
    QTest::newRow("65536") << Bytes({ 0, 1, 0, 0 }) << 1;
    QTest::newRow("all bits") << Bytes(4, 0xFF) << 1;
    QTest::newRow("unreadable") << Bytes({ 1 }) << 0;
}

void TestServiceKeys::impossibleKeyCountFails()
{
    QFETCH(Bytes, count);
    QFETCH(int, errors);
    ServiceBench bench;
    bench.addSensors();
    bench.smc.setKey("#KEY", "ui32", count);
    bench.open();
    std::vector<std::string> keys;
    QVERIFY(!bench.service->getTemperatureKeys(keys));
    QVERIFY(keys.empty());
    QCOMPARE(bench.spy->calls, QStringList({ QStringLiteral("read #KEY 4") }));
    QCOMPARE(bench.log.count(QStringLiteral("error: getSMCKeysCount failed")), errors);
}

void TestServiceKeys::temperatureKeysNeedNeighbours_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("sensor");
    QTest::addColumn<QString>("after");
    QTest::addColumn<QString>("error");
    const QString error
        = QStringLiteral("error: one of applesmc_get_lower_bound failed %1, %2, %3");
    QTest::newRow("nothing before") << QString() << QStringLiteral("TC0P") << QStringLiteral("VP0R")
                                    << error.arg(0).arg(1).arg(2);
    QTest::newRow("nothing after") << QStringLiteral("FNum") << QStringLiteral("TC0P") << QString()
                                   << error.arg(1).arg(2).arg(2);
    QTest::newRow("no sensor") << QStringLiteral("FNum") << QString() << QStringLiteral("VP0R")
                               << error.arg(1).arg(1).arg(2);
    QTest::newRow("only later keys")
        << QString() << QString() << QStringLiteral("VP0R") << error.arg(0).arg(0).arg(1);
}

void TestServiceKeys::temperatureKeysNeedNeighbours()
{
    ServiceBench bench;
    for (const char* column : { "before", "sensor", "after" }) {
        const QString key = *static_cast<QString*>(QTest::qData(column, QMetaType::QString));
        if (!key.isEmpty()) {
            bench.smc.setTemperature(key.toStdString(), 40);
        }
    }
    QFETCH(QString, error);
    bench.open();
    std::vector<std::string> keys;
    QVERIFY(!bench.service->getTemperatureKeys(keys));
    QVERIFY(keys.empty());
    QCOMPARE(bench.log.lines().last(), error);
}

void TestServiceKeys::failedProbeFailsTheSearch()
{
    ServiceBench bench;
    bench.addSensors();
    bench.spy->failingIndexes = { 4 }; // the first probe of both searches
    bench.open();
    std::vector<std::string> keys;
    QVERIFY(!bench.service->getTemperatureKeys(keys));
    QCOMPARE(
        bench.log.lines().mid(1),
        QStringList({ QStringLiteral("error: applesmc_get_entry_by_index failed"),
                      QStringLiteral("error: applesmc_get_entry_by_index failed"),
                      QStringLiteral("error: one of applesmc_get_lower_bound failed 0, 0, 8") }));
}

void TestServiceKeys::unreadableEntryIsLeftOut()
{
    ServiceBench bench;
    bench.smc.setKey("BALG", "ui16", { 0, 0 });
    for (const char* key : { "TA0P", "TC0D", "TC0P", "TG0D", "TM0P" }) {
        bench.smc.setTemperature(key, 40);
    }
    bench.smc.setKey("VP0R", "sp4b", { 0, 0 });
    bench.open();
    bench.spy->failingIndexes = { 2 }; // which neither search probes
    std::vector<std::string> keys;
    QVERIFY(bench.service->getTemperatureKeys(keys));
    QVERIFY(keys == std::vector<std::string>({ "TA0P", "TC0P", "TG0D", "TM0P" }));
    QCOMPARE(bench.log.count(QStringLiteral("error: applesmc_get_entry_by_index failed")), 1);
}

void TestServiceKeys::tableWithoutTemperaturesOfAKnownTypeIsEmpty()
{
    ServiceBench bench;
    bench.smc.setKey("BALG", "ui16", { 0, 0 });
    bench.smc.setKey("TC0P", "ui16", { 0, 0 });
    bench.smc.setKey("VP0R", "sp4b", { 0, 0 });
    bench.open();
    std::vector<std::string> keys;
    QVERIFY(bench.service->getTemperatureKeys(keys));
    QVERIFY(keys.empty());
}

void TestServiceKeys::firstTemperatureFixesTheWidth_data()
{
    QTest::addColumn<bool>("floatFirst");
    QTest::addColumn<QString>("read");
    QTest::newRow("float") << true << QStringLiteral("read TA0P 4");
    QTest::newRow("fixed point") << false << QStringLiteral("read TA0P 2");
}

void TestServiceKeys::firstTemperatureFixesTheWidth()
{
    QFETCH(bool, floatFirst);
    QFETCH(QString, read);
    ServiceBench bench;
    bench.smc.setKey("BALG", "ui16", { 0, 0 });
    bench.smc.setKey("TA0P", floatFirst ? "flt " : "sp78",
                     floatFirst ? single(45.5F) : Bytes({ 0x2D, 0x80 }));
    bench.smc.setKey("TB0T", floatFirst ? "sp78" : "flt ",
                     floatFirst ? Bytes({ 0x2D, 0x80 }) : single(45.5F));
    bench.smc.setKey("VP0R", "sp4b", { 0, 0 });
    bench.open();
    bench.findSensors();
    double value = 0;
    QVERIFY(bench.service->getTemperature("TA0P", value, nullptr));
    QVERIFY(value == 45.5);
    QCOMPARE(bench.spy->calls, QStringList({ read }));
}

BRISORA_TEST_MAIN(TestServiceKeys, QCoreApplication)

#include "test_service_keys.moc"
