#include <memory>
#include <stdexcept>

#include <QMainWindow>
#include <QtTest>

#include "app/settingskeys.h"
#include "tests/support/testenvironment.h"
#include "tests/ui/mainwindowbench.h"

class MainWindowContentsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_process = std::make_unique<WindowProcess>(); }
    void cleanup();

    void theTitleNamesProgramAndMachine_data();
    void theTitleNamesProgramAndMachine();
    void thePanesComeBack();
    void onlyAWindowThatWasShownStoresItsPanes_data();
    void onlyAWindowThatWasShownStoresItsPanes();
    void panesFallBackUnlessThereAreTwo_data();
    void panesFallBackUnlessThereAreTwo();
    void theTablesShowTheMachine();
    void fanCellsFollowTheEngine();
    void anUpdateOfNoFanIsRefused();
    void sensorCellsFollowTheEngine();
    void readingsFollowTheChosenPrecision();
    void theActivePresetIsShown();
    void aTraySensorThatIsGoneIsForgotten();
    void aTraySensorThatIsStillThereStays();

private:
    std::unique_ptr<WindowProcess> m_process;
};

void MainWindowContentsTest::cleanup() { WindowProcess::takeQuitRequest(); }

void MainWindowContentsTest::theTitleNamesProgramAndMachine_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<QString>("title");
    QTest::newRow("a Mac") << QStringLiteral("MacBookPro11,3")
                           << QStringLiteral("Brisora 1.2.3 (MacBookPro11,3)");
    QTest::newRow("an unknown machine") << QString() << QStringLiteral("Brisora 1.2.3 ()");
    QTest::newRow("a place holder") << QStringLiteral("%1") << QStringLiteral("Brisora 1.2.3 (%1)");
}

void MainWindowContentsTest::theTitleNamesProgramAndMachine()
{
    QFETCH(QString, model);
    WindowBench bench;
    QTEST(bench.make(model).windowTitle(), "title");
}

void MainWindowContentsTest::thePanesComeBack()
{
    WindowBench bench;
    bench.makeLoaded();
    bench.window->resize(1300, 400);
    bench.window->show();
    bench.window->findChild<QSplitter*>(QStringLiteral("splitter"))->setSizes({ 600, 690 });
    const QList<int> sizes = bench.paneSizes();

    bench.window->slotExit();
    QCOMPARE(bench.machine.settings.getStringList(SettingsKeys::windowSplitterPosition),
             QStringList({ QString::number(sizes[0]), QString::number(sizes[1]) }));

    bench.window.reset();
    bench.machine.makeEngine();
    bench.make().show();
    QCOMPARE(bench.window->width(), 1300);
    QCOMPARE(bench.paneSizes(), sizes);
}

void MainWindowContentsTest::onlyAWindowThatWasShownStoresItsPanes_data()
{
    QTest::addColumn<bool>("isShown");
    QTest::newRow("shown") << true;
    QTest::newRow("never shown") << false;
}

void MainWindowContentsTest::onlyAWindowThatWasShownStoresItsPanes()
{
    QFETCH(bool, isShown);
    const QStringList stored { QStringLiteral("1234"), QStringLiteral("4321") };
    WindowBench bench;
    bench.machine.settings.setStringList(SettingsKeys::windowSplitterPosition, stored);
    auto& window = bench.make();
    if (isShown) {
        window.show();
        window.hide();
    }

    window.slotExit();

    const QList<int> sizes = bench.paneSizes();
    QCOMPARE(bench.machine.settings.getStringList(SettingsKeys::windowSplitterPosition),
             isShown ? QStringList({ QString::number(sizes[0]), QString::number(sizes[1]) })
                     : stored);
}

void MainWindowContentsTest::panesFallBackUnlessThereAreTwo_data()
{
    QTest::addColumn<QStringList>("stored");
    const QString narrow = QStringLiteral("100");
    const QString wide = QStringLiteral("900");
    QTest::newRow("none") << QStringList();
    QTest::newRow("one") << QStringList { narrow };
    QTest::newRow("three") << QStringList { narrow, wide, narrow };
}

void MainWindowContentsTest::panesFallBackUnlessThereAreTwo()
{
    QFETCH(QStringList, stored);
    WindowBench bench;
    // There is room for other sizes.
    QMainWindow wide;
    wide.resize(1300, 400);
    bench.machine.settings.setByteArray(SettingsKeys::windowGeometry, wide.saveGeometry());
    bench.machine.settings.setByteArray(SettingsKeys::windowState, wide.saveState());
    bench.machine.settings.setStringList(SettingsKeys::windowSplitterPosition, stored);

    auto& window = bench.make();
    window.show();

    QCOMPARE(window.width(), 1300);
    const QList<int> sizes = bench.paneSizes();
    QCOMPARE(sizes.size(), 2);
    // Both panes give some room to the margins and to the handle between them.
    QVERIFY2(sizes[1] > 225 && sizes[1] <= 240, qPrintable(QString::number(sizes[1])));
}

void MainWindowContentsTest::theTablesShowTheMachine()
{
    WindowBench bench;
    bench.makeLoaded();

    QCOMPARE(bench.fans()->model()->index(0, 0).data().toString(),
             bench.machine.engine->getFans()[0].name());
    QCOMPARE(bench.fans()->model()->index(1, 0).data().toString(),
             bench.machine.engine->getFans()[1].name());
    QTRY_COMPARE(bench.rpmText(0), QStringLiteral("2000 — 2500 — 6000"));
    QTRY_COMPARE(bench.rpmText(1), QStringLiteral("2000 — 3000 — 6000"));
    QTRY_COMPARE(bench.controlText(0), QStringLiteral("Custom..."));
    QCOMPARE(bench.sensors()->model()->rowCount(), 3);
    QTRY_COMPARE(bench.sensorText("TA0P"), QStringLiteral("30"));
    QTRY_COMPARE(bench.sensorText("TC0P"), QStringLiteral("55"));
    QTRY_COMPARE(bench.sensorText("TG0P"), QStringLiteral("45"));
}

void MainWindowContentsTest::fanCellsFollowTheEngine()
{
    WindowBench bench;
    bench.makeLoaded();
    QTRY_COMPARE(bench.rpmText(1), QStringLiteral("2000 — 3000 — 6000"));
    bench.machine.smc->setFanSpeed("F1Ac", 3100);
    QTRY_VERIFY(bench.letTimePass() && bench.rpmText(1) == QStringLiteral("2000 — 3100 — 6000"));
    QCOMPARE(bench.rpmText(0), QStringLiteral("2000 — 2500 — 6000"));
}

void MainWindowContentsTest::anUpdateOfNoFanIsRefused()
{
    WindowBench bench;
    auto& window = bench.makeLoaded();
    QVERIFY_EXCEPTION_THROWN(window.slotFanUpdate(2), std::out_of_range);
}

void MainWindowContentsTest::sensorCellsFollowTheEngine()
{
    WindowBench bench;
    bench.makeLoaded();
    QTRY_COMPARE(bench.sensorText("TC0P"), QStringLiteral("55"));
    QTRY_COMPARE(bench.sensorText("TG0P"), QStringLiteral("45"));
    QTRY_COMPARE(bench.sensorText("TA0P"), QStringLiteral("30"));
    bench.machine.smc->setTemperature("TC0P", 61.0);
    QTRY_VERIFY(bench.letTimePass() && bench.sensorText("TC0P") == QLatin1String("61"));

    const uint32_t id = bench.machine.sensor("TC0P")->id();
    Q_EMIT bench.machine.engine->sensor_update(id + 1000, 70.0); // no such sensor
    QCOMPARE(bench.sensorText("TC0P"), QStringLiteral("61"));
    Q_EMIT bench.machine.engine->sensor_update(id, 0.0);
    QCOMPARE(bench.sensorText("TC0P"), QStringLiteral("-"));
}

void MainWindowContentsTest::readingsFollowTheChosenPrecision()
{
    WindowBench bench;
    bench.machine.settings.setInt(SettingsKeys::preciseTemperature, 1);
    bench.makeLoaded();
    QTRY_COMPARE(bench.sensorText("TC0P"), QStringLiteral("55.0"));
}

void MainWindowContentsTest::theActivePresetIsShown()
{
    WindowBench bench;
    bench.makeLoaded();
    const auto* const bar = bench.find<QWidget>("profilesWidget");
    const auto shown = [bar] {
        QStringList texts;
        for (const auto* button : bar->findChildren<QPushButton*>()) {
            texts.append(button->text());
        }
        return texts;
    };
    auto& profiles = *bench.machine.engine->profiles();
    QTRY_VERIFY(shown().contains(QStringLiteral("Automatic")));
    QCOMPARE(bench.controlText(0), QStringLiteral("Custom..."));
    QVERIFY(bench.segment(0, 0)->isChecked());

    bench.machine.engine->setFanMode(0, FanControlMode::constant(3456), false);
    QTRY_VERIFY(shown().contains(QStringLiteral("Custom*")));
    QCOMPARE(bench.controlText(0), QStringLiteral("Constant value of 3456"));
    QVERIFY(bench.segment(0, 1)->isChecked());

    profiles.saveUnsavedProfile(QStringLiteral("Quiet"));
    QTRY_VERIFY(shown().contains(QStringLiteral("Quiet")));

    profiles.setActiveProfile(profiles.predefinedProfiles().at(1));
    QTRY_VERIFY(shown().contains(QStringLiteral("Full blast")));
}

void MainWindowContentsTest::aTraySensorThatIsGoneIsForgotten()
{
    WindowBench bench;
    bench.machine.settings.setString(SettingsKeys::traySensor, QStringLiteral("TC0P"));
    bench.makeLoaded();
    QCOMPARE(bench.sensors()->model()->rowCount(), 3);
    QTRY_VERIFY(bench.tray.told.contains(QStringLiteral("icon 5 55")));
    static_cast<void>(bench.tray.take());

    bench.machine.smc->removeKey("TC0P");
    bench.machine.reload();

    QCOMPARE(bench.machine.settings.getString(SettingsKeys::traySensor), QString());
    // The plain icon, and no reading before it.
    QCOMPARE(bench.tray.take().filter(QStringLiteral("icon")),
             QStringList { QStringLiteral("icon 1 -1") });
    QCOMPARE(bench.sensors()->model()->rowCount(), 2);
    QCOMPARE(bench.sensorRow("TC0P"), -1);
}

void MainWindowContentsTest::aTraySensorThatIsStillThereStays()
{
    WindowBench bench;
    bench.machine.settings.setString(SettingsKeys::traySensor, QStringLiteral("TC0P"));
    bench.makeLoaded();

    bench.machine.smc->removeKey("TA0P");
    bench.machine.smc->setTemperature("TC0P", 62.0);
    bench.machine.reload();

    QCOMPARE(bench.machine.settings.getString(SettingsKeys::traySensor), QStringLiteral("TC0P"));
    QCOMPARE(bench.sensors()->model()->rowCount(), 2);
    // The new sensors are followed as the old ones were.
    QVERIFY(!bench.sensors()->signalsBlocked());
    QTRY_VERIFY(bench.letTimePass() && bench.sensorText("TC0P") == QLatin1String("62"));
}

BRISORA_TEST_MAIN(MainWindowContentsTest, QApplication)

#include "test_mainwindow_contents.moc"
