#include <algorithm>
#include <array>
#include <memory>

#include <QAction>
#include <QIcon>
#include <QSpinBox>
#include <QtTest>

#include "tests/support/modaldialogdriver.h"
#include "tests/support/testenvironment.h"
#include "tests/ui/mainwindowbench.h"
#include "tests/ui/userhand.h"

namespace {

// Where the widget's left edge is in its window; pixels.
int leftOf(const QWidget* widget) { return widget->mapTo(widget->window(), QPoint(0, 0)).x(); }

// The height at which the table's first row begins in its window; pixels.
int firstRowOf(const QTableView* table)
{
    const QRect cell = table->visualRect(table->model()->index(0, 0));
    return table->viewport()->mapTo(table->window(), cell.topLeft()).y();
}

// The buttons below the tables, as they were added.
std::array<QPushButton*, 3> buttonsOf(const WindowBench& bench)
{
    return { bench.find<QPushButton>("buttonMinimize"),
             bench.find<QPushButton>("buttonPreferences"),
             bench.find<QWidget>("buttonAbout")->findChild<QPushButton*>() };
}

QStringList textsOf(const QMenu* menu)
{
    QStringList texts;
    for (const auto* action : menu->actions()) {
        texts.append(action->text());
    }
    return texts;
}

} // namespace

// What the window looks like, in each language and in both directions.
class MainWindowFormTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_process = std::make_unique<WindowProcess>(); }
    void cleanup();

    void f9OpensThePreferences();
    void theWindowCanBeMinimisedAndClosedOnly();
    void theIconHasFiveSizes();
    void theTablesAreDescribed();
    void theButtonsStandInTheirOrder();
    void tabGoesThroughTheButtonsAsTheyStand();
    void firstRowsStandSideBySide_data();
    void firstRowsStandSideBySide();
    void aWindowThatWasNeverShownIsKnownToTheSystem();
    void aChangeOfLanguageReachesEverything();
    void fromRightToLeftTheFansStandAtTheRight_data();
    void fromRightToLeftTheFansStandAtTheRight();
    void fromRightToLeftTheFanDialogIsMirrored_data();
    void fromRightToLeftTheFanDialogIsMirrored();

private:
    std::unique_ptr<WindowProcess> m_process;
};

void MainWindowFormTest::cleanup()
{
    m_process->texts().useEnglish();
    QApplication::setLayoutDirection(Qt::LeftToRight);
    WindowProcess::takeQuitRequest();
}

void MainWindowFormTest::f9OpensThePreferences()
{
    WindowBench bench;
    auto& window = bench.makeLoaded();
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    QStringList titles;
    ModalDialogDriver driver([&titles](QDialog& dialog) { titles.append(dialog.windowTitle()); });

    QTest::keyClick(&window, Qt::Key_F9, Qt::ControlModifier);
    QCOMPARE(titles, QStringList());
    QTest::keyClick(&window, Qt::Key_F9);

    QCOMPARE(titles, QStringList { QStringLiteral("Preferences: General") });
}

void MainWindowFormTest::theWindowCanBeMinimisedAndClosedOnly()
{
    WindowBench bench;
    const Qt::WindowFlags flags = bench.make().windowFlags();
    QVERIFY(flags.testFlag(Qt::CustomizeWindowHint));
    QVERIFY(!flags.testFlag(Qt::WindowMaximizeButtonHint));
    QVERIFY(flags.testFlag(Qt::WindowMinimizeButtonHint));
    QVERIFY(flags.testFlag(Qt::WindowCloseButtonHint));
    QVERIFY(flags.testFlag(Qt::WindowTitleHint));
}

void MainWindowFormTest::theIconHasFiveSizes()
{
    WindowBench bench;
    const QIcon icon = bench.make().windowIcon();
    QCOMPARE(icon.availableSizes(),
             (QList<QSize> { { 16, 16 }, { 32, 32 }, { 64, 64 }, { 128, 128 }, { 256, 256 } }));
    for (const int size : { 16, 32, 64, 128, 256 }) {
        QVERIFY(!icon.pixmap(size).isNull());
    }
}

void MainWindowFormTest::theTablesAreDescribed()
{
    WindowBench bench;
    bench.make();
    QCOMPARE(bench.fans()->accessibleDescription(), QStringLiteral("Fans table"));
    QCOMPARE(bench.sensors()->accessibleDescription(), QStringLiteral("Sensors table"));
}

void MainWindowFormTest::theButtonsStandInTheirOrder()
{
    WindowBench bench;
    bench.make().show();
    const auto [minimise, preferences, about] = buttonsOf(bench);

    QCOMPARE(minimise->text(), QStringLiteral(" Minimize "));
    QCOMPARE(preferences->text(), QStringLiteral(" Preferences... "));
    QCOMPARE(about->text(), QStringLiteral(" About... "));
    QVERIFY(leftOf(minimise) + minimise->width() <= leftOf(preferences));
    QVERIFY(leftOf(preferences) + preferences->width() <= leftOf(about));
}

void MainWindowFormTest::tabGoesThroughTheButtonsAsTheyStand()
{
    WindowBench bench;
    auto& window = bench.make();
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    auto buttons = buttonsOf(bench);
    std::sort(buttons.begin(), buttons.end(),
              [](const QWidget* one, const QWidget* other) { return leftOf(one) < leftOf(other); });

    buttons[0]->setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget(), buttons[1]);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget(), buttons[2]);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
    QCOMPARE(QApplication::focusWidget(), buttons[1]);
}

void MainWindowFormTest::firstRowsStandSideBySide_data()
{
    QTest::addColumn<QString>("language");
    QTest::newRow("English") << QStringLiteral("English");
    QTest::newRow("German") << QStringLiteral("German");
}

void MainWindowFormTest::firstRowsStandSideBySide()
{
    QFETCH(QString, language);
    WindowBench bench;
    auto& window = bench.makeLoaded();
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));

    m_process->texts().load(language);
    window.slotUpdatePreferences();

    QTRY_COMPARE(firstRowOf(bench.fans()), firstRowOf(bench.sensors()));
}

void MainWindowFormTest::aWindowThatWasNeverShownIsKnownToTheSystem()
{
    WindowBench bench;
    const auto& window = bench.make();
    QVERIFY(!window.isVisible());
    QVERIFY(window.internalWinId() != 0);
}

void MainWindowFormTest::aChangeOfLanguageReachesEverything()
{
    WindowBench bench;
    auto& window = bench.makeLoaded();
    const auto* const header = bench.find<QLabel>("labelSensorsHeader");
    const auto* const label = bench.find<QLabel>("labelActive");
    const auto* const presets = bench.find<QWidget>("buttonPresets")->findChild<QPushButton*>();
    const auto [minimise, preferences, about] = buttonsOf(bench);
    QTRY_COMPARE(presets->text(), QStringLiteral("Automatic"));
    QCOMPARE(header->text(), QStringLiteral("Temperature sensors:"));
    QVERIFY(textsOf(bench.tray.menu).contains(QStringLiteral("Exit")));

    m_process->texts().load(QStringLiteral("German"));
    QCOMPARE(header->text(), QStringLiteral("Temperature sensors:"));
    window.slotUpdatePreferences();

    QCOMPARE(header->text(), QStringLiteral("Temperatursensoren:"));
    QCOMPARE(minimise->text(), QStringLiteral(" Minimieren "));
    QCOMPARE(preferences->text(), QStringLiteral(" Einstellungen... "));
    QCOMPARE(about->text(), QStringLiteral(" Über... "));
    QCOMPARE(label->text(), QStringLiteral("Aktives Profil:"));
    QCOMPARE(presets->text(), QStringLiteral("Automatisch"));
    QCOMPARE(bench.fans()->model()->headerData(0, Qt::Horizontal).toString(),
             QStringLiteral("Lüfter"));
    QCOMPARE(bench.controlText(0), QStringLiteral("Eigene..."));
    QCOMPARE(bench.sensors()->model()->headerData(1, Qt::Horizontal).toString(),
             QStringLiteral("Wert °C"));
    const QStringList tray = textsOf(bench.tray.menu);
    QVERIFY2(tray.contains(QStringLiteral("Volle Drehzahl")),
             qPrintable(tray.join(QLatin1Char('\n'))));
    QVERIFY(tray.contains(QStringLiteral("Einstellungen...")));
    QVERIFY(!tray.contains(QStringLiteral("Exit")));
}

void MainWindowFormTest::fromRightToLeftTheFansStandAtTheRight_data()
{
    QTest::addColumn<Qt::LayoutDirection>("direction");
    QTest::newRow("left to right") << Qt::LeftToRight;
    QTest::newRow("right to left") << Qt::RightToLeft;
}

void MainWindowFormTest::fromRightToLeftTheFansStandAtTheRight()
{
    QFETCH(Qt::LayoutDirection, direction);
    QApplication::setLayoutDirection(direction);
    WindowBench bench;
    auto& window = bench.makeLoaded();
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));

    // The panes settle once the fans are there.
    const auto standsBefore = [](const QWidget* left, const QWidget* right) {
        return leftOf(left) + left->width() <= leftOf(right);
    };
    QTRY_VERIFY(direction == Qt::LeftToRight ? standsBefore(bench.fans(), bench.sensors())
                                             : standsBefore(bench.sensors(), bench.fans()));
}

void MainWindowFormTest::fromRightToLeftTheFanDialogIsMirrored_data()
{
    fromRightToLeftTheFansStandAtTheRight_data();
}

void MainWindowFormTest::fromRightToLeftTheFanDialogIsMirrored()
{
    QFETCH(Qt::LayoutDirection, direction);
    QApplication::setLayoutDirection(direction);
    WindowBench bench;
    auto& window = bench.makeLoaded();
    ModalDialogDriver driver([direction](QDialog& dialog) {
        const auto* const slider = child<QWidget>(dialog, "sliderRPM");
        const auto* const spin = child<QWidget>(dialog, "spinConstant");
        QVERIFY(slider->isVisible());
        QCOMPARE(leftOf(slider) < leftOf(spin), direction == Qt::LeftToRight);
    });

    window.slotShowFanDialog(0);

    QCOMPARE(driver.dialogCount(), 1);
}

BRISORA_TEST_MAIN(MainWindowFormTest, QApplication)

#include "test_mainwindow_form.moc"
