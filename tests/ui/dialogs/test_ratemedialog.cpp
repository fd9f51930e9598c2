#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QtTest>

#include "app/ui/dialogs/qratemedialog.h"
#include "tests/support/interfacetexts.h"
#include "tests/support/modalboxdriver.h"
#include "tests/support/testenvironment.h"
#include "tests/ui/dialogs/textfit.h"

class RateMeDialogTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_texts.useEnglish(); }

    void eachPartHasItsText();
    void theMainTextIsBoldAndWide();
    void thePictureHasItsSize();
    void theAnswerIsWhatTheUserPressed_data();
    void theAnswerIsWhatTheUserPressed();
    void theRequestNeverEndsTheProgram();
    void noTextIsCut_data();
    void noTextIsCut();

private:
    InterfaceTexts m_texts;
};

void RateMeDialogTest::eachPartHasItsText()
{
    const QRateMeDialog dialog(nullptr);

    QCOMPARE(dialog.text(), QStringLiteral("Rate the app on MacUpdate"));
    QCOMPARE(
        dialog.informativeText(),
        QStringLiteral("If you enjoy using Brisora, would you mind taking a moment to rate it? "
                       "It won't take more than a minute. Thanks for your support!"));
    QCOMPARE(dialog.buttons().size(), 2);
    QCOMPARE(dialog.rateButton()->text(), QStringLiteral(" Rate on MacUpdate "));
    QCOMPARE(dialog.buttonRole(dialog.rateButton()), QMessageBox::AcceptRole);
    QCOMPARE(dialog.buttons().at(1)->text(), QStringLiteral(" No, thanks "));
    QCOMPARE(dialog.buttonRole(dialog.buttons().at(1)), QMessageBox::RejectRole);
    QCOMPARE(dialog.checkBox()->text(), QStringLiteral("Do not show this message again"));
    QVERIFY(!dialog.checkBox()->isChecked());
}

void RateMeDialogTest::theMainTextIsBoldAndWide()
{
    QRateMeDialog dialog(nullptr);

    dialog.show();

    const auto* const label = dialog.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
    QCOMPARE(label->text(), QStringLiteral("<b>Rate the app on MacUpdate</b>"));
    QCOMPARE(label->minimumWidth(), 380);
}

void RateMeDialogTest::thePictureHasItsSize()
{
    const QRateMeDialog dialog(nullptr);

    const QPixmap picture = dialog.iconPixmap();
    QCOMPARE(picture.size() / picture.devicePixelRatio(), QSize(48, 48));
}

void RateMeDialogTest::theAnswerIsWhatTheUserPressed_data()
{
    QTest::addColumn<QString>("pressed");
    QTest::addColumn<bool>("checked");
    QTest::addColumn<bool>("rate");

    QTest::newRow("rate") << "rate" << false << true;
    QTest::newRow("rate, for the last time") << "rate" << true << true;
    QTest::newRow("no, thanks") << "no" << false << false;
    QTest::newRow("no, for ever") << "no" << true << false;
    QTest::newRow("Enter") << "Enter" << false << true;
    QTest::newRow("Escape") << "Escape" << false << false;
    QTest::newRow("Escape, for ever") << "Escape" << true << false;
    QTest::newRow("title bar") << "title bar" << false << false;
}

void RateMeDialogTest::theAnswerIsWhatTheUserPressed()
{
    QFETCH(QString, pressed);
    QFETCH(bool, checked);
    QRateMeDialog dialog(nullptr);
    const ModalBoxDriver driver([&](QMessageBox& box) {
        if (checked) {
            QTest::mouseClick(box.checkBox(), Qt::LeftButton, Qt::NoModifier,
                              QPoint(10, box.checkBox()->height() / 2));
        }
        if (pressed == QLatin1String("rate")) {
            QTest::mouseClick(box.buttons().at(0), Qt::LeftButton);
        } else if (pressed == QLatin1String("no")) {
            QTest::mouseClick(box.buttons().at(1), Qt::LeftButton);
        } else if (pressed == QLatin1String("Enter")) {
            QTest::keyClick(&box, Qt::Key_Return);
        } else if (pressed == QLatin1String("Escape")) {
            QTest::keyClick(&box, Qt::Key_Escape);
        } else {
            box.close();
        }
    });

    dialog.exec();

    QCOMPARE(driver.boxCount(), 1);
    QTEST(dialog.answer().rate, "rate");
    QTEST(dialog.answer().dontAskAgain, "checked");
}

void RateMeDialogTest::theRequestNeverEndsTheProgram()
{
    const QRateMeDialog dialog(nullptr);

    QVERIFY(!dialog.testAttribute(Qt::WA_QuitOnClose));
}

void RateMeDialogTest::noTextIsCut_data()
{
    QTest::addColumn<QString>("language");

    QTest::newRow("English") << "English";
    QTest::newRow("German") << "German";
}

void RateMeDialogTest::noTextIsCut()
{
    QFETCH(QString, language);
    m_texts.load(language);
    QRateMeDialog dialog(nullptr);

    dialog.show();

    // The main text becomes bold once the box has its size.
    QTRY_COMPARE(cutText(dialog), QString());
}

BRISORA_TEST_MAIN(RateMeDialogTest, QApplication)
#include "test_ratemedialog.moc"
