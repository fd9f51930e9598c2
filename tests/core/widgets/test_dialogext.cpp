#include <QAction>
#include <QDialog>
#include <QSignalSpy>
#include <QtTest>

#include "core/widgets/dialogext.h"
#include "tests/support/testenvironment.h"

using Dialog = Widgets::DialogExT<QDialog>;

class DialogExTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ctrlWClosesADialog();
    void otherKeysDoNot();
    void ctrlWReachesItsOwnWindowOnly();
    void thereIsNoButtonForContextHelp_data();
    void thereIsNoButtonForContextHelp();
    void argumentsReachTheDialogClass();
    void closingADialogNeverEndsTheProgram_data();
    void closingADialogNeverEndsTheProgram();
};

namespace {

void showActive(QWidget& window)
{
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
}

} // namespace

void DialogExTest::ctrlWClosesADialog()
{
    Dialog dialog;
    const QSignalSpy rejected(&dialog, &QDialog::rejected);
    showActive(dialog);

    QTest::keyClick(&dialog, Qt::Key_W, Qt::ControlModifier);

    QVERIFY(!dialog.isVisible());
    QCOMPARE(rejected.count(), 1);
}

void DialogExTest::otherKeysDoNot()
{
    Dialog dialog;
    showActive(dialog);

    QTest::keyClick(&dialog, Qt::Key_W);
    QTest::keyClick(&dialog, Qt::Key_W, Qt::AltModifier);
    QTest::keyClick(&dialog, Qt::Key_Q, Qt::ControlModifier);

    QVERIFY(dialog.isVisible());
}

void DialogExTest::ctrlWReachesItsOwnWindowOnly()
{
    Dialog below;
    showActive(below);
    Dialog dialog;
    showActive(dialog);

    QTest::keyClick(&dialog, Qt::Key_W, Qt::ControlModifier);

    QVERIFY(!dialog.isVisible());
    QVERIFY(below.isVisible());
}

void DialogExTest::thereIsNoButtonForContextHelp_data()
{
    QTest::addColumn<int>("type");
    QTest::newRow("dialog") << int(Qt::Dialog);
    QTest::newRow("sheet") << int(Qt::Sheet);
}

void DialogExTest::thereIsNoButtonForContextHelp()
{
    QFETCH(int, type);
    const Qt::WindowFlags flags(type);
    QVERIFY(QDialog(nullptr, flags).windowFlags().testFlag(Qt::WindowContextHelpButtonHint));

    Dialog dialog(nullptr, flags);
    dialog.show();

    QVERIFY(!dialog.windowFlags().testFlag(Qt::WindowContextHelpButtonHint));
    QVERIFY(dialog.windowFlags().testFlag(Qt::WindowTitleHint));
    QVERIFY(dialog.windowFlags().testFlag(Qt::WindowCloseButtonHint));
    QCOMPARE(int(dialog.windowType()), type);
}

void DialogExTest::argumentsReachTheDialogClass()
{
    QWidget parent;
    const Dialog dialog(&parent, Qt::Sheet);
    QVERIFY(dialog.parentWidget() == &parent);
    QCOMPARE(dialog.windowType(), Qt::Sheet);
    QVERIFY(Dialog().parentWidget() == nullptr);
}

void DialogExTest::closingADialogNeverEndsTheProgram_data()
{
    QTest::addColumn<bool>("ofTheKit");
    QTest::newRow("a plain dialog does") << false;
    QTest::newRow("one of the kit") << true;
}

void DialogExTest::closingADialogNeverEndsTheProgram()
{
    QFETCH(bool, ofTheKit);
    const auto dialog = ofTheKit ? std::make_unique<Dialog>() : std::make_unique<QDialog>();
    const QSignalSpy lastClosed(qApp, &QGuiApplication::lastWindowClosed);
    QTimer::singleShot(0, dialog.get(), [&dialog] {
        dialog->show();
        dialog->close();
        QTimer::singleShot(0, qApp, &QCoreApplication::quit);
    });

    QApplication::exec();

    QCOMPARE(lastClosed.count(), ofTheKit ? 0 : 1);
}

BRISORA_TEST_MAIN(DialogExTest, QApplication)

#include "test_dialogext.moc"
