#include <map>
#include <set>

#include <QCoreApplication>
#include <QFile>
#include <tinyxml2.h>

#include "app/sensors/sensordatabase.h"
#include "app/sysinfo/sysinfo.h"
#include "core/compression/compressionutils.h"
#include "resources/resources.h"
#include "tests/support/fakemachineidentity.h"
#include "tests/support/testenvironment.h"

Q_DECLARE_METATYPE(SensorType)

namespace {

// What the packed file holds, counted without the parser under test.
struct Counts {
    int rules = 0;
    int rows = 0;
    int exclusions = 0;
    std::set<std::string> keys;
    std::map<std::string, int> types;
};

Counts countFile()
{
    QFile file(QStringLiteral(":/Resources/xml/smcSensors.xml.gz"));
    if (!file.open(QIODevice::ReadOnly)) {
        qFatal("The sensor database is missing");
    }
    const QByteArray xml = CompressionUtils::gunzip(file.readAll());
    tinyxml2::XMLDocument document;
    document.Parse(xml.constData(), static_cast<std::size_t>(xml.size()));
    Counts counts;
    for (const auto* rule = document.RootElement()->FirstChildElement(); rule != nullptr;
         rule = rule->NextSiblingElement()) {
        ++counts.rules;
        for (const auto* row = rule->FirstChildElement(); row != nullptr;
             row = row->NextSiblingElement()) {
            const char* type = row->Attribute("type");
            ++counts.rows;
            ++counts.types[type == nullptr ? "" : type];
            counts.keys.insert(row->Attribute("name"));
            counts.exclusions += row->Attribute("exclude") == nullptr ? 0 : 1;
        }
    }
    return counts;
}

} // namespace

class TestSensorDatabaseContents : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { initResources(); }

    void fileIsComplete();
    void modelNamesItsKeys_data();
    void modelNamesItsKeys();
    void modelKnowsSoManyKeys_data();
    void modelKnowsSoManyKeys();
    void noModelKnowsAKeyTwice_data();
    void noModelKnowsAKeyTwice();
};

void TestSensorDatabaseContents::fileIsComplete()
{
    const Counts counts = countFile();

    QCOMPARE(counts.rules, 26);
    QCOMPARE(counts.rows, 151);
    QCOMPARE(counts.exclusions, 5);
    QCOMPARE(counts.keys.size(), std::size_t(108));
    const std::map<std::string, int> types { { "", 78 },      { "cpu", 41 }, { "gpu", 17 },
                                             { "psu", 8 },    { "ssd", 5 },  { "odd", 1 },
                                             { "airport", 1 } };
    QVERIFY(counts.types == types);
}

void TestSensorDatabaseContents::modelNamesItsKeys_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("storedKey"); // empty: the key is unknown on this model
    QTest::addColumn<QString>("name");
    QTest::addColumn<SensorType>("type");

    const auto row = [](const char* model, const char* key, const char* storedKey, const char* name,
                        SensorType type) {
        QTest::newRow(
            qPrintable(QStringLiteral("%1 %2").arg(QLatin1String(model), QLatin1String(key))))
            << QString::fromLatin1(model) << QString::fromLatin1(key)
            << QString::fromLatin1(storedKey) << QString::fromLatin1(name) << type;
    };
    const auto unknown = [&row](const char* model, const char* key) {
        row(model, key, "", "", SensorType::other);
    };

    // The general rule, also on a machine that is not known.
    row("", "TA0P", "TA0P", "Ambient", SensorType::other);
    row("iMac19,2", "TA0P", "TA0P", "Ambient", SensorType::other);
    row("iMac19,2", "TCXC", "TCXC", "CPU PECI", SensorType::cpu);
    row("iMac19,2", "TG0D", "TG0D", "GPU Diode", SensorType::gpu);
    row("iMac19,2", "TGDD", "TGDD", "GPU Diode 2", SensorType::gpu);
    row("iMac19,2", "TO0P", "TO0P", "Optical Drive", SensorType::odd);
    row("iMac19,2", "TW0P", "TW0P", "Airport Proximity", SensorType::airport);
    row("iMac19,2", "Tp0P", "Tp0P", "Power Supply Proximity", SensorType::psu);
    row("iMac19,2", "TC0c", "TC0c", "CPU Core 1", SensorType::cpu);
    row("iMac19,2", "TC9C", "TC9c", "CPU Core 10", SensorType::cpu);
    unknown("iMac19,2", "TH0A");
    unknown("iMac19,2", "TXXX");

    // Cores that are numbered from 1: the first goes, the others move.
    unknown("MacBookPro13,2", "TC0c");
    row("MacBookPro13,2", "TC1c", "TC1C", "CPU Core 1", SensorType::cpu);
    row("MacBookPro13,2", "TC8C", "TC8C", "CPU Core 8", SensorType::cpu);
    row("MacBookPro13,2", "TC9c", "TC9c", "CPU Core 10", SensorType::cpu);
    row("MacBookPro13,1", "TC1c", "TC1c", "CPU Core 2", SensorType::cpu);
    row("MacBookPro9,2", "TC1C", "TC1C", "CPU Core 1", SensorType::cpu);
    row("MacBook10,1", "TC1C", "TC1C", "CPU Core 1", SensorType::cpu);
    row("MacBookAir10,1", "TC1C", "TC1C", "CPU Core 1", SensorType::cpu);
    row("Macmini8,1", "TC1C", "TC1C", "CPU Core 1", SensorType::cpu);
    row("Macmini9,1", "TC1C", "TC1c", "CPU Core 2", SensorType::cpu);

    // Drives.
    row("MacBookPro15,2", "TH0A", "TH0A", "Apple SSD", SensorType::ssd);
    unknown("MacBookPro15,3", "TH0A");
    row("MacBookAir6,2", "TH0A", "TH0A", "Apple SSD", SensorType::ssd);
    unknown("MacBookAir5,2", "TH0A");
    row("MacBook8,1", "TH0A", "TH0A", "Apple SSD", SensorType::ssd);
    row("iMac13,2", "TH1B", "TH1B", "Apple SSD", SensorType::ssd);
    row("iMac17,1", "TH1A", "TH1A", "Apple SSD", SensorType::ssd);
    row("iMacPro1,1", "TH0A", "TH0A", "SSD A", SensorType::ssd);
    row("iMacPro1,1", "TG2P", "TG2P", "GPU Proximity 2", SensorType::gpu);
    row("iMac9,1", "TH0P", "TH0P", "HDD Proximity", SensorType::other);

    // One rule of this file spells the model in another way and never applies.
    row("Macmini3,1", "TH0P", "TH0P", "HDD Case", SensorType::other);

    // The same key twice in one rule: the second counts.
    row("MacPro1,1", "TM9P", "TM9P", "FBDIMM Riser B Regulator Area", SensorType::other);
    row("MacPro1,1", "TC0C", "TC0C", "CPU A Core 0", SensorType::cpu);
    row("MacPro1,1", "TM1p", "TM1P", "FBDIMM Riser A Outgoing Air", SensorType::other);
    row("MacPro1,1", "TM0p", "TM0p", "DIMM Module 1 Proximity", SensorType::other);
    row("MacPro5,1", "TCAC", "TCAC", "CPU A core from PCECI", SensorType::cpu);
    row("MacPro5,1", "TN0D", "TN0D", "Northbridge Diode", SensorType::other);
    row("MacPro5,1", "Tp1C", "Tp1C", "PSMI Supply AC/DC Supply 2", SensorType::psu);
    unknown("MacPro6,1", "TC0P");
    unknown("MacPro6,1", "Tm0p");
    unknown("MacPro6,1", "TG0P");
    unknown("MacPro6,1", "TG1P");
    row("MacPro6,1", "TG0D", "TG0D", "GPU 1 Diode", SensorType::gpu);
    row("MacPro6,1", "TC0c", "TC0C", "CPU Sensor 1", SensorType::cpu);

    // Later rules go over earlier ones.
    row("MacBookPro5,1", "TN0D", "TN0D", "CPU Vcore", SensorType::cpu);
    row("MacBookPro5,1", "TG0H", "TG0H", "GPU Diode (Analog)", SensorType::other);
    row("MacBookPro5,3", "TG0H", "TG0H", "GPU Diode (Analog)", SensorType::other);
    row("MacBookPro5,4", "TG0H", "TG0H", "GPU Heatsink", SensorType::gpu);
    row("iMac9,1", "TN0D", "TN0D", "Northbridge Diode", SensorType::other);
    row("iMac10,1", "TN0P", "TN0P", "MCP Proximity", SensorType::other);
    row("Macmini1,1", "TC0P", "TC0P", "CPU VR area", SensorType::cpu);
    row("MacBookAir2,1", "Tp1P", "Tp1P", "MLB Front Edge", SensorType::psu);
    row("MacBook5,2", "Th0H", "Th0H", "Heat Pipe Heatsink", SensorType::other);
    row("MacBookPro2,2", "Tm0P", "Tm0P", "Clock Chip Proximity", SensorType::other);
    row("iMac5,1", "Tm0P", "Tm0P", "Clock Chip Proximity", SensorType::other);
    row("iMac15,1", "TG3p", "TG3p", "GPU Proximity 4", SensorType::gpu);
}

void TestSensorDatabaseContents::modelNamesItsKeys()
{
    QFETCH(QString, model);
    QFETCH(QString, key);
    QFETCH(QString, storedKey);
    FakeMachineIdentity identity(model);
    const SystemInfo info(identity);
    SensorDatabase database(info);
    database.load();

    const SensorDatabaseEntry* entry = database.find(key);

    QCOMPARE(entry != nullptr, !storedKey.isEmpty());
    if (entry != nullptr) {
        QCOMPARE(entry->key, storedKey);
        QTEST(entry->name, "name");
        QTEST(entry->type, "type");
        QCOMPARE(entry->group, QString());
    }
}

void TestSensorDatabaseContents::modelKnowsSoManyKeys_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<int>("count");

    // 42 in general; each model's rules add and take away.
    QTest::newRow("a model without rules of its own") << "iMac11,1" << 42;
    QTest::newRow("an empty rule") << "Macmini9,1" << 42;
    QTest::newRow("one more") << "MacBook5,2" << 43;
    QTest::newRow("one less") << "Macmini8,1" << 41;
    QTest::newRow("one less, one more") << "MacBook8,1" << 42;
    QTest::newRow("model spelt otherwise") << "Macmini3,1" << 43;
}

void TestSensorDatabaseContents::modelKnowsSoManyKeys()
{
    QFETCH(QString, model);
    FakeMachineIdentity identity(model);
    const SystemInfo info(identity);
    SensorDatabase database(info);
    database.load();
    QTEST(static_cast<int>(database.entries().size()), "count");
}

void TestSensorDatabaseContents::noModelKnowsAKeyTwice_data()
{
    QTest::addColumn<QString>("model");
    for (const char* model : { "MacPro1,1", "MacPro5,1", "MacPro6,1", "iMacPro1,1", "iMac17,1",
                               "MacBookPro13,2", "MacBookPro5,1", "iMac9,1" }) {
        QTest::newRow(model) << QString::fromLatin1(model);
    }
}

void TestSensorDatabaseContents::noModelKnowsAKeyTwice()
{
    QFETCH(QString, model);
    FakeMachineIdentity identity(model);
    const SystemInfo info(identity);
    SensorDatabase database(info);
    database.load();
    for (const SensorDatabaseEntry& entry : database.entries()) {
        QCOMPARE(database.find(entry.key), &entry);
    }
}

BRISORA_TEST_MAIN(TestSensorDatabaseContents, QCoreApplication)
#include "test_sensordatabase_contents.moc"
