#include <atomic>
#include <future>
#include <memory>

#include <QCheckBox>
#include <QComboBox>
#include <QPointer>
#include <QtTest>

#include "tests/support/modaldialogdriver.h"
#include "tests/support/testenvironment.h"
#include "tests/ui/mainwindowbench.h"
#include "tests/ui/userhand.h"

namespace {

// The titles of the dialogs on the screen.
QStringList openDialogs()
{
    QStringList titles;
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (const auto* window : windows) {
        if (window->isVisible() && qobject_cast<const QDialog*>(window) != nullptr) {
            titles.append(window->windowTitle());
        }
    }
    return titles;
}

// The tray's submenu of a fan as it is named now.
QString fanMenu(const WindowBench& bench, std::uint8_t fan)
{
    const auto& engine = *bench.machine.engine;
    return engine.getFans()[fan].name() + QLatin1String(" - ")
        + engine.getFanMode(fan).displayText(true);
}

} // namespace

// Dialogs that are open while something else happens, and what they are given.
class MainWindowDialogsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_process = std::make_unique<WindowProcess>(); }
    void cleanup() { WindowProcess::takeQuitRequest(); }

    void theTrayMenuMayChangeUnderADialogThatItOpened();
    void saveFromTheTrayReplacesTheOpenDialog();
    void beforeTheLoadIsOverDialogsKnowNoSensor();
    void anotherChoiceOfSensorsReachesTheEngine();
    void aFanIsSavedToACustomPresetOnly_data();
    void aFanIsSavedToACustomPresetOnly();

private:
    std::unique_ptr<WindowProcess> m_process;
};

void MainWindowDialogsTest::theTrayMenuMayChangeUnderADialogThatItOpened()
{
    WindowBench bench;
    bench.makeLoaded();
    const QPointer<QAction> command(
        entry(bench.tray.menu, { fanMenu(bench, 0), QStringLiteral("Change control...") }));
    QVERIFY(command != nullptr);
    bool isTriggering = true;
    ModalDialogDriver driver([&](QDialog& dialog) {
        // What may go away now is no longer at work.
        QVERIFY(!isTriggering);
        entry(bench.tray.menu, { QStringLiteral("Full blast") })->trigger();
        QTRY_VERIFY(bench.machine.engine->profiles()->isActiveFullBlast());
        QTRY_VERIFY(
            entry(bench.tray.menu, { fanMenu(bench, 0), QStringLiteral("Change control...") })
            != nullptr);
        QTRY_VERIFY(command == nullptr);
        QVERIFY(dialog.isVisible());
        press(dialog, QDialogButtonBox::RejectRole);
        QVERIFY(!dialog.isVisible());
    });

    command->trigger();
    isTriggering = false;

    QTRY_COMPARE(driver.dialogCount(), 1);
    QTRY_COMPARE(openDialogs(), QStringList());
    QTRY_COMPARE(bench.fans()->fanUnderDialog(), -1);
    QVERIFY(bench.machine.engine->profiles()->isActiveFullBlast());
    QCOMPARE(bench.controlText(0), bench.machine.engine->getFanMode(0).displayText(false));
}

void MainWindowDialogsTest::saveFromTheTrayReplacesTheOpenDialog()
{
    WindowBench bench;
    auto& window = bench.makeLoaded();
    window.show();
    bench.machine.engine->setFanMode(0, FanControlMode::constant(3000), false);
    const QStringList save { QStringLiteral("Custom*"), QStringLiteral("Save...") };
    QTRY_VERIFY(entry(bench.tray.menu, save) != nullptr);
    QList<QStringList> seen;
    ModalDialogDriver driver([&](QDialog& dialog) {
        seen.append(openDialogs());
        if (seen.size() == 1) {
            entry(bench.tray.menu, save)->trigger();
            QTRY_VERIFY(!dialog.isVisible());
        } else {
            child<QComboBox>(dialog, "comboName")->setEditText(QStringLiteral("Quiet"));
            press(dialog, QDialogButtonBox::AcceptRole);
        }
    });

    window.slotShowFanDialog(1);

    QTRY_COMPARE(bench.machine.engine->profiles()->activeProfile().name(), QStringLiteral("Quiet"));
    QCOMPARE(seen,
             (QList<QStringList> { { QStringLiteral("Change fan control for the 'Right' fan") },
                                   { QStringLiteral("Save custom preset") } }));
    QCOMPARE(openDialogs(), QStringList());
    QCOMPARE(bench.fans()->fanUnderDialog(), -1);
}

void MainWindowDialogsTest::beforeTheLoadIsOverDialogsKnowNoSensor()
{
    WindowBench bench;
    bench.machine.load();
    bench.machine.engine->setFanMode(0, FanControlMode::constant(3000), false);
    bench.machine.makeEngine();
    // The next load has its sensors and is about to apply the preset.
    std::promise<void> reached;
    std::promise<void> goOn;
    std::atomic<bool> isFirst { true };
    bench.machine.platform->onWrite = [&, mayGoOn = goOn.get_future().share()](const std::string&) {
        if (isFirst.exchange(false)) {
            reached.set_value();
            mayGoOn.wait();
        }
    };
    auto& window = bench.make();
    reached.get_future().wait();
    const auto offered = [](QDialog& dialog) {
        QStringList texts;
        const auto* const combo = child<QComboBox>(dialog, "comboSensor");
        for (int index = 0; index < combo->count(); ++index) {
            texts.append(combo->itemText(index));
        }
        return texts;
    };
    const QStringList none { QStringLiteral("None") };
    {
        ModalDialogDriver driver([&](QDialog& dialog) {
            QCOMPARE(offered(dialog), none);
            // The load ends under the dialog.
            goOn.set_value();
            QTRY_COMPARE(bench.sensors()->model()->rowCount(), 3);
            QVERIFY(dialog.isVisible());
            QCOMPARE(offered(dialog), none);
        });
        window.slotPreferences();
        QCOMPARE(driver.dialogCount(), 1);
    }

    ModalDialogDriver driver([&](QDialog& dialog) { QCOMPARE(offered(dialog).size(), 4); });
    window.slotPreferences();
    QCOMPARE(driver.dialogCount(), 1);
}

void MainWindowDialogsTest::anotherChoiceOfSensorsReachesTheEngine()
{
    WindowBench bench;
    auto& window = bench.makeLoaded();
    QCOMPARE(bench.sensors()->model()->rowCount(), 3);
    bench.machine.smc->removeKey("TA0P");
    ModalDialogDriver driver([&bench](QDialog& dialog) {
        // What needs no reload leaves the sensors alone.
        child<QCheckBox>(dialog, "checkPrecise")->toggle();
        QTRY_COMPARE(bench.sensorText("TC0P"), QStringLiteral("55.0"));
        QCOMPARE(bench.sensors()->model()->rowCount(), 3);

        child<QCheckBox>(dialog, "checkDrivesSmart")->toggle();
        QTRY_COMPARE(bench.sensors()->model()->rowCount(), 2);
    });

    window.slotPreferences();

    QCOMPARE(driver.dialogCount(), 1);
    QCOMPARE(bench.sensorRow("TA0P"), -1);
}

void MainWindowDialogsTest::aFanIsSavedToACustomPresetOnly_data()
{
    QTest::addColumn<QString>("preset");
    QTest::addColumn<bool>("isOffered");
    QTest::newRow("automatic") << QStringLiteral("Automatic") << false;
    QTest::newRow("full blast") << QStringLiteral("Full blast") << false;
    QTest::newRow("unsaved") << QString() << false;
    QTest::newRow("custom") << QStringLiteral("Quiet") << true;
}

void MainWindowDialogsTest::aFanIsSavedToACustomPresetOnly()
{
    QFETCH(QString, preset);
    QFETCH(bool, isOffered);
    WindowBench bench;
    auto& window = bench.makeLoaded();
    auto& profiles = *bench.machine.engine->profiles();
    bench.machine.engine->setFanMode(0, FanControlMode::constant(3000), false);
    if (!preset.isEmpty()) {
        profiles.saveUnsavedProfile(QStringLiteral("Quiet"));
        QTRY_VERIFY(entry(bench.tray.menu, { QStringLiteral("Quiet") }) != nullptr);
        entry(bench.tray.menu, { preset })->trigger();
        QTRY_COMPARE(bench.find<QWidget>("buttonPresets")->findChild<QPushButton*>()->text(),
                     preset);
    }
    ModalDialogDriver driver([isOffered](QDialog& dialog) {
        QCOMPARE(child<QCheckBox>(dialog, "checkSaveProfile")->isVisible(), isOffered);
    });

    window.slotShowFanDialog(1);

    QCOMPARE(driver.dialogCount(), 1);
}

BRISORA_TEST_MAIN(MainWindowDialogsTest, QApplication)

#include "test_mainwindow_dialogs.moc"
