#include <memory>

#include <QLabel>
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
    void panesFallBackUnlessThereAreTwo_data();
    void panesFallBackUnlessThereAreTwo();
    void theTablesShowTheMachine();
    void fanCellsFollowTheEngine();
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
    // The pane of the sensors is as near to 240 pixels as its contents allow.
    const auto* splitter = window.findChild<QSplitter*>(QStringLiteral("splitter"));
    QCOMPARE(sizes[1], qMax(240, splitter->widget(1)->minimumSizeHint().width()));
}

void MainWindowContentsTest::theTablesShowTheMachine()
{
    WindowBench bench;
    bench.makeLoaded();

    QCOMPARE(bench.fans()->item(0, 0)->text(), bench.machine.engine->getFans()[0].name());
    QCOMPARE(bench.fans()->item(1, 0)->text(), bench.machine.engine->getFans()[1].name());
    QTRY_COMPARE(bench.fans()->item(0, 1)->text(), QStringLiteral("2000 / 2500 / 6000"));
    QTRY_COMPARE(bench.fans()->item(1, 1)->text(), QStringLiteral("2000 / 3000 / 6000"));
    QCOMPARE(bench.fans()->item(0, 2)->text(),
             bench.machine.engine->getFanMode(0).displayText(false));
    QCOMPARE(bench.sensors()->rowCount(), 3);
    QTRY_COMPARE(bench.sensorText("TA0P"), QStringLiteral("30"));
    QTRY_COMPARE(bench.sensorText("TC0P"), QStringLiteral("55"));
    QTRY_COMPARE(bench.sensorText("TG0P"), QStringLiteral("45"));
}

void MainWindowContentsTest::fanCellsFollowTheEngine()
{
    WindowBench bench;
    bench.makeLoaded();
    QTRY_COMPARE(bench.fans()->item(1, 1)->text(), QStringLiteral("2000 / 3000 / 6000"));
    QSignalSpy changed(bench.fans(), &QTableWidget::cellChanged);

    bench.machine.smc->setFanSpeed("F1Ac", 3100);
    QTRY_VERIFY(bench.letTimePass()
                && bench.fans()->item(1, 1)->text() == QLatin1String("2000 / 3100 / 6000"));

    // Every pass reports both fans; one cell has a new text.
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.first(), QVariantList({ 1, 1 }));
    Q_EMIT bench.machine.engine->fanUpdate(1);
    Q_EMIT bench.machine.engine->fanUpdate(2); // no such fan
    QCOMPARE(changed.count(), 1);
}

void MainWindowContentsTest::sensorCellsFollowTheEngine()
{
    WindowBench bench;
    bench.makeLoaded();
    QTRY_COMPARE(bench.sensorText("TC0P"), QStringLiteral("55"));
    QTRY_COMPARE(bench.sensorText("TG0P"), QStringLiteral("45"));
    QTRY_COMPARE(bench.sensorText("TA0P"), QStringLiteral("30"));
    QSignalSpy changed(bench.sensors(), &QTableWidget::cellChanged);

    bench.machine.smc->setTemperature("TC0P", 61.0);
    QTRY_VERIFY(bench.letTimePass() && bench.sensorText("TC0P") == QLatin1String("61"));

    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.first(), QVariantList({ bench.sensorRow("TC0P"), 1 }));
    const uint32_t id = bench.machine.sensor("TC0P")->id();
    Q_EMIT bench.machine.engine->sensor_update(id, 61.25); // the same degree
    Q_EMIT bench.machine.engine->sensor_update(id + 1000, 70.0); // no such sensor
    QCOMPARE(changed.count(), 1);
    Q_EMIT bench.machine.engine->sensor_update(id, 0.0);
    QCOMPARE(bench.sensorText("TC0P"), QStringLiteral("–"));
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
    auto& window = bench.makeLoaded();
    const auto* label = window.findChild<QLabel*>(QStringLiteral("labelActivePreset"));
    auto& profiles = *bench.machine.engine->profiles();
    QCOMPARE(label->text(), QStringLiteral("Active preset: Automatic"));
    QCOMPARE(bench.fans()->item(0, 2)->text(), FanControlMode::automatic().displayText(false));

    const FanControlMode constant = FanControlMode::constant(3456);
    bench.machine.engine->setFanMode(0, constant, false);
    QTRY_COMPARE(label->text(), QStringLiteral("Active preset: Custom*"));
    QCOMPARE(bench.fans()->item(0, 2)->text(), constant.displayText(false));

    profiles.saveUnsavedProfile(QStringLiteral("Quiet"));
    QTRY_COMPARE(label->text(), QStringLiteral("Active preset: Quiet"));

    profiles.setActiveProfile(profiles.predefinedProfiles().at(1));
    QTRY_COMPARE(label->text(), QStringLiteral("Active preset: Full blast"));
}

void MainWindowContentsTest::aTraySensorThatIsGoneIsForgotten()
{
    WindowBench bench;
    bench.machine.settings.setString(SettingsKeys::traySensor, QStringLiteral("TC0P"));
    bench.makeLoaded();
    QCOMPARE(bench.sensors()->rowCount(), 3);

    bench.machine.smc->removeKey("TC0P");
    bench.machine.reload();

    QCOMPARE(bench.machine.settings.getString(SettingsKeys::traySensor), QString());
    QCOMPARE(bench.sensors()->rowCount(), 2);
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
    QCOMPARE(bench.sensors()->rowCount(), 2);
    // The new sensors are followed as the old ones were.
    QVERIFY(!bench.sensors()->signalsBlocked());
    QTRY_VERIFY(bench.letTimePass() && bench.sensorText("TC0P") == QLatin1String("62"));
}

BRISORA_TEST_MAIN(MainWindowContentsTest, QApplication)

#include "test_mainwindow_contents.moc"
