#include <memory>

#include <QFile>
#include <QSignalSpy>
#include <QtTest>

#include "core/language/languagestrings.h"
#include "core/widgets/qlanguagecombobox.h"
#include "resources/resources.h"
#include "tests/support/testenvironment.h"

class LanguageComboBoxTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { initResources(); }
    void init();

    void anEmptyFolderGivesAnEmptySelector();
    void eachFileIsALanguageWithItsOwnName();
    void aLanguageInForceThatIsNotInTheFolderIsNotSelected();
    void anotherLoadSelectsTheLanguageInForce();

private:
    void addFiles(const QStringList& names);

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<LanguageStrings> m_language;
};

void LanguageComboBoxTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_language = std::make_unique<LanguageStrings>(QStringLiteral(":/build/languages/English.xml"),
                                                   m_folder->path());
    m_language->load(QStringLiteral("English"));
}

void LanguageComboBoxTest::addFiles(const QStringList& names)
{
    for (const QString& name : names) {
        QFile file(m_folder->filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY(file.write("<LanguageStrings/>") > 0);
    }
}

void LanguageComboBoxTest::anEmptyFolderGivesAnEmptySelector()
{
    QLanguageComboBox box;
    box.addItem(QStringLiteral("what was there"));

    box.load(*m_language);

    QCOMPARE(box.count(), 0);
    QCOMPARE(box.currentIndex(), -1);
    QCOMPARE(box.selectedLanguage(), QString());
}

void LanguageComboBoxTest::eachFileIsALanguageWithItsOwnName()
{
    addFiles({ QStringLiteral("Serbian_Latin.xml"), QStringLiteral("Serbian.xml"),
               QStringLiteral("English.xml"), QStringLiteral("Elvish.xml"),
               QStringLiteral("notes.txt") });
    QLanguageComboBox box;

    box.load(*m_language);

    QStringList items;
    for (int index = 0; index < box.count(); ++index) {
        items.append(box.itemData(index).toString() + QLatin1String(": ") + box.itemText(index));
    }
    QCOMPARE(items,
             QStringList({ QStringLiteral("Elvish: Elvish"), QStringLiteral("English: English"),
                           QStringLiteral("Serbian: Serbian (Srpski)"),
                           QStringLiteral("Serbian_Latin: Serbian_Latin (Srpski)") }));
    QCOMPARE(box.selectedLanguage(), QStringLiteral("English"));
}

void LanguageComboBoxTest::aLanguageInForceThatIsNotInTheFolderIsNotSelected()
{
    addFiles({ QStringLiteral("German.xml") });
    QLanguageComboBox box;

    box.load(*m_language);

    QCOMPARE(box.count(), 1);
    QCOMPARE(box.currentIndex(), -1);
    QCOMPARE(box.selectedLanguage(), QString());
}

void LanguageComboBoxTest::anotherLoadSelectsTheLanguageInForce()
{
    addFiles({ QStringLiteral("English.xml"), QStringLiteral("German.xml") });
    QLanguageComboBox box;
    box.load(*m_language);
    const QSignalSpy changes(&box, qOverload<int>(&QComboBox::currentIndexChanged));

    m_language->load(QStringLiteral("German"));
    box.load(*m_language);

    QCOMPARE(box.count(), 2);
    QCOMPARE(box.selectedLanguage(), QStringLiteral("German"));
    // It is no choice of the user's.
    QCOMPARE(changes.count(), 0);
}

BRISORA_TEST_MAIN(LanguageComboBoxTest, QApplication)

#include "test_qlanguagecombobox.moc"
