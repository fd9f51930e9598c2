#include <atomic>
#include <memory>
#include <stdexcept>

#include <QClipboard>
#include <QDialog>
#include <QMainWindow>
#include <QScreen>
#include <QWindow>
#include <QtTest>

#include "app/settingskeys.h"
#include "core/application_flags.h"
#include "tests/support/modalboxdriver.h"
#include "tests/support/testenvironment.h"
#include "tests/ui/mainwindowbench.h"

namespace {

const QString endedWell = QStringLiteral("info: stopAndWaitForFinished: Quit OK");

} // namespace

class MainWindowLifeTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_process = std::make_unique<WindowProcess>(); }
    void cleanup();

    void isShownFollowsTheWindow();
    void aMinimisedWindowHides();
    void withoutATrayTheWindowStaysReachable();
    void aHiddenStartNeedsATray_data();
    void aHiddenStartNeedsATray();
    void theWindowComesBackOnAScreenThatExists();
    void theMinimiseButtonPutsTheWindowAway();
    void aPlainCloseLeavesTheEngineRunning();
    void restoreShowsAHiddenWindow();
    void restoreClosesAnOpenDialog_data();
    void restoreClosesAnOpenDialog();
    void exitClosesOnce();
    void afterTheExitTheWindowStaysHidden();
    void aLoadThatEndsAfterTheExitStartsNothing();
    void terminationClosesDialogsAndAsksNothing();
    void aFailedLoadIsToldAndEndsTheProgram();
    void theFirstShowHasRoomForEverySensor();
    void theFirstShowDoesNotShrink();

private:
    std::unique_ptr<WindowProcess> m_process;
};

void MainWindowLifeTest::cleanup()
{
    core::flags::clear(core::flags::firstStart);
    QApplication::clipboard()->clear();
    WindowProcess::takeQuitRequest();
}

void MainWindowLifeTest::isShownFollowsTheWindow()
{
    WindowBench bench;
    auto& window = bench.make();
    QVERIFY(!window.isShown());
    window.show();
    QVERIFY(window.isShown());
    window.hide();
    QVERIFY(!window.isShown());
}

void MainWindowLifeTest::aMinimisedWindowHides()
{
    WindowBench bench;
    auto& window = bench.make();
    window.show();
    window.setWindowState(Qt::WindowMinimized);
    QTRY_VERIFY(!window.isVisible());
    QVERIFY(!window.isShown());

    window.slotRestore();
    QVERIFY(window.isVisible());
    QVERIFY(!window.isMinimized());
    QVERIFY(window.isShown());
}

void MainWindowLifeTest::withoutATrayTheWindowStaysReachable()
{
    WindowBench bench;
    bench.hasTray = false;
    auto& window = bench.make();
    window.show();
    QVERIFY(window.isShown());

    QVERIFY(!window.close());

    QVERIFY(window.isVisible());
    QVERIFY(window.isMinimized());
    QVERIFY(!window.isShown()); // nothing is read for it
    window.slotRestore();
    QVERIFY(!window.isMinimized());
    QVERIFY(window.isShown());

    // Asked anew at each close.
    bench.hasTray = true;
    QVERIFY(!window.close());
    QVERIFY(!window.isVisible());
}

void MainWindowLifeTest::aHiddenStartNeedsATray_data()
{
    QTest::addColumn<bool>("hasTray");
    QTest::newRow("tray") << true;
    QTest::newRow("no tray") << false;
}

void MainWindowLifeTest::aHiddenStartNeedsATray()
{
    QFETCH(bool, hasTray);
    WindowBench bench;
    bench.hasTray = hasTray;
    auto& window = bench.make();

    window.startHidden();

    QCOMPARE(window.isVisible(), !hasTray);
    QCOMPARE(window.isMinimized(), !hasTray);
    QVERIFY(!window.isShown());
}

void MainWindowLifeTest::aPlainCloseLeavesTheEngineRunning()
{
    WindowBench bench;
    auto& window = bench.makeLoaded();
    window.show();
    QVERIFY(!window.close());
    QVERIFY(!window.isShown());
    QVERIFY(!bench.machine.log.contains(endedWell));
    bench.machine.smc->setFanSpeed("F1Ac", 3200);
    QTRY_VERIFY(bench.letTimePass() && bench.rpmText(1) == QStringLiteral("2000 — 3200 — 6000"));
}

void MainWindowLifeTest::restoreShowsAHiddenWindow()
{
    WindowBench bench;
    auto& window = bench.make();
    window.slotRestore();
    QVERIFY(window.isVisible());
    QTRY_VERIFY(window.isActiveWindow());

    window.slotRestore();
    QVERIFY(window.isVisible());
}

void MainWindowLifeTest::restoreClosesAnOpenDialog_data()
{
    QTest::addColumn<bool>("isVisible");
    QTest::newRow("visible window") << true;
    QTest::newRow("hidden window") << false;
}

void MainWindowLifeTest::restoreClosesAnOpenDialog()
{
    QFETCH(bool, isVisible);
    WindowBench bench;
    auto& window = bench.make();
    window.setVisible(isVisible);
    QDialog dialog;
    dialog.setModal(true);
    dialog.show();
    QCOMPARE(QApplication::activeModalWidget(), &dialog);

    window.slotRestore();

    QVERIFY(!dialog.isVisible());
    QVERIFY(window.isVisible());
}

void MainWindowLifeTest::exitClosesOnce()
{
    WindowBench bench;
    auto& window = bench.makeLoaded();
    window.show();
    bool isHiddenFirst = false; // the engine may take its time to stop
    connect(window.windowHandle(), &QWindow::visibleChanged, &window, [&](bool visible) {
        isHiddenFirst |= !visible && !bench.machine.log.contains(endedWell);
    });
    ModalBoxDriver driver([](QMessageBox&) {});
    QTimer::singleShot(0, &window, [&window] {
        window.slotExit();
        window.slotExit();
    });

    QCOMPARE(QApplication::exec(), 0);

    QVERIFY(!window.isVisible());
    QVERIFY(isHiddenFirst);
    QCOMPARE(bench.machine.log.count(endedWell), 1);
    QCOMPARE(bench.machine.takeWrites().last(), QStringLiteral("FS! 0"));
    QCOMPARE(driver.boxCount(), 0);
}

void MainWindowLifeTest::afterTheExitTheWindowStaysHidden()
{
    WindowBench bench;
    auto& window = bench.makeLoaded();
    window.show();
    window.slotExit();
    window.slotRestore();
    QVERIFY(!window.isVisible());
    QVERIFY(!window.isShown());
}

void MainWindowLifeTest::aLoadThatEndsAfterTheExitStartsNothing()
{
    core::flags::set(core::flags::firstStart);
    WindowBench bench;
    auto& window = bench.make();
    window.slotExit();
    ModalBoxDriver driver([](QMessageBox&) {});

    window.slotInitFinished(0);
    window.slotInitFinished(1);

    QCOMPARE(bench.fans()->model()->rowCount(), 0);
    QVERIFY(!window.isVisible());
    QCOMPARE(bench.machine.clock.waitsBegun(), 0);
    QCOMPARE(driver.boxCount(), 0);
}

void MainWindowLifeTest::terminationClosesDialogsAndAsksNothing()
{
    WindowBench bench;
    auto& window = bench.makeLoaded();
    window.show();
    QDialog dialog;
    dialog.setModal(true);
    dialog.show();
    ModalBoxDriver driver([](QMessageBox&) {});
    QTimer::singleShot(0, &window, &QFanControlMainWindow::closeForTermination);

    QCOMPARE(QApplication::exec(), 0);

    QVERIFY(!dialog.isVisible());
    QCOMPARE(bench.machine.log.count(endedWell), 1);
    QCOMPARE(driver.boxCount(), 0);
}

void MainWindowLifeTest::aFailedLoadIsToldAndEndsTheProgram()
{
    WindowBench bench;
    std::atomic<bool> broken { true };
    bench.machine.platform->onRead = [&broken](const std::string& key) {
        if (key == "F1Mn" && broken.exchange(false)) {
            throw std::runtime_error("broken");
        }
    };
    ModalBoxDriver driver([](QMessageBox& box) {
        QCOMPARE(box.windowTitle(), QStringLiteral("Crash"));
        QCOMPARE(box.text(),
                 QStringLiteral("Initial thread crashed, please contact support for assistance. "
                                "Technical information is copied to the clipboard."));
        QCOMPARE(box.icon(), QMessageBox::Critical);
        QCOMPARE(box.standardButtons(), QMessageBox::StandardButtons(QMessageBox::Ok));
        QCOMPARE(box.buttons().size(), 1);
    });
    auto& window = bench.make();
    window.show();

    QCOMPARE(QApplication::exec(), 0);

    QCOMPARE(driver.boxCount(), 1);
    QCOMPARE(QApplication::clipboard()->text(),
             bench.machine.engine->getTechInfo() + QStringLiteral("\nLog:\n\n") + logText);
    QVERIFY(!window.isVisible());
    QCOMPARE(bench.fans()->model()->rowCount(), 0);
    QCOMPARE(bench.machine.clock.waitsBegun(), 0);
}

void MainWindowLifeTest::theFirstShowHasRoomForEverySensor()
{
    core::flags::set(core::flags::firstStart);
    WindowBench bench;
    for (char core = '1'; core <= '8'; ++core) {
        bench.machine.smc->setTemperature(std::string("TC") + core + 'C', 50.0);
        bench.machine.smc->setTemperature(std::string("TM") + core + 'P', 40.0);
    }
    auto& window = bench.make();
    const int heightBefore = window.height();
    QVERIFY(!window.isVisible());

    QTRY_VERIFY(window.isVisible());

    const auto* sensors = bench.sensors();
    QVERIFY2(sensors->model()->rowCount() > 10,
             qPrintable(QString::number(sensors->model()->rowCount())));
    QVERIFY(window.height() > heightBefore);
    QTRY_VERIFY(sensors->viewport()->height()
                >= sensors->model()->rowCount() * sensors->rowHeight(0));
    QCOMPARE(window.windowOpacity(), 1.0);
    QVERIFY(window.isShown());
}

void MainWindowLifeTest::theFirstShowDoesNotShrink()
{
    core::flags::set(core::flags::firstStart);
    WindowBench bench;
    auto& window = bench.make();
    window.resize(window.width(), 600);

    QTRY_VERIFY(window.isVisible());

    QCOMPARE(window.height(), 600);
    QCOMPARE(bench.sensors()->model()->rowCount(), 3);
}

void MainWindowLifeTest::theWindowComesBackOnAScreenThatExists()
{
    WindowBench bench;
    {
        QMainWindow elsewhere;
        elsewhere.setGeometry(9000, 7000, 900, 400);
        bench.machine.settings.setByteArray(SettingsKeys::windowGeometry, elsewhere.saveGeometry());
        bench.machine.settings.setByteArray(SettingsKeys::windowState, elsewhere.saveState());
    }

    auto& window = bench.make();
    window.show();

    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    QVERIFY2(screen.contains(window.geometry().center()),
             qPrintable(QStringLiteral("%1,%2").arg(window.x()).arg(window.y())));
}

void MainWindowLifeTest::theMinimiseButtonPutsTheWindowAway()
{
    WindowBench bench;
    auto& window = bench.make();
    window.show();
    QTest::mouseClick(bench.find<QPushButton>("buttonMinimize"), Qt::LeftButton);
    QVERIFY(!window.isVisible());
}

BRISORA_TEST_MAIN(MainWindowLifeTest, QApplication)

#include "test_mainwindow_life.moc"
