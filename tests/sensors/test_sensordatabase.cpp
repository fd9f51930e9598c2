#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include "app/sensors/sensordatabase.h"
#include "app/sysinfo/sysinfo.h"
#include "tests/support/fakemachineidentity.h"
#include "tests/support/gzipped.h"
#include "tests/support/logcapture.h"
#include "tests/support/testenvironment.h"

Q_DECLARE_METATYPE(SensorType)

namespace {

using Entries = std::vector<SensorDatabaseEntry>;

SystemInfo machine(const char* model)
{
    FakeMachineIdentity identity(QString::fromLatin1(model));
    return SystemInfo(identity);
}

Entries parse(const QByteArray& rules, const char* model = "iMac19,2")
{
    return SensorDatabase::parse("<smcSensors version=\"1\">" + rules + "</smcSensors>",
                                 machine(model));
}

// The entries as "key=name", in order.
QStringList summary(const Entries& entries)
{
    QStringList result;
    for (const SensorDatabaseEntry& entry : entries) {
        result.append(entry.key + QLatin1Char('=') + entry.name);
    }
    return result;
}

// A compressed database of one sensor.
QByteArray compressedDatabase()
{
    return gzipped("<smcSensors><modelMatch models=\"all\">"
                   "<smc name=\"TC0P\" type=\"cpu\">CPU Proximity</smc></modelMatch></smcSensors>");
}

} // namespace

class TestSensorDatabase : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void entryHasAllThatItsElementSays();
    void typeWordsAreKnown_data();
    void typeWordsAreKnown();
    void elementWithoutTextHasAnEmptyName();
    void anyElementNameWillDo();
    void commentsAreSkipped();
    void onlyMatchingRulesCount_data();
    void onlyMatchingRulesCount();
    void laterRuleReplacesEarlierOne();
    void otherSpellingReplacesToo();
    void otherPrefixCaseReplacesNothing();
    void excludeErases_data();
    void excludeErases();
    void laterRuleBringsAnExcludedKeyBack();
    void rulesLieBelowTheRoot();
    void damagedTextGivesNothing_data();
    void damagedTextGivesNothing();
    void entryIsFoundByEitherSpelling();
    void fileIsLoadedOnce();
    void missingFileIsTriedAgain();
    void fileThatIsNotCompressedGivesNothing();
};

void TestSensorDatabase::entryHasAllThatItsElementSays()
{
    const Entries entries = parse("<modelMatch models=\"all\">"
                                  "<smc name=\"TC0P\" type=\"cpu\" group=\"CPU\">"
                                  "CPU \xC3\xA4 Proximity</smc></modelMatch>");
    QCOMPARE(entries.size(), std::size_t(1));
    QVERIFY(
        (entries.front()
         == SensorDatabaseEntry { QStringLiteral("TC0P"), QStringLiteral("CPU \u00E4 Proximity"),
                                  QStringLiteral("CPU"), SensorType::cpu }));
}

void TestSensorDatabase::typeWordsAreKnown_data()
{
    QTest::addColumn<QByteArray>("attribute");
    QTest::addColumn<SensorType>("type");

    QTest::newRow("cpu") << QByteArray("type=\"cpu\"") << SensorType::cpu;
    QTest::newRow("gpu") << QByteArray("type=\"gpu\"") << SensorType::gpu;
    QTest::newRow("odd") << QByteArray("type=\"odd\"") << SensorType::odd;
    QTest::newRow("psu") << QByteArray("type=\"psu\"") << SensorType::psu;
    QTest::newRow("airport") << QByteArray("type=\"airport\"") << SensorType::airport;
    QTest::newRow("ssd") << QByteArray("type=\"ssd\"") << SensorType::ssd;
    QTest::newRow("hdd is no word") << QByteArray("type=\"hdd\"") << SensorType::other;
    QTest::newRow("nvme is no word") << QByteArray("type=\"nvme\"") << SensorType::other;
    QTest::newRow("other case") << QByteArray("type=\"CPU\"") << SensorType::other;
    QTest::newRow("empty") << QByteArray("type=\"\"") << SensorType::other;
    QTest::newRow("absent") << QByteArray() << SensorType::other;
}

void TestSensorDatabase::typeWordsAreKnown()
{
    QFETCH(QByteArray, attribute);
    const Entries entries = parse("<modelMatch models=\"all\"><smc name=\"TC0P\" " + attribute
                                  + ">Name</smc></modelMatch>");
    QCOMPARE(entries.size(), std::size_t(1));
    QTEST(entries.front().type, "type");
}

void TestSensorDatabase::elementWithoutTextHasAnEmptyName()
{
    QCOMPARE(summary(parse("<modelMatch models=\"all\"><smc name=\"TC0P\"/></modelMatch>")),
             QStringList { QStringLiteral("TC0P=") });
}

void TestSensorDatabase::anyElementNameWillDo()
{
    QCOMPARE(summary(parse("<modelMatch models=\"all\"><key name=\"TC0P\">A</key></modelMatch>")),
             QStringList { QStringLiteral("TC0P=A") });
}

void TestSensorDatabase::commentsAreSkipped()
{
    QCOMPARE(summary(parse("<!-- a --><modelMatch models=\"all\"><!-- b -->"
                           "<smc name=\"TC0P\">A</smc><!-- c --></modelMatch>")),
             QStringList { QStringLiteral("TC0P=A") });
}

void TestSensorDatabase::onlyMatchingRulesCount_data()
{
    QTest::addColumn<QByteArray>("models");
    QTest::addColumn<bool>("matches");

    QTest::newRow("all") << QByteArray(" models=\"all\"") << true;
    QTest::newRow("this model") << QByteArray(" models=\"iMac7,1;iMac19,2\"") << true;
    QTest::newRow("later models") << QByteArray(" models=\"iMac18,1+\"") << true;
    QTest::newRow("another model") << QByteArray(" models=\"iMac7,1\"") << false;
    QTest::newRow("no attribute") << QByteArray() << false;
}

void TestSensorDatabase::onlyMatchingRulesCount()
{
    QFETCH(QByteArray, models);
    const Entries entries
        = parse("<modelMatch" + models + "><smc name=\"TC0P\">A</smc></modelMatch>");
    QTEST(!entries.empty(), "matches");
}

void TestSensorDatabase::laterRuleReplacesEarlierOne()
{
    // It moves to the end with it.
    QCOMPARE(summary(parse("<modelMatch models=\"all\"><smc name=\"TC0P\">A</smc>"
                           "<smc name=\"TA0P\">B</smc></modelMatch>"
                           "<modelMatch models=\"iMac19,2\"><smc name=\"TC0P\">C</smc>"
                           "</modelMatch>")),
             QStringList({ QStringLiteral("TA0P=B"), QStringLiteral("TC0P=C") }));
}

void TestSensorDatabase::otherSpellingReplacesToo()
{
    QCOMPARE(summary(parse("<modelMatch models=\"all\"><smc name=\"TC1c\">A</smc>"
                           "<smc name=\"TC1C\">B</smc></modelMatch>")),
             QStringList { QStringLiteral("TC1C=B") });
}

void TestSensorDatabase::otherPrefixCaseReplacesNothing()
{
    QCOMPARE(summary(parse("<modelMatch models=\"all\"><smc name=\"TM0P\">A</smc>"
                           "<smc name=\"Tm0P\">B</smc></modelMatch>")),
             QStringList({ QStringLiteral("TM0P=A"), QStringLiteral("Tm0P=B") }));
}

void TestSensorDatabase::excludeErases_data()
{
    QTest::addColumn<QByteArray>("element");
    QTest::newRow("with a value") << QByteArray("<smc name=\"TC0P\" exclude=\"1\"/>");
    QTest::newRow("with a value that says no")
        << QByteArray("<smc name=\"TC0P\" exclude=\"0\">Name</smc>");
    QTest::newRow("without a value") << QByteArray("<smc name=\"TC0P\" exclude=\"\"/>");
    QTest::newRow("other spelling") << QByteArray("<smc name=\"TC0p\" exclude=\"1\"/>");
}

void TestSensorDatabase::excludeErases()
{
    QFETCH(QByteArray, element);
    QCOMPARE(summary(parse("<modelMatch models=\"all\"><smc name=\"TC0P\">A</smc>"
                           "<smc name=\"TA0P\">B</smc>"
                           + element + "</modelMatch>")),
             QStringList { QStringLiteral("TA0P=B") });
}

void TestSensorDatabase::laterRuleBringsAnExcludedKeyBack()
{
    QCOMPARE(summary(parse("<modelMatch models=\"all\"><smc name=\"TC0P\">A</smc>"
                           "<smc name=\"TC0P\" exclude=\"1\"/></modelMatch>"
                           "<modelMatch models=\"all\"><smc name=\"TC0P\">B</smc></modelMatch>")),
             QStringList { QStringLiteral("TC0P=B") });
}

void TestSensorDatabase::rulesLieBelowTheRoot()
{
    QVERIFY(parse("<other><modelMatch models=\"all\"><smc name=\"TC0P\">A</smc></modelMatch>"
                  "</other>")
                .empty());
}

void TestSensorDatabase::damagedTextGivesNothing_data()
{
    QTest::addColumn<QByteArray>("xml");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("no markup") << QByteArray("smcSensors");
    QTest::newRow("zero bytes") << QByteArray(64, '\0');
    QTest::newRow("no rule") << QByteArray("<smcSensors/>");
    QTest::newRow("other root") << QByteArray("<sensors><modelMatch models=\"all\">"
                                              "<smc name=\"TC0P\">A</smc></modelMatch></sensors>");
    QTest::newRow("cut off") << QByteArray("<smcSensors><modelMatch models=\"all\">"
                                           "<smc name=\"TC0P\">A</smc>");
    QTest::newRow("deep") << QByteArray("<a>").repeated(100000);
}

void TestSensorDatabase::damagedTextGivesNothing()
{
    QFETCH(QByteArray, xml);
    QVERIFY(SensorDatabase::parse(xml, machine("iMac19,2")).empty());
}

void TestSensorDatabase::entryIsFoundByEitherSpelling()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("sensors.xml.gz")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(compressedDatabase());
    file.close();
    const SystemInfo info = machine("iMac19,2");
    SensorDatabase database(info, file.fileName());

    database.load();

    const SensorDatabaseEntry* entry = database.find(QStringLiteral("TC0p"));
    QVERIFY(entry != nullptr);
    QCOMPARE(entry->key, QStringLiteral("TC0P"));
    QCOMPARE(database.find(QStringLiteral("TC0P")), entry);
    QVERIFY(database.find(QStringLiteral("Tc0P")) == nullptr);
    QVERIFY(database.find(QString()) == nullptr);
}

void TestSensorDatabase::fileIsLoadedOnce()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("sensors.xml.gz")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(compressedDatabase());
    file.close();
    const SystemInfo info = machine("iMac19,2");
    SensorDatabase database(info, file.fileName());
    database.load();
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(gzipped("<smcSensors><modelMatch models=\"all\"><smc name=\"TA0P\">Other</smc>"
                       "</modelMatch></smcSensors>"));
    file.close();

    database.load();

    QCOMPARE(summary(database.entries()), QStringList { QStringLiteral("TC0P=CPU Proximity") });
}

void TestSensorDatabase::missingFileIsTriedAgain()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("sensors.xml.gz")));
    const SystemInfo info = machine("iMac19,2");
    SensorDatabase database(info, file.fileName());
    const LogCapture log;
    database.load();
    QVERIFY(database.entries().empty());
    QCOMPARE(log.lines(),
             QStringList { QStringLiteral("warning: Unable to load the sensor database ")
                           + file.fileName() });
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(compressedDatabase());
    file.close();

    database.load();

    QCOMPARE(database.entries().size(), std::size_t(1));
}

void TestSensorDatabase::fileThatIsNotCompressedGivesNothing()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("sensors.xml.gz")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("<smcSensors><modelMatch models=\"all\"><smc name=\"TC0P\">A</smc></modelMatch>"
               "</smcSensors>");
    file.close();
    const SystemInfo info = machine("iMac19,2");
    SensorDatabase database(info, file.fileName());

    database.load();

    QVERIFY(database.entries().empty());
}

BRISORA_TEST_MAIN(TestSensorDatabase, QCoreApplication)
#include "test_sensordatabase.moc"
