#include <QtTest>

#include "app/selectionboxes.h"
#include "tests/support/modalboxdriver.h"
#include "tests/support/testenvironment.h"

class SelectionBoxesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theAnswerIsTheButton_data();
    void theAnswerIsTheButton();
    void aClosedBoxMeansAbort();
    void blockingSoftwareIsToldWithOneButton();
};

void SelectionBoxesTest::theAnswerIsTheButton_data()
{
    using Answer = SMC::SelectionMessages::BootCampAnswer;
    QTest::addColumn<int>("button");
    QTest::addColumn<int>("expected");
    QTest::newRow("Help") << int(QMessageBox::Help) << int(Answer::Help);
    QTest::newRow("Ignore") << int(QMessageBox::Ignore) << int(Answer::Ignore);
    QTest::newRow("Abort") << int(QMessageBox::Abort) << int(Answer::Abort);
}

void SelectionBoxesTest::theAnswerIsTheButton()
{
    QFETCH(int, button);
    ModalBoxDriver driver([button](QMessageBox& box) {
        QCOMPARE(box.windowTitle(), QStringLiteral("the title"));
        QCOMPARE(box.text(), QStringLiteral("the text"));
        QCOMPARE(box.icon(), QMessageBox::Warning);
        box.button(static_cast<QMessageBox::StandardButton>(button))->click();
    });
    SelectionBoxes boxes;

    const auto answer
        = boxes.askAboutBootCamp(QStringLiteral("the title"), QStringLiteral("the text"));

    QTEST(static_cast<int>(answer), "expected");
    QCOMPARE(driver.boxCount(), 1);
}

void SelectionBoxesTest::aClosedBoxMeansAbort()
{
    ModalBoxDriver driver([](QMessageBox& box) { box.reject(); });
    SelectionBoxes boxes;

    const auto answer
        = boxes.askAboutBootCamp(QStringLiteral("the title"), QStringLiteral("the text"));

    QCOMPARE(answer, SMC::SelectionMessages::BootCampAnswer::Abort);
}

void SelectionBoxesTest::blockingSoftwareIsToldWithOneButton()
{
    ModalBoxDriver driver([](QMessageBox& box) {
        QCOMPARE(box.text(), QStringLiteral("the text"));
        QCOMPARE(box.standardButtons(), QMessageBox::StandardButtons(QMessageBox::Ok));
    });
    SelectionBoxes boxes;

    boxes.tellAboutBlockingSoftware(QStringLiteral("the title"), QStringLiteral("the text"));

    QCOMPARE(driver.boxCount(), 1);
}

BRISORA_TEST_MAIN(SelectionBoxesTest, QApplication)
#include "test_selectionboxes.moc"
