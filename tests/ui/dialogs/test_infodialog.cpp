#include <QApplication>
#include <QDate>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QtTest>

#include "app/ui/dialogs/qinfodialog.h"
#include "tests/support/interfacetexts.h"
#include "tests/support/logcapture.h"
#include "tests/support/openedaddresses.h"
#include "tests/support/testenvironment.h"
#include "tests/ui/dialogs/textfit.h"

class InfoDialogTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_texts.useEnglish(); }

    void theProductIsNamedWithVersionAndBuild();
    void thisBuildIsTheOneThatIsShown();
    void theCopyrightEndsWithThePresentYear_data();
    void theCopyrightEndsWithThePresentYear();
    void eachPartHasItsText();
    void thePictureHasItsSize();
    void theWindowIsAPlainDialogOfFixedSize();
    void theLinkOpensTheSupportPage_data();
    void theLinkOpensTheSupportPage();
    void theLinkIsMarkedWhileItHasTheKeyboardOnly();
    void anotherLinkOpensNothing();
    void withoutASupportPageThereIsNoLink();
    void aPageThatCantBeOpenedIsLogged();
    void theDialogCloses_data();
    void theDialogCloses();
    void noTextIsCut_data();
    void noTextIsCut();

private:
    static QInfoDialog::Info info()
    {
        return { QStringLiteral("Brisora"),
                 QStringLiteral("1.5.9"),
                 100,
                 QStringLiteral("Copyright 2013-%1 The Makers"),
                 2031,
                 QStringLiteral("https://example.com/support") };
    }
    static QLabel* label(const QDialog& dialog, const char* name)
    {
        return dialog.findChild<QLabel*>(QLatin1String(name));
    }
    static QPushButton* closeButton(const QDialog& dialog)
    {
        return dialog.findChild<QDialogButtonBox*>()->findChild<QPushButton*>();
    }

    InterfaceTexts m_texts;
};

void InfoDialogTest::theProductIsNamedWithVersionAndBuild()
{
    const QInfoDialog dialog(nullptr, info());

    QCOMPARE(label(dialog, "labelAppName")->text(),
             QStringLiteral("<b>Brisora 1.5.9</b> Build 100"));
}

void InfoDialogTest::thisBuildIsTheOneThatIsShown()
{
    const int before = QDate::currentDate().year();
    const QInfoDialog::Info current = QInfoDialog::Info::current();

    QCOMPARE(current.productName, QStringLiteral("Brisora"));
    QCOMPARE(current.version, QStringLiteral("1.5.9"));
    QCOMPARE(current.build, 100);
    QVERIFY(current.year >= before && current.year <= QDate::currentDate().year());
    QVERIFY(current.copyrightLine.contains(QStringLiteral("2013-%1")));
    QVERIFY(current.supportPage.contains(QStringLiteral("support")));
}

void InfoDialogTest::theCopyrightEndsWithThePresentYear_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<int>("year");
    QTest::addColumn<QString>("shown");

    QTest::newRow("now") << "(c) 2013-%1 M" << 2031 << "(c) 2013-2031 M";
    QTest::newRow("wrong clock") << "(c) 2013-%1 M" << 1970 << "(c) 2013-1970 M";
    QTest::newRow("no year") << "(c) M" << 2031 << "(c) M";
    QTest::newRow("markup") << "<(c) %1>" << 2031 << "<(c) 2031>";
}

void InfoDialogTest::theCopyrightEndsWithThePresentYear()
{
    QFETCH(QString, line);
    QFETCH(int, year);
    QInfoDialog::Info changed = info();
    changed.copyrightLine = line;
    changed.year = year;

    const QInfoDialog dialog(nullptr, changed);

    QTEST(label(dialog, "labelCopyright")->text(), "shown");
    QCOMPARE(label(dialog, "labelCopyright")->textFormat(), Qt::PlainText);
}

void InfoDialogTest::eachPartHasItsText()
{
    const QInfoDialog dialog(nullptr, info());

    QCOMPARE(dialog.windowTitle(), QStringLiteral("About Brisora"));
    QCOMPARE(label(dialog, "labelSupport")->text(),
             QStringLiteral("<a href='help'>Online help</a>"));
    QVERIFY(label(dialog, "labelDisclamer")->wordWrap());
    QVERIFY(label(dialog, "labelDisclamer")
                ->text()
                .startsWith(QStringLiteral("THIS PROGRAM IS FOR ADVANCED USERS")));
    QCOMPARE(closeButton(dialog)->text(), QStringLiteral("Close"));
    QVERIFY(closeButton(dialog)->isDefault());
    QVERIFY(closeButton(dialog)->autoDefault());
}

void InfoDialogTest::thePictureHasItsSize()
{
    const QInfoDialog dialog(nullptr, info());

    const QPixmap picture = label(dialog, "m_AboutIcon")->pixmap(Qt::ReturnByValue);
    QCOMPARE(picture.size() / picture.devicePixelRatio(), QSize(128, 128));
    QCOMPARE(dialog.windowIcon().availableSizes(), (QList<QSize> { { 16, 16 }, { 32, 32 } }));
}

void InfoDialogTest::theWindowIsAPlainDialogOfFixedSize()
{
    const QInfoDialog dialog(nullptr, info());

    QVERIFY(!dialog.testAttribute(Qt::WA_QuitOnClose));
    QVERIFY(!dialog.windowFlags().testFlag(Qt::WindowContextHelpButtonHint));
    QCOMPARE(dialog.windowType(), Qt::Sheet);
    QCOMPARE(dialog.minimumSize(), dialog.maximumSize());
}

void InfoDialogTest::theLinkOpensTheSupportPage_data()
{
    QTest::addColumn<bool>("byKeyboard");

    QTest::newRow("mouse") << false;
    QTest::newRow("keyboard") << true;
}

void InfoDialogTest::theLinkOpensTheSupportPage()
{
    QFETCH(bool, byKeyboard);
    const OpenedAddresses opened;
    QInfoDialog dialog(nullptr, info());
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    auto* const link = label(dialog, "labelSupport");

    if (byKeyboard) {
        QCOMPARE(QApplication::focusWidget(), closeButton(dialog));
        QTest::keyClick(closeButton(dialog), Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), link);
        QTest::keyClick(link, Qt::Key_Return);
    } else {
        QTest::mouseClick(link, Qt::LeftButton);
    }

    QCOMPARE(opened.addresses,
             QVector<QUrl> { QUrl(QStringLiteral("https://example.com/support")) });
    QVERIFY(dialog.isVisible());
}

void InfoDialogTest::theLinkIsMarkedWhileItHasTheKeyboardOnly()
{
    QInfoDialog dialog(nullptr, info());
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    const auto* const link = label(dialog, "labelSupport");
    QVERIFY(!link->hasSelectedText());

    QTest::keyClick(closeButton(dialog), Qt::Key_Tab);
    QCOMPARE(link->selectedText(), QStringLiteral("Online help"));

    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget(), closeButton(dialog));
    QVERIFY(!link->hasSelectedText());
}

void InfoDialogTest::anotherLinkOpensNothing()
{
    const OpenedAddresses opened;
    const QInfoDialog dialog(nullptr, info());

    Q_EMIT label(dialog, "labelSupport")->linkActivated(QStringLiteral("https://example.com/"));

    QCOMPARE(opened.addresses, QVector<QUrl>());
}

void InfoDialogTest::withoutASupportPageThereIsNoLink()
{
    QInfoDialog::Info changed = info();
    changed.supportPage.clear();
    QInfoDialog dialog(nullptr, changed);

    dialog.show();

    QVERIFY(!label(dialog, "labelSupport")->isVisible());
    QVERIFY(label(dialog, "labelCopyright")->isVisible());
}

void InfoDialogTest::aPageThatCantBeOpenedIsLogged()
{
    const LogCapture log;
    QInfoDialog::Info changed = info();
    changed.supportPage = QStringLiteral("https://[no host");
    const QInfoDialog dialog(nullptr, changed);

    Q_EMIT label(dialog, "labelSupport")->linkActivated(QStringLiteral("help"));

    QCOMPARE(log.lines(),
             QStringList { QStringLiteral("warning: No browser opens the page https://[no host") });
}

void InfoDialogTest::theDialogCloses_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<int>("result");

    const Qt::KeyboardModifiers none = Qt::NoModifier;
    const Qt::KeyboardModifiers control = Qt::ControlModifier;
    QTest::newRow("Enter") << Qt::Key_Return << none << int { QDialog::Accepted };
    QTest::newRow("Space on the button") << Qt::Key_Space << none << int { QDialog::Accepted };
    QTest::newRow("Escape") << Qt::Key_Escape << none << int { QDialog::Rejected };
    QTest::newRow("Ctrl+W") << Qt::Key_W << control << int { QDialog::Rejected };
}

void InfoDialogTest::theDialogCloses()
{
    QFETCH(Qt::Key, key);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QInfoDialog dialog(nullptr, info());
    dialog.setResult(-1);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));

    QTest::keyClick(QApplication::focusWidget(), key, modifiers);

    QVERIFY(!dialog.isVisible());
    QTEST(dialog.result(), "result");
}

void InfoDialogTest::noTextIsCut_data()
{
    QTest::addColumn<QString>("language");

    QTest::newRow("English") << "English";
    QTest::newRow("German") << "German";
}

void InfoDialogTest::noTextIsCut()
{
    QFETCH(QString, language);
    m_texts.load(language);
    QInfoDialog dialog(nullptr, info());

    dialog.show();

    QCOMPARE(cutText(dialog), QString());
}

BRISORA_TEST_MAIN(InfoDialogTest, QApplication)
#include "test_infodialog.moc"
