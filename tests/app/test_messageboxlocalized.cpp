#include <QtTest>

#include "core/language/languagestrings.h"
#include "core/widgets/qmessageboxlocalized.h"
#include "core/widgets/windowicon.h"
#include "resources/resources.h"
#include "tests/support/modalboxdriver.h"
#include "tests/support/testenvironment.h"

class MessageBoxLocalizedTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // The first: a translation stays for the rest of the program.
    void withoutALanguageButtonsKeepTheirText();
    void standardButtonsSpeakTheLanguage();
    void theClickedButtonComesBack();
    void aBoxWithoutAParentHasTheProgramsIcon();
    void aBoxWithAParentHasItsParentsIcon();
    void aBoxNeverEndsTheProgram();
};

void MessageBoxLocalizedTest::withoutALanguageButtonsKeepTheirText()
{
    QMessageBox plain;
    plain.setStandardButtons(QMessageBox::Ok | QMessageBox::Retry);
    const QString ok = plain.button(QMessageBox::Ok)->text();
    const QString retry = plain.button(QMessageBox::Retry)->text();
    ModalBoxDriver driver([&](QMessageBox& box) {
        QCOMPARE(box.button(QMessageBox::Ok)->text(), ok);
        QCOMPARE(box.button(QMessageBox::Retry)->text(), retry);
    });

    QMessageBoxLocalized::critical(nullptr, {}, QStringLiteral("text"),
                                   QMessageBox::Ok | QMessageBox::Retry);

    QCOMPARE(driver.boxCount(), 1);
}

void MessageBoxLocalizedTest::standardButtonsSpeakTheLanguage()
{
    QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("Test.xml")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("<LanguageStrings><core><QMessageBoxEx><buttonOK>Gut so</buttonOK>"
               "</QMessageBoxEx></core></LanguageStrings>");
    file.close();
    LanguageStrings language(QStringLiteral(":/build/languages/English.xml"), folder.path());
    language.load(QStringLiteral("Test"));
    LanguageStrings::setActive(&language);
    ModalBoxDriver driver([](QMessageBox& box) {
        QCOMPARE(box.button(QMessageBox::Ok)->text(), QStringLiteral("Gut so"));
        QCOMPARE(box.button(QMessageBox::Cancel)->text(), QStringLiteral("Cancel"));
    });

    QMessageBoxLocalized::warning(nullptr, QStringLiteral("title"), QStringLiteral("text"),
                                  QMessageBox::Ok | QMessageBox::Cancel);

    QCOMPARE(driver.boxCount(), 1);
    LanguageStrings::setActive(nullptr);
}

void MessageBoxLocalizedTest::theClickedButtonComesBack()
{
    ModalBoxDriver driver([](QMessageBox& box) {
        QCOMPARE(box.icon(), QMessageBox::Critical);
        QVERIFY(!box.windowIcon().isNull());
        box.button(QMessageBox::No)->click();
    });

    const auto answer
        = QMessageBoxLocalized::critical(nullptr, QStringLiteral("title"), QStringLiteral("text"),
                                         QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes);

    QCOMPARE(answer, QMessageBox::No);
    QCOMPARE(driver.boxCount(), 1);
}

void MessageBoxLocalizedTest::aBoxWithoutAParentHasTheProgramsIcon()
{
    QMessageBoxLocalized box;
    box.setStandardButtons(QMessageBox::Ok);
    ModalBoxDriver driver([](QMessageBox& shown) {
        QCOMPARE(shown.windowIcon().cacheKey(), windowIcon().cacheKey());
    });

    box.exec();

    QCOMPARE(driver.boxCount(), 1);
}

void MessageBoxLocalizedTest::aBoxWithAParentHasItsParentsIcon()
{
    QWidget parent;
    parent.setWindowIcon(QIcon(QStringLiteral(":/Resources/icon_64.png")));
    QMessageBoxLocalized box(&parent);
    box.setStandardButtons(QMessageBox::Ok);
    ModalBoxDriver driver([&parent](QMessageBox& shown) {
        QCOMPARE(shown.windowIcon().cacheKey(), parent.windowIcon().cacheKey());
    });

    box.exec();

    QCOMPARE(driver.boxCount(), 1);
}

void MessageBoxLocalizedTest::aBoxNeverEndsTheProgram()
{
    const QMessageBoxLocalized box;
    QVERIFY(!box.testAttribute(Qt::WA_QuitOnClose));
}

int main(int argc, char* argv[])
{
    const TestEnvironment environment;
    initResources();
    QApplication application(argc, argv);
    MessageBoxLocalizedTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_messageboxlocalized.moc"
