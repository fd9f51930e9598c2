#include <QtTest>

#include "core/widgets/qmessageboxlocalized.h"
#include "core/widgets/windowicon.h"
#include "resources/resources.h"
#include "tests/support/interfacetexts.h"
#include "tests/support/modalboxdriver.h"
#include "tests/support/testenvironment.h"

class MessageBoxLocalizedTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // The first: a translation stays for the rest of the program.
    void withoutALanguageButtonsKeepTheirText();
    void standardButtonsSpeakTheLanguage_data();
    void standardButtonsSpeakTheLanguage();
    void theClickedButtonComesBack_data();
    void theClickedButtonComesBack();
    void aBoxWithoutAParentHasTheProgramsIcon();
    void aBoxWithAParentHasItsParentsIcon();
    void aBoxNeverEndsTheProgram_data();
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

void MessageBoxLocalizedTest::standardButtonsSpeakTheLanguage_data()
{
    QTest::addColumn<int>("button");
    QTest::addColumn<QString>("text"); // empty: Qt's own
    QTest::newRow("OK") << int { QMessageBox::Ok } << QStringLiteral("Gut so");
    QTest::newRow("Cancel") << int { QMessageBox::Cancel } << QStringLiteral("Lieber nicht");
    QTest::newRow("Close") << int { QMessageBox::Close } << QStringLiteral("Weg damit");
    QTest::newRow("Yes") << int { QMessageBox::Yes } << QStringLiteral("Gern");
    QTest::newRow("English where it has nothing")
        << int { QMessageBox::No } << QStringLiteral("No");
    QTest::newRow("one without a text") << int { QMessageBox::Retry } << QString();
}

void MessageBoxLocalizedTest::standardButtonsSpeakTheLanguage()
{
    QFETCH(int, button);
    QFETCH(QString, text);
    const auto standard = static_cast<QMessageBox::StandardButton>(button);
    QMessageBox plain;
    const QString before = plain.addButton(standard)->text();
    QVERIFY(before != text);
    InterfaceTexts texts;
    texts.translate("<core><QMessageBoxEx><buttonOK>Gut so</buttonOK>"
                    "<buttonCancel>Lieber nicht</buttonCancel><buttonClose>Weg damit</buttonClose>"
                    "<buttonYes>Gern</buttonYes></QMessageBoxEx></core>");
    ModalBoxDriver driver([&](QMessageBox& box) {
        QCOMPARE(box.button(standard)->text(), text.isEmpty() ? before : text);
    });

    QMessageBoxLocalized::warning(nullptr, QStringLiteral("title"), QStringLiteral("text"),
                                  standard);

    QCOMPARE(driver.boxCount(), 1);
}

void MessageBoxLocalizedTest::theClickedButtonComesBack_data()
{
    QTest::addColumn<bool>("critical");
    QTest::newRow("critical") << true;
    QTest::newRow("warning") << false;
}

void MessageBoxLocalizedTest::theClickedButtonComesBack()
{
    QFETCH(bool, critical);
    QWidget parent;
    ModalBoxDriver driver([&](QMessageBox& box) {
        QCOMPARE(box.icon(), critical ? QMessageBox::Critical : QMessageBox::Warning);
        QCOMPARE(box.windowTitle(), QStringLiteral("title"));
        QCOMPARE(box.text(), QStringLiteral("text"));
        QCOMPARE(box.standardButtons(), QMessageBox::Yes | QMessageBox::No);
        QVERIFY(box.defaultButton() == box.button(QMessageBox::Yes));
        QCOMPARE(box.windowIcon().cacheKey(), windowIcon().cacheKey());
        QVERIFY(box.parentWidget() == &parent);
        box.button(QMessageBox::No)->click();
    });
    const auto show = critical ? &QMessageBoxLocalized::critical : &QMessageBoxLocalized::warning;

    const auto answer = show(&parent, QStringLiteral("title"), QStringLiteral("text"),
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

void MessageBoxLocalizedTest::aBoxNeverEndsTheProgram_data()
{
    QTest::addColumn<bool>("ofTheKit");
    QTest::newRow("a plain box does") << false;
    QTest::newRow("one of the kit") << true;
}

void MessageBoxLocalizedTest::aBoxNeverEndsTheProgram()
{
    QFETCH(bool, ofTheKit);
    const QSignalSpy lastClosed(qApp, &QGuiApplication::lastWindowClosed);
    const ModalBoxDriver driver([](QMessageBox&) {});
    QTimer::singleShot(0, qApp, [ofTheKit] {
        // No parent, and no other window.
        const auto box
            = ofTheKit ? std::make_unique<QMessageBoxLocalized>() : std::make_unique<QMessageBox>();
        box->setText(QStringLiteral("text"));
        box->exec();
        QCoreApplication::quit();
    });

    QApplication::exec();

    QCOMPARE(driver.boxCount(), 1);
    QCOMPARE(lastClosed.count(), ofTheKit ? 0 : 1);
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
