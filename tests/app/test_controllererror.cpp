#include <functional>

#include <QClipboard>
#include <QMessageBox>
#include <QPushButton>
#include <QtTest>

#include "app/app.h"
#include "core/log/log.h"
#include "core/widgets/windowicon.h"
#include "resources/resources.h"
#include "tests/support/modaldialogdriver.h"
#include "tests/support/testenvironment.h"

// The box that a start without a controller ends with.
class ControllerErrorTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { QGuiApplication::clipboard()->setText(before); }

    void itTellsWhatToDo();
    void copyLogPutsTheLogIntoTheClipboard();
    void theClipboardIsLeftAloneOtherwise_data();
    void theClipboardIsLeftAloneOtherwise();

private:
    const QString before = QStringLiteral("what was there");

    // Shows the box to the function.
    static void show(const std::function<void(QMessageBox& box)>& act)
    {
        ModalDialogDriver driver([&act](QDialog& dialog) {
            auto* const box = qobject_cast<QMessageBox*>(&dialog);
            QVERIFY(box != nullptr);
            act(*box);
        });
        QBrisoraApp::instance()->showControllerError();
        QCOMPARE(driver.dialogCount(), 1);
    }
    static QAbstractButton* copyButton(const QMessageBox& box)
    {
        for (auto* const button : box.buttons()) {
            if (box.buttonRole(button) == QMessageBox::NoRole) {
                return button;
            }
        }
        return nullptr;
    }
};

void ControllerErrorTest::initTestCase()
{
    const auto& application = *QBrisoraApp::instance();
    QVERIFY(core::log::initLogger(application.logFilePath().toStdWString()));
    LOG_WARN("{}", QStringLiteral("No way to the controller"));
}

void ControllerErrorTest::itTellsWhatToDo()
{
    show([](QMessageBox& box) {
        QCOMPARE(box.windowTitle(), QBrisoraApp::instance()->systemInfo().machineName());
        QCOMPARE(box.text(), QStringLiteral("<b>Error initializing SMC interaction layer</b>"));
        QCOMPARE(box.informativeText(),
                 QStringLiteral("Please make sure that your Mac system is supported and you have "
                                "correctly installed the program."));
        QCOMPARE(box.icon(), QMessageBox::Warning);
        QCOMPARE(box.windowIcon().cacheKey(), windowIcon().cacheKey());
        QVERIFY(box.parentWidget() == nullptr);
        QCOMPARE(box.buttons().size(), 2);
        QCOMPARE(box.standardButtons(), QMessageBox::StandardButtons(QMessageBox::Ok));
        QVERIFY(copyButton(box) != nullptr);
        QCOMPARE(copyButton(box)->text().remove(QLatin1Char('&')), QStringLiteral("Copy log"));
    });
}

void ControllerErrorTest::copyLogPutsTheLogIntoTheClipboard()
{
    show([](QMessageBox& box) { QTest::mouseClick(copyButton(box), Qt::LeftButton); });

    const QString copied = QGuiApplication::clipboard()->text();
    QVERIFY2(copied.endsWith(QStringLiteral("] No way to the controller\n")), qPrintable(copied));
}

void ControllerErrorTest::theClipboardIsLeftAloneOtherwise_data()
{
    QTest::addColumn<bool>("byKey");
    QTest::newRow("Escape") << true;
    QTest::newRow("OK") << false;
}

void ControllerErrorTest::theClipboardIsLeftAloneOtherwise()
{
    QFETCH(bool, byKey);
    show([byKey](QMessageBox& box) {
        if (byKey) {
            QTest::keyClick(&box, Qt::Key_Escape);
        } else {
            QTest::mouseClick(box.button(QMessageBox::Ok), Qt::LeftButton);
        }
        QVERIFY(!box.isVisible());
    });

    QCOMPARE(QGuiApplication::clipboard()->text(), before);
}

int main(int argc, char* argv[])
{
    const TestEnvironment environment;
    initResources();
    QBrisoraApp application(argc, argv);
    ControllerErrorTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_controllererror.moc"
