#include <memory>

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QMenu>
#include <QRadioButton>
#include <QSpinBox>
#include <QtTest>

#include "core/application_flags.h"
#include "tests/support/modaldialogdriver.h"
#include "tests/support/testenvironment.h"
#include "tests/ui/mainwindowbench.h"
#include "tests/ui/userhand.h"

// What a user does with the window, from the first click to what the controller is
// told.
class MainWindowRoadsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_process = std::make_unique<WindowProcess>(); }
    void cleanup();

    void aSensorIsChosenForAFan();
    void aConstantSpeedIsSavedToThePreset();
    void theSameModeChangesNothing();
    void cancelChangesNothing();
    void theOpenDialogKeepsItsFansControlCell();
    void aSecondDialogClosesTheFirst();
    void autoGivesTheFanBack();
    void autoOfAnAutomaticFanChangesNothing();
    void withoutWriteAccessNoDialogOpens();
    void writeAccessIsInstalledWhenItIsNeeded();
    void aboutOpensOverTheWindow();
    void theTrayReachesEverything();

private:
    std::unique_ptr<WindowProcess> m_process;
};

void MainWindowRoadsTest::cleanup()
{
    core::flags::clear(core::flags::smcWriteInstalled);
    WindowProcess::takeQuitRequest();
}

void MainWindowRoadsTest::aSensorIsChosenForAFan()
{
    WindowBench bench;
    bench.makeLoaded().show();
    static_cast<void>(bench.machine.takeWrites());
    ModalDialogDriver driver([](QDialog& dialog) {
        QCOMPARE(dialog.windowTitle(), QStringLiteral("Change fan control for the 'Left' fan"));
        QVERIFY(dialog.parentWidget() != nullptr);
        QVERIFY(child<QRadioButton>(dialog, "radioConstant")->isChecked());
        child<QRadioButton>(dialog, "radioSensor")->click();
        auto* const sensors = child<QComboBox>(dialog, "comboSensor");
        sensors->setCurrentIndex(sensors->findData(QStringLiteral("TG0P")));
        child<QSpinBox>(dialog, "spinIncrease")->setValue(35);
        child<QSpinBox>(dialog, "spinMax")->setValue(60);
        press(dialog, QDialogButtonBox::AcceptRole);
    });

    QTest::mouseClick(bench.segment(0, 1), Qt::LeftButton);

    QCOMPARE(driver.dialogCount(), 1);
    const auto mode = FanControlMode::sensor(QStringLiteral("TG0P"), 35, 60);
    QVERIFY(bench.machine.engine->getFanMode(0) == mode);
    QVERIFY(bench.machine.engine->profiles()->isUnsaved());
    QTRY_COMPARE(bench.controlText(0), mode.displayText(false));
    QVERIFY(bench.machine.takeWrites().contains(QStringLiteral("FS! 1")));
    QStringList writes;
    QTRY_VERIFY((bench.letTimePass(), writes += bench.machine.takeWrites(),
                 !writes.filter(QStringLiteral("F0Tg")).isEmpty()));
}

void MainWindowRoadsTest::aConstantSpeedIsSavedToThePreset()
{
    WindowBench bench;
    bench.makeLoaded().show();
    auto& profiles = *bench.machine.engine->profiles();
    bench.machine.engine->setFanMode(0, FanControlMode::constant(3000), false);
    profiles.saveUnsavedProfile(QStringLiteral("Quiet"));
    ModalDialogDriver driver([](QDialog& dialog) {
        auto* const save = child<QCheckBox>(dialog, "checkSaveProfile");
        QCOMPARE(save->text().remove(QLatin1Char('&')),
                 QStringLiteral("Save to the current preset ('Quiet')"));
        save->setChecked(true);
        child<QRadioButton>(dialog, "radioConstant")->setChecked(true);
        child<QSpinBox>(dialog, "spinConstant")->setValue(4100);
        press(dialog, QDialogButtonBox::AcceptRole);
    });

    QTest::mouseClick(bench.segment(1, 1), Qt::LeftButton);

    QCOMPARE(driver.dialogCount(), 1);
    QVERIFY(profiles.isActiveCustom());
    QCOMPARE(profiles.activeProfile().name(), QStringLiteral("Quiet"));
    QVERIFY(profiles.activeProfile().mode(0) == FanControlMode::constant(3000));
    QVERIFY(profiles.activeProfile().mode(1) == FanControlMode::constant(4100));
}

void MainWindowRoadsTest::theSameModeChangesNothing()
{
    WindowBench bench;
    bench.makeLoaded().show();
    bench.machine.engine->setFanMode(0, FanControlMode::constant(3000), false);
    bench.machine.engine->profiles()->saveUnsavedProfile(QStringLiteral("Quiet"));
    QTRY_COMPARE(bench.machine.clock.timedWaits(), 2);
    static_cast<void>(bench.machine.takeWrites());
    ModalDialogDriver driver([](QDialog& dialog) {
        child<QCheckBox>(dialog, "checkSaveProfile")->setChecked(true);
        press(dialog, QDialogButtonBox::AcceptRole);
    });

    QTest::mouseClick(bench.segment(0, 1), Qt::LeftButton);

    QCOMPARE(driver.dialogCount(), 1);
    QCOMPARE(bench.machine.takeWrites(), QStringList());
}

void MainWindowRoadsTest::cancelChangesNothing()
{
    WindowBench bench;
    bench.makeLoaded().show();
    static_cast<void>(bench.machine.takeWrites());
    ModalDialogDriver driver([&bench](QDialog& dialog) {
        // The click has moved the selection already.
        QVERIFY(bench.segment(0, 1)->isChecked());
        child<QSpinBox>(dialog, "spinConstant")->setValue(5000);
        press(dialog, QDialogButtonBox::RejectRole);
    });

    QTest::mouseClick(bench.segment(0, 1), Qt::LeftButton);

    QCOMPARE(driver.dialogCount(), 1);
    QVERIFY(bench.machine.engine->getFanMode(0).isAutomatic());
    QVERIFY(bench.segment(0, 0)->isChecked());
    QCOMPARE(bench.controlText(0), QStringLiteral("Custom..."));
    QCOMPARE(bench.machine.takeWrites(), QStringList());
}

void MainWindowRoadsTest::theOpenDialogKeepsItsFansControlCell()
{
    WindowBench bench;
    bench.makeLoaded().show();
    ModalDialogDriver driver([&bench](QDialog&) {
        bench.machine.engine->setFanMode(0, FanControlMode::constant(3333), false);
        bench.machine.engine->setFanMode(1, FanControlMode::constant(4444), false);
        bench.machine.smc->setFanSpeed("F0Ac", 2700);
        QTRY_VERIFY(bench.letTimePass()
                    && bench.rpmText(0) == QStringLiteral("2000 — 2700 — 6000"));
        QCOMPARE(bench.controlText(1), QStringLiteral("Constant value of 4444"));
        QCOMPARE(bench.controlText(0), QStringLiteral("Custom..."));
    });

    QTest::mouseClick(bench.segment(0, 1), Qt::LeftButton);

    QCOMPARE(driver.dialogCount(), 1);
    QCOMPARE(bench.controlText(0), QStringLiteral("Constant value of 3333"));
}

void MainWindowRoadsTest::aSecondDialogClosesTheFirst()
{
    WindowBench bench;
    auto& window = bench.makeLoaded();
    QStringList titles;
    ModalDialogDriver driver([&](QDialog& dialog) {
        titles.append(dialog.windowTitle());
        if (titles.size() > 1) {
            return;
        }
        QTimer::singleShot(0, &window, [&window] { window.slotShowFanDialog(1); });
        QTRY_VERIFY(!dialog.isVisible());
    });

    window.slotShowFanDialog(0);

    QTRY_COMPARE(titles,
                 QStringList({ QStringLiteral("Change fan control for the 'Left' fan"),
                               QStringLiteral("Change fan control for the 'Right' fan") }));
    QCOMPARE(bench.fans()->fanUnderDialog(), -1);
}

void MainWindowRoadsTest::autoGivesTheFanBack()
{
    WindowBench bench;
    bench.makeLoaded().show();
    bench.machine.engine->setFanMode(0, FanControlMode::constant(3000), false);
    QTRY_COMPARE(bench.controlText(0), QStringLiteral("Constant value of 3000"));
    static_cast<void>(bench.machine.takeWrites());

    QTest::mouseClick(bench.segment(0, 0), Qt::LeftButton);

    QVERIFY(bench.machine.engine->getFanMode(0).isAutomatic());
    QCOMPARE(bench.machine.takeWrites().value(0), QStringLiteral("FS! 0"));
    QTRY_COMPARE(bench.controlText(0), QStringLiteral("Custom..."));
}

void MainWindowRoadsTest::autoOfAnAutomaticFanChangesNothing()
{
    WindowBench bench;
    auto& window = bench.makeLoaded();
    static_cast<void>(bench.machine.takeWrites());
    window.slotResetFanMode(0);
    QCOMPARE(bench.machine.takeWrites(), QStringList());
}

void MainWindowRoadsTest::withoutWriteAccessNoDialogOpens()
{
    WindowBench bench;
    bench.machine.hasWriteAccess = false;
    bench.installError = QStringLiteral("No way.");
    auto& window = bench.make();
    QTRY_COMPARE(bench.fans()->model()->rowCount(), 2);
    QVERIFY(!bench.find<QWidget>("profilesWidget")->isEnabled());
    ModalDialogDriver driver([](QDialog&) {});

    window.slotShowFanDialog(0);

    QCOMPARE(driver.dialogCount(), 0);
    QCOMPARE(bench.shownErrors, QStringList { QStringLiteral("No way.") });
    QCOMPARE(bench.fans()->fanUnderDialog(), -1);
    QVERIFY(!core::flags::isSet(core::flags::smcWriteInstalled));
}

void MainWindowRoadsTest::writeAccessIsInstalledWhenItIsNeeded()
{
    WindowBench bench;
    bench.machine.hasWriteAccess = false;
    auto& window = bench.make();
    QTRY_COMPARE(bench.fans()->model()->rowCount(), 2);
    ModalDialogDriver driver([](QDialog& dialog) {
        child<QSpinBox>(dialog, "spinConstant")->setValue(4321);
        press(dialog, QDialogButtonBox::AcceptRole);
    });

    window.slotShowFanDialog(0);

    QCOMPARE(driver.dialogCount(), 1);
    QVERIFY(bench.find<QWidget>("profilesWidget")->isEnabled());
    QVERIFY(core::flags::isSet(core::flags::smcWriteInstalled));
    QCOMPARE(bench.shownErrors, QStringList());
    QVERIFY(bench.machine.engine->getFanMode(0) == FanControlMode::constant(4321));
}

void MainWindowRoadsTest::aboutOpensOverTheWindow()
{
    WindowBench bench;
    auto& window = bench.makeLoaded();
    window.show();
    {
        ModalDialogDriver driver([&window](QDialog& dialog) {
            QCOMPARE(dialog.windowTitle(), QStringLiteral("About Brisora"));
            QCOMPARE(dialog.parentWidget(), &window);
        });

        QTest::mouseClick(bench.find<QWidget>("buttonAbout")->findChild<QPushButton*>(),
                          Qt::LeftButton);

        QCOMPARE(driver.dialogCount(), 1);
    }
    window.hide();
    ModalDialogDriver hidden([](QDialog& dialog) { QVERIFY(dialog.parentWidget() == nullptr); });
    window.slotInfoDialog();
    QCOMPARE(hidden.dialogCount(), 1);
}

void MainWindowRoadsTest::theTrayReachesEverything()
{
    WindowBench bench;
    auto& window = bench.makeLoaded();
    QTRY_VERIFY(bench.tray.menu != nullptr);
    auto* const menu = bench.tray.menu;

    // The window is shown.
    QVERIFY(!window.isVisible());
    QCOMPARE(menu->defaultAction(), entry(menu, { QStringLiteral("Show Brisora") }));
    entry(menu, { QStringLiteral("Show Brisora") })->trigger();
    QTRY_VERIFY(window.isVisible());

    // A preset, by the bar.
    entry(menu, { QStringLiteral("Full blast") })->trigger();
    QTRY_VERIFY(bench.machine.engine->profiles()->isActiveFullBlast());

    // A fan's control.
    {
        ModalDialogDriver driver([](QDialog& dialog) {
            QCOMPARE(dialog.windowTitle(),
                     QStringLiteral("Change fan control for the 'Right' fan"));
            child<QSpinBox>(dialog, "spinConstant")->setValue(4200);
            press(dialog, QDialogButtonBox::AcceptRole);
        });
        const QString fan
            = QStringLiteral("Right - ") + bench.machine.engine->getFanMode(1).displayText(true);
        QTRY_VERIFY(entry(menu, { fan, QStringLiteral("Change control...") }) != nullptr);
        entry(menu, { fan, QStringLiteral("Change control...") })->trigger();
        QTRY_COMPARE(driver.dialogCount(), 1);
        QTRY_VERIFY(bench.machine.engine->getFanMode(1) == FanControlMode::constant(4200));
    }
    const QString fan
        = QStringLiteral("Right - ") + FanControlMode::constant(4200).displayText(true);
    QTRY_VERIFY(entry(menu, { fan, QStringLiteral("Reset to automatic control") }) != nullptr);
    entry(menu, { fan, QStringLiteral("Reset to automatic control") })->trigger();
    QTRY_VERIFY(bench.machine.engine->getFanMode(1).isAutomatic());

    // The unsaved state.
    QTRY_VERIFY(
        entry(menu,
              { QStringLiteral("Custom*"), QStringLiteral("Discard (reset all fans to auto)") })
        != nullptr);
    entry(menu, { QStringLiteral("Custom*"), QStringLiteral("Discard (reset all fans to auto)") })
        ->trigger();
    QTRY_VERIFY(bench.machine.engine->profiles()->isActiveAutomatic());

    {
        ModalDialogDriver driver([](QDialog& dialog) {
            QCOMPARE(dialog.windowTitle(), QStringLiteral("About Brisora"));
        });
        entry(menu, { QStringLiteral("More"), QStringLiteral("About...") })->trigger();
        QTRY_COMPARE(driver.dialogCount(), 1);
    }
    entry(menu, { QStringLiteral("More"), QStringLiteral("Copy technical info") })->trigger();
    QTRY_VERIFY(QApplication::clipboard()->text().endsWith(logText));

    {
        ModalDialogDriver driver([](QDialog& dialog) {
            QCOMPARE(dialog.windowTitle(), QStringLiteral("Preferences: General"));
        });
        entry(menu, { QStringLiteral("Preferences...") })->trigger();
        QTRY_COMPARE(driver.dialogCount(), 1);
    }

    // What belongs to later versions is there, and disabled.
    QVERIFY(!entry(menu, { QStringLiteral("More"), QStringLiteral("Check for updates...") })
                 ->isEnabled());

    entry(menu, { QStringLiteral("Exit") })->trigger();
    QTRY_VERIFY(
        bench.machine.log.contains(QStringLiteral("info: stopAndWaitForFinished: Quit OK")));
    QVERIFY(!window.isVisible());
    QCOMPARE(bench.tray.told.last(), QStringLiteral("hidden"));
}

BRISORA_TEST_MAIN(MainWindowRoadsTest, QApplication)

#include "test_mainwindow_roads.moc"
