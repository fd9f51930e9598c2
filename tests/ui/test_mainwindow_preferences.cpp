#include <memory>

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QMap>
#include <QSignalSpy>
#include <QToolBar>
#include <QtTest>

#include "core/widgets/windowicon.h"
#include "tests/support/modaldialogdriver.h"
#include "tests/support/testenvironment.h"
#include "tests/ui/mainwindowbench.h"
#include "tests/ui/userhand.h"

using ShownTexts = QMap<QString, QString>;
Q_DECLARE_METATYPE(ShownTexts)

namespace {

// What of the window and the tray depends on the preferences.
ShownTexts shownBy(const WindowBench& bench)
{
    const auto header = [](const QTableView* table, int column) {
        return table->model()->headerData(column, Qt::Horizontal).toString();
    };
    const QStringList icons = bench.tray.told.filter(QStringLiteral("icon "));
    return {
        { QStringLiteral("above the sensors"), bench.find<QLabel>("labelSensorsHeader")->text() },
        { QStringLiteral("sensors' values"), header(bench.sensors(), 1) },
        { QStringLiteral("fans"), header(bench.fans(), 0) },
        { QStringLiteral("TC0P"), bench.sensorText("TC0P") },
        { QStringLiteral("preferences"), bench.find<QPushButton>("buttonPreferences")->text() },
        { QStringLiteral("minimise"), bench.find<QPushButton>("buttonMinimize")->text() },
        { QStringLiteral("tray's picture"), icons.isEmpty() ? QString() : icons.last() },
        { QStringLiteral("tray's last entry"), bench.tray.menu->actions().last()->text() },
    };
}

// For the message of a comparison that fails.
QStringList lines(const ShownTexts& texts)
{
    QStringList result;
    for (auto text = texts.cbegin(); text != texts.cend(); ++text) {
        result.append(text.key() + QLatin1String(": ") + text.value());
    }
    return result;
}

// As a user changes it: a selector to the item with this data, a box to its other
// state.
void change(QDialog& dialog, const char* control, const QString& data)
{
    if (auto* const combo = child<QComboBox>(dialog, control)) {
        combo->setCurrentIndex(combo->findData(data));
    } else {
        child<QCheckBox>(dialog, control)->click();
    }
}

} // namespace

// What the preferences do to the window behind them, while they are open.
class MainWindowPreferencesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_process = std::make_unique<WindowProcess>(); }
    void cleanup();

    void aChangeTakesEffectUnderTheOpenDialog_data();
    void aChangeTakesEffectUnderTheOpenDialog();
    void manyChoicesOfSensorsAreAsManyReloads();
    void thePageIsRemembered();
    void theDialogIsTheWindowsOwn_data();
    void theDialogIsTheWindowsOwn();

private:
    std::unique_ptr<WindowProcess> m_process;
};

void MainWindowPreferencesTest::cleanup()
{
    m_process->texts().useEnglish();
    WindowProcess::takeQuitRequest();
}

void MainWindowPreferencesTest::aChangeTakesEffectUnderTheOpenDialog_data()
{
    QTest::addColumn<QByteArray>("control");
    QTest::addColumn<QString>("data");
    QTest::addColumn<ShownTexts>("changed");
    QTest::newRow("Fahrenheit") << QByteArray("checkFahrenheit") << QString()
                                << ShownTexts { { QStringLiteral("sensors' values"),
                                                  QString::fromUtf8("Value °F") },
                                                { QStringLiteral("TC0P"), QStringLiteral("131") } };
    QTest::newRow("precise") << QByteArray("checkPrecise") << QString()
                             << ShownTexts { { QStringLiteral("TC0P"), QStringLiteral("55.0") },
                                             { QStringLiteral("tray's picture"),
                                               QStringLiteral("icon 17 -1") } };
    QTest::newRow("tray sensor") << QByteArray("comboSensor") << QStringLiteral("TC0P")
                                 << ShownTexts { { QStringLiteral("tray's picture"),
                                                   QStringLiteral("icon 5 55") } };
    QTest::newRow("language")
        << QByteArray("comboLanguage") << QStringLiteral("German")
        << ShownTexts {
               { QStringLiteral("above the sensors"), QStringLiteral("Temperatursensoren:") },
               { QStringLiteral("sensors' values"), QString::fromUtf8("Wert °C") },
               { QStringLiteral("fans"), QString::fromUtf8("Lüfter") },
               { QStringLiteral("preferences"), QStringLiteral(" Einstellungen... ") },
               { QStringLiteral("minimise"), QStringLiteral(" Minimieren ") },
               { QStringLiteral("tray's last entry"), QStringLiteral("Beenden") },
           };
}

void MainWindowPreferencesTest::aChangeTakesEffectUnderTheOpenDialog()
{
    QFETCH(QByteArray, control);
    QFETCH(QString, data);
    QFETCH(ShownTexts, changed);
    WindowBench bench;
    auto& window = bench.makeLoaded();
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QTRY_COMPARE(bench.sensorText("TC0P"), QStringLiteral("55"));
    ShownTexts expected = shownBy(bench);
    for (auto text = changed.cbegin(); text != changed.cend(); ++text) {
        QVERIFY2(expected.value(text.key()) != text.value(), qPrintable(text.key()));
        expected[text.key()] = text.value();
    }
    const QSignalSpy reloads(bench.machine.engine.get(), &QFanControl::sensorsReloadBegin);
    const auto* const sensors = bench.sensors()->model();
    const QSignalSpy newHeaders(sensors, &QAbstractItemModel::headerDataChanged);
    const QSignalSpy newLayouts(sensors, &QAbstractItemModel::layoutChanged);
    ModalDialogDriver driver([&](QDialog& dialog) {
        change(dialog, control.constData(), data);

        // A view draws again what it is told of.
        QVERIFY(!newHeaders.isEmpty() || !changed.contains(QStringLiteral("sensors' values")));
        QVERIFY(!newLayouts.isEmpty() || !changed.contains(QStringLiteral("TC0P")));
        QCOMPARE(lines(shownBy(bench)), lines(expected));
        QVERIFY(dialog.isVisible());
    });

    window.slotPreferences();

    QCOMPARE(driver.dialogCount(), 1);
    QCOMPARE(lines(shownBy(bench)), lines(expected));
    QCOMPARE(reloads.count(), 0);
}

void MainWindowPreferencesTest::manyChoicesOfSensorsAreAsManyReloads()
{
    constexpr int choices = 100;
    WindowBench bench;
    auto& window = bench.makeLoaded();
    window.show();
    QTRY_COMPARE(bench.sensorText("TC0P"), QStringLiteral("55"));
    const int rows = bench.sensors()->model()->rowCount();
    const auto& engine = *bench.machine.engine;
    const QSignalSpy begins(&engine, &QFanControl::sensorsReloadBegin);
    const QSignalSpy ends(&engine, &QFanControl::sensorsReloadEnd);
    ModalDialogDriver driver([&](QDialog& dialog) {
        auto* const box = child<QCheckBox>(dialog, "checkDrivesNVMe");
        for (int choice = 0; choice < choices; ++choice) {
            box->click();
        }

        QTRY_COMPARE(ends.count(), choices);
        QTRY_COMPARE(bench.machine.clock.timedWaits(), 2);
        QCOMPARE(begins.count(), choices);
        QCOMPARE(bench.sensors()->model()->rowCount(), rows);
        bench.machine.smc->setTemperature("TC0P", 61.0);
        QTRY_VERIFY(bench.letTimePass() && bench.sensorText("TC0P") == QLatin1String("61"));
        QVERIFY(dialog.isVisible());
    });

    window.slotPreferences();

    QCOMPARE(driver.dialogCount(), 1);
    QCOMPARE(ends.count(), choices);
    QTRY_COMPARE(bench.machine.clock.timedWaits(), 2);
}

void MainWindowPreferencesTest::thePageIsRemembered()
{
    WindowBench bench;
    auto& window = bench.makeLoaded();
    QStringList titles;
    ModalDialogDriver driver([&titles](QDialog& dialog) {
        titles.append(dialog.windowTitle());
        auto* const bar = dialog.findChild<QToolBar*>();
        bar->actions().value(2)->trigger();
    });

    window.slotPreferences();
    window.slotPreferences();

    QCOMPARE(titles,
             QStringList({ QStringLiteral("Preferences: General"),
                           QStringLiteral("Preferences: Tray icon") }));
    // The next window begins anew.
    bench.window.reset();
    bench.machine.makeEngine();
    bench.make().slotPreferences();
    QCOMPARE(titles.last(), QStringLiteral("Preferences: General"));
}

void MainWindowPreferencesTest::theDialogIsTheWindowsOwn_data()
{
    QTest::addColumn<bool>("isShown");
    QTest::newRow("shown") << true;
    QTest::newRow("hidden") << false;
}

void MainWindowPreferencesTest::theDialogIsTheWindowsOwn()
{
    QFETCH(bool, isShown);
    WindowBench bench;
    auto& window = bench.makeLoaded();
    window.setVisible(isShown);
    ModalDialogDriver driver([&window](QDialog& dialog) {
        QCOMPARE(dialog.parentWidget(), &window);
        QVERIFY(dialog.isWindow());
        QCOMPARE(dialog.windowIcon().cacheKey(), windowIcon().cacheKey());
        QVERIFY(!dialog.windowFlags().testFlag(Qt::WindowContextHelpButtonHint));
    });

    window.slotPreferences();

    QCOMPARE(driver.dialogCount(), 1);
    QCOMPARE(window.isVisible(), isShown);
}

BRISORA_TEST_MAIN(MainWindowPreferencesTest, QApplication)

#include "test_mainwindow_preferences.moc"
