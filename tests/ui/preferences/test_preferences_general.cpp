#include <QCheckBox>
#include <QFile>
#include <QLabel>
#include <QSignalSpy>
#include <QtTest>

#include "core/language/languagestrings.h"
#include "core/widgets/qlanguagecombobox.h"
#include "tests/support/testenvironment.h"
#include "tests/ui/preferences/preferencesbench.h"

namespace {

const QByteArray broken = "<LanguageStrings><Common>";

// As a user does; nothing is chosen when there is no such language.
void choose(const PreferencesBench& bench, const char* language)
{
    auto* const languages = bench.find<QLanguageComboBox>("comboLanguage");
    languages->setCurrentIndex(languages->findData(QLatin1String(language)));
}

// What the selector shows, what is in force, and what the next start will take.
QStringList languageOf(PreferencesBench& bench)
{
    return { bench.find<QLanguageComboBox>("comboLanguage")->selectedLanguage(),
             bench.host.language().getLanguageName(),
             bench.settings.getString(SettingsKeys::interfaceLanguage) };
}

QStringList english()
{
    return { QStringLiteral("English"), QStringLiteral("English"), QStringLiteral("English.xml") };
}
QStringList german()
{
    return { QStringLiteral("German"), QStringLiteral("German"), QStringLiteral("German.xml") };
}

} // namespace

// The start at logon, the checks for updates and the language.
class PreferencesGeneralTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void autostartShowsWhatTheSystemSays();
    void updateChecksAreDisabledWhereThereAreNone();
    void updateChecksFollowTheBox();
    void anotherLanguageShowsAtOnce();
    void theSameLanguageIsNotLoadedAgain();
    void ofABrokenLanguageEnglishRemains_data();
    void ofABrokenLanguageEnglishRemains();
    void aLanguageThatIsNotInTheFolderIsLeftForAnother();
    void withoutAnyTextsTheStoredLanguageStays();
    void theTranslationPageIsOpened();
};

void PreferencesGeneralTest::autostartShowsWhatTheSystemSays()
{
    PreferencesBench bench;
    bench.make();
    auto* const box = bench.find<QCheckBox>("checkAutostart");
    QVERIFY(!box->isChecked());

    box->setChecked(true);
    QVERIFY(bench.autostart);
    QVERIFY(box->isChecked());

    box->setChecked(false);
    QVERIFY(!bench.autostart);
    bench.refuses = true;
    box->setChecked(true);
    QVERIFY(!box->isChecked());
}

void PreferencesGeneralTest::updateChecksAreDisabledWhereThereAreNone()
{
    PreferencesBench bench;
    bench.make();
    const auto* const box = bench.find<QCheckBox>("checkUpdates");
    QVERIFY(!box->isEnabled());
    QVERIFY(!box->isChecked());
}

void PreferencesGeneralTest::updateChecksFollowTheBox()
{
    PreferencesBench bench;
    bool on = true;
    bench.host.isUpdateCheckOn = [&on] { return on; };
    bench.host.setUpdateCheckOn = [&on](bool value) { on = value; };
    bench.make();
    auto* const box = bench.find<QCheckBox>("checkUpdates");
    QVERIFY(box->isEnabled());
    QVERIFY(box->isChecked());

    box->setChecked(false);

    QVERIFY(!on);
}

void PreferencesGeneralTest::anotherLanguageShowsAtOnce()
{
    PreferencesBench bench;
    auto& dialog = bench.make();
    dialog.show();
    const QSignalSpy changed(&dialog, &QPreferencesDialog::preferencesChanged);
    auto* const languages = bench.find<QLanguageComboBox>("comboLanguage");
    QCOMPARE(languages->currentText(), QStringLiteral("English"));
    const int german = languages->findData(QStringLiteral("German"));
    QCOMPARE(languages->itemText(german), QStringLiteral("German (Deutsch)"));

    languages->setCurrentIndex(german);

    QCOMPARE(bench.texts.strings().getLanguageName(), QStringLiteral("German"));
    QCOMPARE(bench.settings.getString(SettingsKeys::interfaceLanguage),
             QStringLiteral("German.xml"));
    QCOMPARE(changed.count(), 1);
    QCOMPARE(bench.find<QLabel>("labelLanguage")->text(),
             bench.texts.strings().getString(QStringLiteral("PreferencesWindow/staticLanguage")));
    QCOMPARE(bench.button(0)->text(),
             bench.texts.strings().getString(QStringLiteral("PreferencesWindow/TabGeneral")));
    QVERIFY(dialog.windowTitle().startsWith(
        bench.texts.strings().getString(QStringLiteral("PreferencesWindow/title"))));
    const auto* const bar = dialog.findChild<QToolBar*>();
    QTRY_COMPARE(dialog.width(), qMax(bar->width(), bench.visiblePage()->width() + 60));
}

void PreferencesGeneralTest::theSameLanguageIsNotLoadedAgain()
{
    PreferencesBench bench;
    int loads = 0;
    bench.host.loadLanguage = [&loads](const QString&) { ++loads; };
    bench.make();
    auto* const languages = bench.find<QLanguageComboBox>("comboLanguage");

    languages->setCurrentIndex(-1);
    languages->setCurrentIndex(languages->findData(QStringLiteral("English")));

    QCOMPARE(loads, 0);
    QCOMPARE(bench.settings.getString(SettingsKeys::interfaceLanguage), QString());
}

void PreferencesGeneralTest::theTranslationPageIsOpened()
{
    PreferencesBench bench;
    bench.make();
    auto* const label = bench.find<QLabel>("labelTranslate");
    QCOMPARE(label->text(), QStringLiteral("<a href=\"translate\">Translate</a>"));
    Q_EMIT label->linkActivated(QStringLiteral("other"));
    QCOMPARE(bench.translationPages, 0);
    Q_EMIT label->linkActivated(QStringLiteral("translate"));
    QCOMPARE(bench.translationPages, 1);

    bench.host.openTranslationPage = nullptr;
    bench.make();
    QVERIFY(bench.find<QLabel>("labelTranslate")->isHidden());
}

void PreferencesGeneralTest::ofABrokenLanguageEnglishRemains_data()
{
    QTest::addColumn<QString>("before");
    QTest::newRow("from another language") << QStringLiteral("German");
    QTest::newRow("from English") << QStringLiteral("English");
}

void PreferencesGeneralTest::ofABrokenLanguageEnglishRemains()
{
    QFETCH(QString, before);
    PreferencesBench bench;
    bench.texts.addFile(QStringLiteral("Broken"), broken);
    bench.texts.load(before);
    bench.make();

    choose(bench, "Broken");
    QCOMPARE(languageOf(bench), english());
    QCOMPARE(bench.find<QLabel>("labelLanguage")->text(), QStringLiteral("Language:"));

    choose(bench, "English");
    QCOMPARE(languageOf(bench), english());
    choose(bench, "German");
    QCOMPARE(languageOf(bench), german());
    QCOMPARE(bench.find<QLabel>("labelLanguage")->text(), QStringLiteral("Sprache:"));
}

void PreferencesGeneralTest::aLanguageThatIsNotInTheFolderIsLeftForAnother()
{
    PreferencesBench bench;
    const QTemporaryDir folder;
    QVERIFY(QFile::copy(QStringLiteral(BRISORA_LANGUAGES_FOLDER "/German.xml"),
                        folder.filePath(QStringLiteral("German.xml"))));
    LanguageStrings language(QStringLiteral(":/build/languages/English.xml"), folder.path());
    language.load(QStringLiteral("English"));
    bench.host.language = [&language]() -> const LanguageStrings& { return language; };
    bench.host.loadLanguage = [&language](const QString& name) { language.load(name); };
    bench.make();
    QCOMPARE(languageOf(bench), QStringList({ QString(), QStringLiteral("English"), QString() }));

    choose(bench, "German");

    QCOMPARE(languageOf(bench), german());
}

void PreferencesGeneralTest::withoutAnyTextsTheStoredLanguageStays()
{
    PreferencesBench bench;
    const QTemporaryDir folder;
    LanguageStrings language(QStringLiteral(":/nothing.xml"), folder.path());
    bench.host.language = [&language]() -> const LanguageStrings& { return language; };
    bench.host.loadLanguage = [&language](const QString& name) { language.load(name); };
    QFile file(folder.filePath(QStringLiteral("Broken.xml")));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(broken) == broken.size());
    file.close();
    bench.settings.setString(SettingsKeys::interfaceLanguage, QStringLiteral("German.xml"));
    bench.make();

    choose(bench, "Broken");

    QCOMPARE(languageOf(bench),
             QStringList({ QString(), QString(), QStringLiteral("German.xml") }));
}

BRISORA_TEST_MAIN(PreferencesGeneralTest, QApplication)

#include "test_preferences_general.moc"
