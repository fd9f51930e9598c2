#include <memory>

#include <QComboBox>
#include <QLineEdit>
#include <QtTest>

#include "tests/support/modalboxdriver.h"
#include "tests/support/modaldialogdriver.h"
#include "tests/support/testenvironment.h"
#include "tests/ui/mainwindowbench.h"
#include "tests/ui/userhand.h"

namespace {

// A machine with the fan "Left" only.
void makeWithOneFan(WindowBench& bench)
{
    bench.machine.smc->setKey("FNum", "ui8 ", { 1 });
    bench.make(QStringLiteral("MacBookAir7,2"));
    QTRY_COMPARE(bench.fans()->model()->rowCount(), 1);
}

QAbstractButton* buttonWithRole(const QMessageBox& box, QMessageBox::ButtonRole role)
{
    for (auto* const button : box.buttons()) {
        if (box.buttonRole(button) == role) {
            return button;
        }
    }
    return nullptr;
}

} // namespace

// Presets, and the tip that tells how one comes about.
class MainWindowPresetsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_process = std::make_unique<WindowProcess>(); }
    void cleanup();

    void presetsAreSavedRenamedAndDeleted();
    void theUnsavedStateIsDiscarded();
    void aNewPresetIsExplained_data();
    void aNewPresetIsExplained();
    void theButtonForTheOnlyFanOpensItsDialog();
    void whoeverDismissesTheTipOfTheOnlyFanGetsNoDialog_data();
    void whoeverDismissesTheTipOfTheOnlyFanGetsNoDialog();
    void theTipsButtonSpeaksTheLanguage();
    void aPassiveMachineHasNoPresets();

private:
    std::unique_ptr<WindowProcess> m_process;
};

void MainWindowPresetsTest::cleanup()
{
    m_process->texts().useEnglish();
    WindowProcess::takeQuitRequest();
}

void MainWindowPresetsTest::presetsAreSavedRenamedAndDeleted()
{
    WindowBench bench;
    auto& window = bench.makeLoaded();
    window.show();
    auto& profiles = *bench.machine.engine->profiles();
    auto* const presets = bench.find<QMenu>("menuPresets");
    auto* const actions = bench.find<QMenu>("menuActions");
    bench.machine.engine->setFanMode(0, FanControlMode::constant(3000), false);
    {
        ModalDialogDriver driver([](QDialog& dialog) {
            QCOMPARE(dialog.windowTitle(), QStringLiteral("Save custom preset"));
            child<QComboBox>(dialog, "comboName")->setEditText(QStringLiteral("Quiet"));
            press(dialog, QDialogButtonBox::AcceptRole);
        });
        QTRY_VERIFY(entry(actions, { QStringLiteral("Save...") }) != nullptr);
        entry(actions, { QStringLiteral("Save...") })->trigger();
        QTRY_COMPARE(driver.dialogCount(), 1);
        QTRY_VERIFY(profiles.isActiveCustom());
        QCOMPARE(profiles.activeProfile().name(), QStringLiteral("Quiet"));
    }
    {
        ModalDialogDriver driver([](QDialog& dialog) {
            QCOMPARE(dialog.windowTitle(), QStringLiteral("Edit preset name"));
            child<QLineEdit>(dialog, "editName")->setText(QStringLiteral("Silent"));
            press(dialog, QDialogButtonBox::AcceptRole);
        });
        QTRY_VERIFY(entry(actions, { QStringLiteral("Rename") }) != nullptr);
        entry(actions, { QStringLiteral("Rename") })->trigger();
        QTRY_COMPARE(driver.dialogCount(), 1);
        QTRY_COMPARE(profiles.activeProfile().name(), QStringLiteral("Silent"));
    }
    // Another preset is applied, and the custom one deleted from its own menu.
    entry(presets, { QStringLiteral("Automatic") })->trigger();
    QTRY_VERIFY(profiles.isActiveAutomatic());
    QTRY_VERIFY(entry(presets, { QStringLiteral("Silent"), QStringLiteral("Apply") }) != nullptr);
    entry(presets, { QStringLiteral("Silent"), QStringLiteral("Apply") })->trigger();
    QTRY_VERIFY(profiles.isActiveCustom());
    QTRY_VERIFY(entry(presets, { QStringLiteral("Silent"), QStringLiteral("Delete") }) != nullptr);
    entry(presets, { QStringLiteral("Silent"), QStringLiteral("Delete") })->trigger();
    QTRY_VERIFY(profiles.isActiveAutomatic());
    QVERIFY(profiles.customProfiles().empty());
    QVERIFY(bench.machine.engine->getFanMode(0).isAutomatic());
}

void MainWindowPresetsTest::theUnsavedStateIsDiscarded()
{
    WindowBench bench;
    bench.makeLoaded().show();
    auto* const actions = bench.find<QMenu>("menuActions");
    bench.machine.engine->setFanMode(0, FanControlMode::constant(3000), false);
    const QString discard = QStringLiteral("Discard (reset all fans to auto)");
    QTRY_VERIFY(entry(actions, { discard }) != nullptr);

    entry(actions, { discard })->trigger();

    QTRY_VERIFY(bench.machine.engine->profiles()->isActiveAutomatic());
    QTRY_COMPARE(bench.controlText(0), QStringLiteral("Custom..."));
}

void MainWindowPresetsTest::aNewPresetIsExplained_data()
{
    QTest::addColumn<std::size_t>("preset");
    QTest::addColumn<QString>("text");
    QTest::newRow("all fans are automatic")
        << std::size_t { 0 }
        << QStringLiteral("All of your fans are currently controlled by the system. \n\n"
                          "Please change the control to Custom for at least one of your fans "
                          "to be able to create a new preset.");
    QTest::newRow("full blast")
        << std::size_t { 1 }
        << QStringLiteral("Please change the control for at least one of your fans as all of "
                          "them are currently spinning at full blast, matching the existing "
                          "'Full blast' preset.");
}

void MainWindowPresetsTest::aNewPresetIsExplained()
{
    QFETCH(std::size_t, preset);
    QFETCH(QString, text);
    WindowBench bench;
    auto& window = bench.makeLoaded();
    auto& profiles = *bench.machine.engine->profiles();
    profiles.setActiveProfile(profiles.predefinedProfiles().at(preset));
    ModalBoxDriver driver([&text](QMessageBox& box) {
        QCOMPARE(box.icon(), QMessageBox::Information);
        QCOMPARE(box.text(), QStringLiteral("<b>Create a new preset</b>"));
        QCOMPARE(box.informativeText(), text);
        QCOMPARE(box.buttons().size(), 1);
    });

    window.slotShowNewPresetTip();

    QCOMPARE(driver.boxCount(), 1);
}

void MainWindowPresetsTest::theButtonForTheOnlyFanOpensItsDialog()
{
    WindowBench bench;
    makeWithOneFan(bench);
    QStringList titles;
    ModalDialogDriver driver([&titles](QDialog& dialog) {
        titles.append(dialog.windowTitle());
        if (auto* const box = qobject_cast<QMessageBox*>(&dialog)) {
            QCOMPARE(box->buttons().size(), 2);
            auto* const button = buttonWithRole(*box, QMessageBox::NoRole);
            QVERIFY(button != nullptr);
            QCOMPARE(button->text().remove(QLatin1Char('&')),
                     QStringLiteral("Custom control for the 'Left' fan"));
            QTimer::singleShot(0, button, [button] { button->click(); });
            QTRY_VERIFY(!box->isVisible());
        }
    });

    bench.window->slotShowNewPresetTip();

    QTRY_COMPARE(titles.value(1), QStringLiteral("Change fan control for the 'Left' fan"));
}

void MainWindowPresetsTest::aPassiveMachineHasNoPresets()
{
    WindowBench bench;
    bench.isPassive = true;
    bench.machine.removeFans();
    bench.make(QStringLiteral("MacBook10,1"));
    QVERIFY(!bench.find<QWidget>("profilesWidget")->isEnabled());
}

void MainWindowPresetsTest::whoeverDismissesTheTipOfTheOnlyFanGetsNoDialog_data()
{
    QTest::addColumn<bool>("byKey");
    QTest::newRow("Escape") << true;
    QTest::newRow("OK") << false;
}

void MainWindowPresetsTest::whoeverDismissesTheTipOfTheOnlyFanGetsNoDialog()
{
    QFETCH(bool, byKey);
    WindowBench bench;
    makeWithOneFan(bench);
    ModalDialogDriver driver([byKey](QDialog& dialog) {
        auto* const box = qobject_cast<QMessageBox*>(&dialog);
        QVERIFY(box != nullptr);
        if (byKey) {
            QTest::keyClick(box, Qt::Key_Escape);
        } else {
            QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
        }
        QVERIFY(!box->isVisible());
    });

    bench.window->slotShowNewPresetTip();

    QCOMPARE(driver.dialogCount(), 1);
}

void MainWindowPresetsTest::theTipsButtonSpeaksTheLanguage()
{
    m_process->texts().translate(
        "<core><QMessageBoxEx><buttonOK>Gut so</buttonOK></QMessageBoxEx></core>");
    WindowBench bench;
    bench.makeLoaded();
    ModalDialogDriver driver([](QDialog& dialog) {
        auto* const box = qobject_cast<QMessageBox*>(&dialog);
        QVERIFY(box != nullptr);
        QCOMPARE(box->buttons().size(), 1);
        QCOMPARE(box->standardButton(box->buttons().first()), QMessageBox::Ok);
        QCOMPARE(box->buttons().first()->text(), QStringLiteral("Gut so"));
        QTest::keyClick(box, Qt::Key_Escape);
        QVERIFY(!box->isVisible());
    });

    bench.window->slotShowNewPresetTip();

    QCOMPARE(driver.dialogCount(), 1);
}

BRISORA_TEST_MAIN(MainWindowPresetsTest, QApplication)

#include "test_mainwindow_presets.moc"
