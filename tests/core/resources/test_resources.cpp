#include <functional>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <tinyxml2.h>

#include "core/compression/compressionutils.h"
#include "core/language/languagestrings.h"
#include "resources/resources.h"
#include "tests/support/testenvironment.h"

namespace {

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Calls visit(path, text) for each text of a language file, in order.
void forEachText(const tinyxml2::XMLElement& parent, const QString& prefix,
                 const std::function<void(const QString&, const QString&)>& visit)
{
    for (const auto* element = parent.FirstChildElement(); element != nullptr;
         element = element->NextSiblingElement()) {
        const QString path = prefix + QString::fromUtf8(element->Name());
        if (element->FirstChildElement() != nullptr) {
            forEachText(*element, path + QLatin1Char('/'), visit);
        } else {
            visit(path, QString::fromUtf8(element->GetText()));
        }
    }
}

const QString englishPath = QStringLiteral(":/build/languages/English.xml");
const QString translationsPath = QStringLiteral(BRISORA_LANGUAGES_FOLDER);

QStringList placeholdersOf(const QString& text)
{
    QStringList result;
    auto matches = QRegularExpression(QStringLiteral("%[0-9]")).globalMatch(text);
    while (matches.hasNext()) {
        result += matches.next().captured();
    }
    result.sort();
    return result;
}

} // namespace

class TestResources : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { initResources(); }

    void englishHasEverySection_data()
    {
        QTest::addColumn<QString>("section");
        QTest::addColumn<int>("count");
        const auto row = [](const char* section, int count) {
            QTest::newRow(section) << QString::fromLatin1(section) << count;
        };
        row("MainWindow/", 27);
        row("FanControlDialog/", 7);
        row("Presets/", 20);
        row("TrayMenu/", 11);
        row("PreferencesWindow/", 26);
        row("AboutDialog/", 4);
        row("RateMeDialog/", 5);
        row("Common/", 4);
        row("core/UpdateChecker/", 25);
        row("core/LetsMoveMac/", 8);
        row("core/QLineEditEx/", 7);
        row("core/QMessageBoxEx/", 5);
        row("", 149);
    }
    void englishHasEverySection()
    {
        QFETCH(QString, section);
        QFETCH(int, count);
        tinyxml2::XMLDocument document;
        const QByteArray data = contentOf(englishPath);
        QCOMPARE(document.Parse(data.constData(), static_cast<std::size_t>(data.size())),
                 tinyxml2::XML_SUCCESS);
        QSet<QString> keys;
        forEachText(*document.RootElement(), QString(),
                    [&](const QString& key, const QString& text) {
                        QVERIFY2(!text.isEmpty(), qPrintable(key));
                        if (key.startsWith(section)) {
                            keys.insert(key);
                        }
                    });
        QCOMPARE(keys.size(), count);
    }

    void englishTextsAreFoundThroughTheLanguageObject_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("text");
        const auto row = [](const char* key, const char* text) {
            QTest::newRow(key) << QString::fromLatin1(key) << QString::fromUtf8(text);
        };
        row("MainWindow/buttonAbout", "About...");
        row("MainWindow/listColumnRPM", "Min/Current/Max RPM");
        row("FanControlDialog/title", "Change fan control for the '%1' fan");
        row("FanControlDialog/statusWarning",
            "Something is wrong - min/max fan values are equal (%1).<br/> Please make sure to "
            "uninstall any other fan-controlling software and to reset the SMC.");
        row("Presets/presetCreateNewMessage",
            "All of your fans are currently controlled by the system. \n\nPlease change the "
            "control to Custom for at least one of your fans to be able to create a new preset.");
        row("TrayMenu/itemSensorBased", "Sensor-based");
        row("core/UpdateChecker/UpdateAlertTitle", "Software Update");
        row("core/QMessageBoxEx/buttonYes", "Yes");
    }
    void englishTextsAreFoundThroughTheLanguageObject()
    {
        QFETCH(QString, key);
        QFETCH(QString, text);
        LanguageStrings language(englishPath, QString());
        language.load(QStringLiteral("English"));
        QCOMPARE(language.getString(key), text);
    }

    void languageFilesTellTheirVersionAndAuthor_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("English") << englishPath;
        QTest::newRow("German") << translationsPath + QStringLiteral("/German.xml");
    }
    void languageFilesTellTheirVersionAndAuthor()
    {
        QFETCH(QString, path);
        tinyxml2::XMLDocument document;
        const QByteArray data = contentOf(path);
        QCOMPARE(document.Parse(data.constData(), static_cast<std::size_t>(data.size())),
                 tinyxml2::XML_SUCCESS);
        QCOMPARE(document.RootElement()->Name(), "LanguageStrings");
        QCOMPARE(document.RootElement()->Attribute("version"), "1.5.9");
        QCOMPARE(document.RootElement()->Attribute("Author"), "Orvane Team");
    }

    void everyTranslationIsComplete_data()
    {
        QTest::addColumn<QString>("name");
        const QDir folder(translationsPath);
        for (const QString& name : folder.entryList({ QStringLiteral("*.xml") })) {
            QTest::newRow(qPrintable(name)) << name;
        }
    }
    void everyTranslationIsComplete()
    {
        QFETCH(QString, name);
        const auto read = [](const QByteArray& data) {
            QMap<QString, QStringList> placeholders;
            tinyxml2::XMLDocument document;
            if (document.Parse(data.constData(), static_cast<std::size_t>(data.size()))
                == tinyxml2::XML_SUCCESS) {
                forEachText(*document.RootElement(), QString(),
                            [&](const QString& key, const QString& text) {
                                placeholders.insert(key,
                                                    text.isEmpty()
                                                        ? QStringList(QStringLiteral("empty"))
                                                        : placeholdersOf(text));
                            });
            }
            return placeholders;
        };
        const auto english = read(contentOf(englishPath));
        const auto translated = read(contentOf(translationsPath + QLatin1Char('/') + name));
        QCOMPARE(translated.keys(), english.keys());
        for (auto it = english.begin(); it != english.end(); ++it) {
            QVERIFY2(translated.value(it.key()) == it.value(), qPrintable(it.key()));
        }
    }

    void theSensorDatabaseHasEveryRow()
    {
        const QByteArray data = CompressionUtils::gunzip(
            contentOf(QStringLiteral(":/Resources/xml/smcSensors.xml.gz")));
        tinyxml2::XMLDocument document;
        QCOMPARE(document.Parse(data.constData(), static_cast<std::size_t>(data.size())),
                 tinyxml2::XML_SUCCESS);
        const auto* root = document.RootElement();
        QCOMPARE(root->Name(), "smcSensors");

        int rules = 0;
        int rows = 0;
        int exclusions = 0;
        QSet<QByteArray> keys;
        QMap<QByteArray, int> types;
        for (const auto* rule = root->FirstChildElement("modelMatch"); rule != nullptr;
             rule = rule->NextSiblingElement("modelMatch")) {
            ++rules;
            QVERIFY(rule->Attribute("models") != nullptr);
            for (const auto* row = rule->FirstChildElement(); row != nullptr;
                 row = row->NextSiblingElement()) {
                ++rows;
                QCOMPARE(row->Name(), "smc");
                const QByteArray key(row->Attribute("name"));
                QCOMPARE(key.size(), 4);
                keys.insert(key);
                ++types[QByteArray(row->Attribute("type"))];
                exclusions += row->Attribute("exclude") != nullptr ? 1 : 0;
            }
        }
        QCOMPARE(rules, 26);
        QCOMPARE(rows, 151);
        QCOMPARE(keys.size(), 108);
        QCOMPARE(types.value("cpu"), 41);
        QCOMPARE(types.value("gpu"), 17);
        QCOMPARE(types.value("psu"), 8);
        QCOMPARE(types.value("ssd"), 5);
        QCOMPARE(types.value("odd"), 1);
        QCOMPARE(types.value("airport"), 1);
        QCOMPARE(types.value(QByteArray()), 151 - 41 - 17 - 8 - 5 - 1 - 1);
        QCOMPARE(exclusions, 5);
    }

    void theFanNamesHaveEveryRule()
    {
        const QByteArray data
            = CompressionUtils::gunzip(contentOf(QStringLiteral(":/Resources/xml/fanInfo.xml.gz")));
        tinyxml2::XMLDocument document;
        QCOMPARE(document.Parse(data.constData(), static_cast<std::size_t>(data.size())),
                 tinyxml2::XML_SUCCESS);
        QCOMPARE(document.RootElement()->Name(), "fanInfo");
        QStringList found;
        for (const auto* rule = document.RootElement()->FirstChildElement("modelMatch");
             rule != nullptr; rule = rule->NextSiblingElement("modelMatch")) {
            QStringList names;
            for (const auto* fan = rule->FirstChildElement(); fan != nullptr;
                 fan = fan->NextSiblingElement()) {
                QCOMPARE(QByteArray(fan->Name()), "fan" + QByteArray::number(names.size()));
                names += QString::fromUtf8(fan->GetText());
            }
            found += QString::fromUtf8(rule->Attribute("models")) + QLatin1String(": ")
                + names.join(QLatin1String(", "));
        }
        QCOMPARE(found,
                 QStringList({
                     QStringLiteral("iMacPro1,1: Dual-fan cooler"),
                     QStringLiteral("MacBookPro15,1;MacBookPro15,2;MacBookPro15,3;MacBookPro16,1;"
                                    "MacBookPro16,2;MacBookPro16,4: Left side, Right side"),
                     QStringLiteral("MacBookPro15,4;MacBookPro16,3;MacBookPro17,1: Right side"),
                     QStringLiteral("MacBookAir8,1;MacBookAir8,2;MacBookAir9,1;Macmini8,1;"
                                    "Macmini9,1;ADP3,2: Exhaust"),
                     QStringLiteral("MacPro7,1: Exhaust, Intake 1, Intake 2, Intake 3"),
                     QStringLiteral("iMac20,1;iMac20,2: Main"),
                 }));
    }
};

BRISORA_TEST_MAIN(TestResources, QCoreApplication)

#include "test_resources.moc"
