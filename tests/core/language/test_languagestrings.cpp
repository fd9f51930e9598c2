#include <atomic>
#include <memory>
#include <thread>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QLocale>
#include <QTemporaryDir>

#include "core/language/languagestrings.h"
#include "tests/support/testenvironment.h"

class TestLanguageStrings : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_folder;

    QString path(const QString& name) const { return m_folder->filePath(name); }

    void write(const QString& name, const QByteArray& content) const
    {
        QFile file(path(name));
        QVERIFY2(file.open(QIODevice::WriteOnly), qPrintable(file.errorString()));
        QCOMPARE(file.write(content), qint64(content.size()));
    }

    LanguageStrings* make() const
    {
        return new LanguageStrings(path(QStringLiteral("builtin")),
                                   path(QStringLiteral("languages")));
    }

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(m_folder->isValid());
        QVERIFY(QDir(m_folder->path()).mkdir(QStringLiteral("languages")));
        write(QStringLiteral("builtin"),
              "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
              "<LanguageStrings version=\"1.5.9\" Author=\"x\">\n"
              " <Common><buttonOK>OK</buttonOK><buttonClose>Close</buttonClose></Common>\n"
              " <core><Box><lines>one\\ntwo</lines></Box></core>\n"
              " <top>Top</top>\n"
              "</LanguageStrings>\n");
        write(QStringLiteral("languages/German.xml"),
              "<LanguageStrings><Common><buttonOK>In Ordnung</buttonOK><extra>Mehr</extra>"
              "</Common></LanguageStrings>");
    }

    void textsAreFoundByPath()
    {
        const std::unique_ptr<LanguageStrings> language(make());
        language->load(QStringLiteral("English"));
        QCOMPARE(language->getString(QStringLiteral("Common/buttonOK")), QStringLiteral("OK"));
        QCOMPARE(language->getString(QStringLiteral("core/Box/lines")), QStringLiteral("one\ntwo"));
        QCOMPARE(language->getString(QStringLiteral("top")), QStringLiteral("Top"));
    }

    void aMissingTextShowsAsItsKey_data()
    {
        QTest::addColumn<QString>("key");
        QTest::newRow("unknown") << QStringLiteral("Common/nothing");
        QTest::newRow("a section") << QStringLiteral("Common");
        QTest::newRow("other case") << QStringLiteral("common/buttonOK");
        QTest::newRow("empty") << QString();
        QTest::newRow("no path") << QStringLiteral("/");
    }
    void aMissingTextShowsAsItsKey()
    {
        QFETCH(QString, key);
        const std::unique_ptr<LanguageStrings> language(make());
        QCOMPARE(language->getString(key), key);
        language->load(QStringLiteral("English"));
        QCOMPARE(language->getString(key), key);
    }

    void aTranslationIsLoadedByNameOrFileName_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("fileName");
        QTest::addColumn<QString>("text");
        const auto row = [](const char* name, const char* fileName, const char* text) {
            QTest::newRow(name) << QString::fromLatin1(name) << QString::fromLatin1(fileName)
                                << QString::fromLatin1(text);
        };
        row("German", "German.xml", "In Ordnung");
        row("German.xml", "German.xml", "In Ordnung");
        row("English", "English.xml", "OK");
        row("English.xml", "English.xml", "OK");
        row("French", "English.xml", "OK");
        row("german", "English.xml", "OK");
        row("German.XML", "English.xml", "OK");
        row(".xml", "English.xml", "OK");
        row("../languages/German", "English.xml", "OK");
        row("./German", "English.xml", "OK");
        row("..", "English.xml", "OK");
    }
    void aTranslationIsLoadedByNameOrFileName()
    {
        QFETCH(QString, name);
        QFETCH(QString, fileName);
        QFETCH(QString, text);
        const std::unique_ptr<LanguageStrings> language(make());
        language->load(name);
        QCOMPARE(language->getLanguageFileName(), fileName);
        QCOMPARE(language->getLanguageName(), fileName.chopped(4));
        QCOMPARE(language->getString(QStringLiteral("Common/buttonOK")), text);
    }

    void aShortNameGetsTheExtension()
    {
        // Four characters can't be a name and an extension.
        write(QStringLiteral("languages/.xml.xml"), "<a><b>hidden</b></a>");
        const std::unique_ptr<LanguageStrings> language(make());
        language->load(QStringLiteral(".xml"));
        QCOMPARE(language->getLanguageFileName(), QStringLiteral(".xml.xml"));
    }

    void anEmptyNameStandsForTheSystemsLanguage()
    {
        const QString system = LanguageStrings::getSystemLanguageFile();
        QCOMPARE(system,
                 QLocale::languageToString(QLocale::system().language()) + QStringLiteral(".xml"));
        write(QStringLiteral("languages/") + system,
              "<a><Common><buttonOK>sys</buttonOK></Common></a>");
        const std::unique_ptr<LanguageStrings> language(make());
        language->load(QString());
        QCOMPARE(language->getLanguageFileName(), system);
        QCOMPARE(language->getString(QStringLiteral("Common/buttonOK")),
                 system == QStringLiteral("English.xml") ? QStringLiteral("OK")
                                                         : QStringLiteral("sys"));
    }

    void englishIsNeverReadFromTheFolder()
    {
        write(QStringLiteral("languages/English.xml"),
              "<a><Common><buttonOK>loose</buttonOK></Common></a>");
        const std::unique_ptr<LanguageStrings> language(make());
        language->load(QStringLiteral("English.xml"));
        QCOMPARE(language->getString(QStringLiteral("Common/buttonOK")), QStringLiteral("OK"));
    }

    void aTranslationKeepsEnglishWhereItHasNothing()
    {
        const std::unique_ptr<LanguageStrings> language(make());
        language->load(QStringLiteral("German"));
        QCOMPARE(language->getString(QStringLiteral("Common/buttonClose")),
                 QStringLiteral("Close"));
    }

    void aTranslationMayHaveKeysOfItsOwn()
    {
        const std::unique_ptr<LanguageStrings> language(make());
        language->load(QStringLiteral("German"));
        QCOMPARE(language->getString(QStringLiteral("Common/extra")), QStringLiteral("Mehr"));
    }

    void anEmptyTextInATranslationShowsTheKey()
    {
        write(QStringLiteral("languages/Danish.xml"),
              "<a><Common><buttonOK></buttonOK><buttonClose/></Common></a>");
        const std::unique_ptr<LanguageStrings> language(make());
        language->load(QStringLiteral("Danish"));
        QCOMPARE(language->getString(QStringLiteral("Common/buttonOK")),
                 QStringLiteral("Common/buttonOK"));
        QCOMPARE(language->getString(QStringLiteral("Common/buttonClose")),
                 QStringLiteral("Common/buttonClose"));
    }

    void loadingAgainForgetsTheFormerLanguage()
    {
        const std::unique_ptr<LanguageStrings> language(make());
        language->load(QStringLiteral("German"));
        language->load(QStringLiteral("English"));
        QCOMPARE(language->getString(QStringLiteral("Common/buttonOK")), QStringLiteral("OK"));
        QCOMPARE(language->getString(QStringLiteral("Common/extra")),
                 QStringLiteral("Common/extra"));
    }

    void specialTextIsReadAsXmlSaysIt_data()
    {
        QTest::addColumn<QByteArray>("element");
        QTest::addColumn<QString>("expected");
        QTest::newRow("entities") << QByteArray("&lt;b&gt; &amp; &#228;")
                                  << QStringLiteral("<b> & ä");
        QTest::newRow("CDATA") << QByteArray("<![CDATA[<b>]]>") << QStringLiteral("<b>");
        QTest::newRow("around a comment") << QByteArray("a<!-- x -->b") << QStringLiteral("ab");
        QTest::newRow("UTF-8") << QByteArray("\xE6\x97\xA5") << QStringLiteral("日");
        QTest::newRow("two line breaks") << QByteArray("a\\n\\nb") << QStringLiteral("a\n\nb");
        QTest::newRow("backslash alone") << QByteArray("a\\b") << QStringLiteral("a\\b");
        QTest::newRow("placeholders") << QByteArray("%1 of %2") << QStringLiteral("%1 of %2");
    }
    void specialTextIsReadAsXmlSaysIt()
    {
        QFETCH(QByteArray, element);
        QFETCH(QString, expected);
        write(QStringLiteral("languages/Test.xml"), "<a><k>" + element + "</k></a>");
        const std::unique_ptr<LanguageStrings> language(make());
        language->load(QStringLiteral("Test"));
        QCOMPARE(language->getString(QStringLiteral("k")), expected);
    }

    void theLastOfTwoEqualKeysHolds()
    {
        write(QStringLiteral("languages/Test.xml"), "<a><k>1</k><k>2</k></a>");
        const std::unique_ptr<LanguageStrings> language(make());
        language->load(QStringLiteral("Test"));
        QCOMPARE(language->getString(QStringLiteral("k")), QStringLiteral("2"));
    }

    void aBrokenTranslationLeavesEnglish_data()
    {
        QTest::addColumn<QByteArray>("content");
        const QByteArray good("<a><Common><buttonOK>x</buttonOK></Common></a>");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("text") << QByteArray("no xml");
        QTest::newRow("zeros") << QByteArray(100, 0);
        QTest::newRow("cut") << good.chopped(6);
        QTest::newRow("wrong nesting") << QByteArray("<a><Common><buttonOK>x</Common></a>");
        QTest::newRow("declaration alone") << QByteArray("<?xml version=\"1.0\"?>");
        QTest::newRow("comment alone") << QByteArray("<!-- x -->");
        QTest::newRow("UTF-16") << QByteArray("\xFF\xFE<\0a\0/\0>\0", 10);
        QTest::newRow("too deep") << QByteArray("<a>").repeated(100000);
        QTest::newRow("too deep, but closed")
            << QByteArray("<a>").repeated(20000) + "x" + QByteArray("</a>").repeated(20000);
        QTest::newRow("too large") << good.chopped(4) + QByteArray(17 * 1024 * 1024, ' ') + "</a>";
    }
    void aBrokenTranslationLeavesEnglish()
    {
        QFETCH(QByteArray, content);
        write(QStringLiteral("languages/Test.xml"), content);
        const std::unique_ptr<LanguageStrings> language(make());
        language->load(QStringLiteral("Test"));
        QCOMPARE(language->getLanguageFileName(), QStringLiteral("English.xml"));
        QCOMPARE(language->getString(QStringLiteral("Common/buttonOK")), QStringLiteral("OK"));
    }

    void aFolderIsNoTranslation()
    {
        QVERIFY(QDir(path(QStringLiteral("languages"))).mkdir(QStringLiteral("Test.xml")));
        const std::unique_ptr<LanguageStrings> language(make());
        language->load(QStringLiteral("Test"));
        QCOMPARE(language->getLanguageFileName(), QStringLiteral("English.xml"));
        QCOMPARE(language->getAvailableLanguages(), QStringList { QStringLiteral("German") });
    }

    void entitiesAreNotExpanded()
    {
        QByteArray bomb("<!DOCTYPE a [<!ENTITY e0 \"xxxxxxxxxx\">");
        for (int i = 1; i < 12; ++i) {
            const QByteArray inner = "&e" + QByteArray::number(i - 1) + ";";
            bomb += "<!ENTITY e" + QByteArray::number(i) + " \"" + inner.repeated(10) + "\">";
        }
        bomb += "]><a><k>&e11;</k></a>";
        write(QStringLiteral("languages/Test.xml"), bomb);
        const std::unique_ptr<LanguageStrings> language(make());
        language->load(QStringLiteral("Test"));
        // The document type of the file is either refused or kept unread.
        QVERIFY(language->getString(QStringLiteral("k")).size() < 10);
    }

    void bytesThatAreNoUtf8AreReplaced()
    {
        write(QStringLiteral("languages/Test.xml"), "<a><k>gr\xFC\xDF</k></a>");
        const std::unique_ptr<LanguageStrings> language(make());
        language->load(QStringLiteral("Test"));
        QCOMPARE(language->getString(QStringLiteral("k")),
                 QStringLiteral("gr") + QString(2, QChar::ReplacementCharacter));
    }

    void aLargeTranslationIsRead()
    {
        QByteArray content("<a>");
        for (int i = 0; i < 50000; ++i) {
            content += "<k" + QByteArray::number(i) + ">text</k" + QByteArray::number(i) + ">";
        }
        write(QStringLiteral("languages/Test.xml"), content + "</a>");
        const std::unique_ptr<LanguageStrings> language(make());
        language->load(QStringLiteral("Test"));
        QCOMPARE(language->getString(QStringLiteral("k49999")), QStringLiteral("text"));
    }

    void brokenEnglishLeavesTheKeys_data()
    {
        QTest::addColumn<bool>("exists");
        QTest::newRow("broken") << true;
        QTest::newRow("missing") << false;
    }
    void brokenEnglishLeavesTheKeys()
    {
        QFETCH(bool, exists);
        if (exists) {
            write(QStringLiteral("builtin"), "<a><top>Top</top>");
        } else {
            QVERIFY(QFile::remove(path(QStringLiteral("builtin"))));
        }
        const std::unique_ptr<LanguageStrings> language(make());
        language->load(QStringLiteral("English"));
        QCOMPARE(language->getString(QStringLiteral("top")), QStringLiteral("top"));
        QCOMPARE(language->getLanguageFileName(), QString());
        QCOMPARE(language->getLanguageName(), QString());
    }

    void englishMayBeCompressed()
    {
        // "<a><top>Top</top></a>", by gzip.
        const QByteArray packed
            = QByteArray::fromHex("1f8b0800000000000203b349b4b329c92fb00bc92fb0d107316cf413ed"
                                  "007a400dde15000000");
        write(QStringLiteral("builtin"), packed);
        const std::unique_ptr<LanguageStrings> language(make());
        language->load(QStringLiteral("English"));
        QCOMPARE(language->getString(QStringLiteral("top")), QStringLiteral("Top"));

        write(QStringLiteral("builtin"), packed.chopped(1));
        language->load(QStringLiteral("English"));
        QCOMPARE(language->getLanguageFileName(), QString());
    }

    void theFolderTellsTheLanguages()
    {
        write(QStringLiteral("languages/Arabic.xml"), "");
        write(QStringLiteral("languages/Russian.XML"), "");
        write(QStringLiteral("languages/notes.txt"), "");
        write(QStringLiteral("languages/Serbian_Latin.xml"), "");
        const std::unique_ptr<LanguageStrings> language(make());
        QCOMPARE(language->getAvailableLanguages(),
                 QStringList({ QStringLiteral("Arabic"), QStringLiteral("German"),
                               QStringLiteral("Serbian_Latin") }));
    }

    void anEmptyOrMissingFolderHasNoLanguages()
    {
        QVERIFY(QFile::remove(path(QStringLiteral("languages/German.xml"))));
        const std::unique_ptr<LanguageStrings> language(make());
        QCOMPARE(language->getAvailableLanguages(), QStringList());
        language->load(QStringLiteral("German"));
        QCOMPARE(language->getLanguageName(), QStringLiteral("English"));
        QVERIFY(QDir(path(QStringLiteral("languages"))).removeRecursively());
        QCOMPARE(language->getAvailableLanguages(), QStringList());
        language->load(QStringLiteral("German"));
        QCOMPARE(language->getLanguageName(), QStringLiteral("English"));
    }

    void languagesHaveNamesInThemselves_data()
    {
        QTest::addColumn<QString>("baseName");
        QTest::addColumn<QString>("native");
        QTest::newRow("German") << QStringLiteral("German") << QStringLiteral("Deutsch");
        QTest::newRow("Russian") << QStringLiteral("Russian") << QStringLiteral("Русский");
        QTest::newRow("Japanese") << QStringLiteral("Japanese") << QStringLiteral("日本語");
        QTest::newRow("Serbian") << QStringLiteral("Serbian") << QStringLiteral("Srpski");
        QTest::newRow("Serbian_Latin")
            << QStringLiteral("Serbian_Latin") << QStringLiteral("Srpski");
        QTest::newRow("first row") << QStringLiteral("Arabic") << QStringLiteral("العربية");
        QTest::newRow("last row") << QStringLiteral("Thai") << QStringLiteral("ภาษาไทย");
        QTest::newRow("English has none") << QStringLiteral("English") << QString();
        QTest::newRow("unknown") << QStringLiteral("Klingon") << QString();
        QTest::newRow("other case") << QStringLiteral("german") << QString();
    }
    void languagesHaveNamesInThemselves()
    {
        QFETCH(QString, baseName);
        QFETCH(QString, native);
        QCOMPARE(LanguageStrings::nativeName(baseName), native);
    }

    void someLanguagesAreWrittenFromRightToLeft_data()
    {
        QTest::addColumn<QString>("baseName");
        QTest::addColumn<bool>("rightToLeft");
        const auto row = [](const char* baseName, bool rightToLeft) {
            QTest::newRow(baseName) << QString::fromLatin1(baseName) << rightToLeft;
        };
        row("Arabic", true);
        row("Hebrew", true);
        row("Persian", true);
        row("English", false);
        row("German", false);
        row("Turkish", false);
        row("Japanese", false);
        row("Hebrew.xml", false); // a file name
        row("arabic", false);
        row("", false);
    }
    void someLanguagesAreWrittenFromRightToLeft()
    {
        QFETCH(QString, baseName);
        QTEST(LanguageStrings::isRightToLeft(baseName), "rightToLeft");
    }

    void theActiveLanguageGivesTheTexts()
    {
        const QString key = QStringLiteral("Common/buttonOK");
        QCOMPARE(LanguageStrings::text(key), key);
        const std::unique_ptr<LanguageStrings> language(make());
        language->load(QStringLiteral("German"));
        LanguageStrings::setActive(language.get());
        QCOMPARE(LanguageStrings::text(key), QStringLiteral("In Ordnung"));
        LanguageStrings::setActive(nullptr);
        QCOMPARE(LanguageStrings::text(key), key);
    }

    void textsAreWholeWhileAnotherLanguageIsLoaded()
    {
        const std::unique_ptr<LanguageStrings> language(make());
        language->load(QStringLiteral("German"));
        std::atomic<bool> stop { false };
        std::atomic<int> strange { 0 };
        std::thread reader([&] {
            while (!stop) {
                const QString text = language->getString(QStringLiteral("Common/buttonOK"));
                if (text != QStringLiteral("OK") && text != QStringLiteral("In Ordnung")) {
                    ++strange;
                }
            }
        });
        for (int i = 0; i < 200; ++i) {
            language->load(i % 2 == 0 ? QStringLiteral("English") : QStringLiteral("German"));
        }
        stop = true;
        reader.join();
        QCOMPARE(strange.load(), 0);
    }
};

BRISORA_TEST_MAIN(TestLanguageStrings, QCoreApplication)

#include "test_languagestrings.moc"
