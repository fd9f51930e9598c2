#include <memory>

#include <QApplication>
#include <QHelpEvent>
#include <QToolButton>
#include <QToolTip>
#include <QtTest>

#include "app/ui/tables/qcocoafanssegmentedbutton.h"
#include "app/ui/tables/qtablefanscontrolwidget.h"
#include "app/ui/tables/qtablefansrpmwidget.h"
#include "tests/fancontrol/presetfixture.h"
#include "tests/support/interfacetexts.h"
#include "tests/support/testenvironment.h"
#include "tests/ui/tables/tablesprocess.h"

namespace {

// The text of a cell of speeds with these three parts.
QString speedsText(const char* min, const char* current, const char* max)
{
    return QStringLiteral("<div align='center'><table><tr><td style='vertical-align: middle'>%1 — "
                          "</td><td style='vertical-align: middle'>%2<td><td style="
                          "'vertical-align: middle'>— %3</td></tr></table></div>")
        .arg(QString::fromUtf8(min), QString::fromUtf8(current), QString::fromUtf8(max));
}

// Counts how often a widget is painted.
class PaintCount final : public QObject {
public:
    explicit PaintCount(QWidget* widget) { widget->installEventFilter(this); }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        count += event->type() == QEvent::Paint ? 1 : 0;
        return QObject::eventFilter(watched, event);
    }

    int count = 0;
};

bool holdsColor(const QImage& image, const QColor& color)
{
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y) == color) {
                return true;
            }
        }
    }
    return false;
}

// The control cell of fan 3, in a table with room for all texts.
class ControlCell final : public QTableFansControlWidget {
public:
    explicit ControlCell(QWidget* table)
        : QTableFansControlWidget(3, table)
    {
        resize(440, 36);
    }

    using QTableFansControlWidget::slotClicked;

    [[nodiscard]] QCocoaFansSegmentedButton* button() const
    {
        return findChild<QCocoaFansSegmentedButton*>();
    }
    [[nodiscard]] QToolButton* segment(int index) const
    {
        return findChildren<QToolButton*>().value(index);
    }
    // The selected segment; -1 without one.
    [[nodiscard]] int selection() const
    {
        return segment(0)->isChecked() ? 0 : segment(1)->isChecked() ? 1 : -1;
    }
};

// One cell in something like a table.
class ControlBench {
public:
    ControlBench()
    {
        table.resize(900, 36);
        table.show();
    }

    QWidget table;
    ControlCell cell { &table };
};

const FanControlMode automatic = FanControlMode::automatic();
const FanControlMode constant = FanControlMode::constant(3456);

} // namespace

class FanCellsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup() { m_texts->useEnglish(); }

    void speedsAreShown_data();
    void speedsAreShown();
    void speedsAreEmptyAtFirst();
    void onlyNewSpeedsArePainted();
    void speedsHaveTheColorOfTheTablesTexts();
    void speedsAreReadOutAsPlainText();

    void theControlIsHiddenUntilThereIsAMode();
    void anInvalidModeLeavesTheControlAsItIs();
    void aModeIsShown_data();
    void aModeIsShown();
    void aModeTakesTheSelectionAlong();
    void theSameModeDoesNotTouchTheButton();
    void forceShowsTheSameModeAgain();
    void aClickTellsWhatIsWanted();
    void aClickOnTheSelectedSegmentIsToldToo();
    void segmentsFollowTheWidth_data();
    void segmentsFollowTheWidth();
    void segmentsStandSideBySide();
    void textsFollowTheWidth();
    void aResizeKeepsTheModeAndTheHiding();
    void textsFollowTheLanguage();
    void aCheckedSegmentLooksDifferent_data();
    void aCheckedSegmentLooksDifferent();
    void arrowsReachTheOtherSegment();

private:
    std::unique_ptr<InterfaceTexts> m_texts;
    KnownSensors m_sensors;
};

void FanCellsTest::initTestCase()
{
    prepareTablesProcess();
    m_texts = std::make_unique<InterfaceTexts>();
    m_sensors.add("TC0P");
}

void FanCellsTest::speedsAreShown_data()
{
    QTest::addColumn<int>("min");
    QTest::addColumn<int>("current");
    QTest::addColumn<int>("max");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* name, int min, int current, int max, const QString& text) {
        QTest::newRow(name) << min << current << max << text;
    };
    row("usual", 2000, 2500, 6000, speedsText("2000", "<b><big>2500</big></b>", "6000"));
    row("equal limits", 1200, 1300, 1200,
        speedsText("<font color='#FF7E00'>1200</font>", "<b><big>1300</big></b>",
                   "<font color='#FF7E00'>1200</font>"));
    row("stopped", 1200, 0, 6000,
        speedsText("1200", "<b><big><font color='#FF7E00'>0</font></big></b>", "6000"));
    row("stopped with equal limits", 0, 0, 0,
        speedsText("<font color='#FF7E00'>0</font>",
                   "<b><big><font color='#FF7E00'>0</font></big></b>",
                   "<font color='#FF7E00'>0</font>"));
    row("a stopped minimum", 0, 2500, 6000, speedsText("0", "<b><big>2500</big></b>", "6000"));
    row("unread", 65535, 65535, 65535, speedsText("–", "<b><big>–</big></b>", "–"));
    row("never updated", -1, -1, -1, speedsText("–", "<b><big>–</big></b>", "–"));
    row("unread minimum", 65535, 2500, 6000, speedsText("–", "<b><big>2500</big></b>", "6000"));
    row("unread current", 2000, 65535, 6000, speedsText("2000", "<b><big>–</big></b>", "6000"));
    row("unread maximum", 2000, 2500, 65535, speedsText("2000", "<b><big>2500</big></b>", "–"));
    row("the highest", 65533, 65534, 65534,
        speedsText("65533", "<b><big>65534</big></b>", "65534"));
}

void FanCellsTest::speedsAreShown()
{
    QFETCH(int, min);
    QFETCH(int, current);
    QFETCH(int, max);
    QTableFansRPMWidget cell;
    cell.showSpeeds(min, current, max);
    QTEST(cell.text(), "text");
}

void FanCellsTest::speedsAreEmptyAtFirst() { QCOMPARE(QTableFansRPMWidget().text(), QString()); }

void FanCellsTest::onlyNewSpeedsArePainted()
{
    QTableFansRPMWidget cell;
    cell.resize(200, 36);
    cell.show();
    QVERIFY(QTest::qWaitForWindowExposed(&cell));
    cell.showSpeeds(2000, 2500, 6000);
    QCoreApplication::processEvents();
    const PaintCount paints(&cell);

    cell.showSpeeds(2000, 2500, 6000);
    QCoreApplication::processEvents();
    QCOMPARE(paints.count, 0);

    cell.showSpeeds(2000, 2501, 6000);
    QTRY_VERIFY(paints.count > 0);
}

void FanCellsTest::speedsHaveTheColorOfTheTablesTexts()
{
    QTableFansRPMWidget cell;
    QPalette colors = cell.palette();
    colors.setColor(QPalette::Window, Qt::black);
    colors.setColor(QPalette::Text, Qt::green);
    colors.setColor(QPalette::WindowText, Qt::blue);
    cell.setPalette(colors);
    cell.resize(200, 36);
    cell.showSpeeds(2000, 2500, 6000);

    const QImage image = cell.grab().toImage();

    QVERIFY(holdsColor(image, Qt::green));
    QVERIFY(!holdsColor(image, Qt::blue));
}

void FanCellsTest::speedsAreReadOutAsPlainText()
{
    QTableFansRPMWidget cell;
    cell.showSpeeds(2000, 0, 65535);
    QCOMPARE(cell.accessibleName(), QStringLiteral("2000 — 0 — –"));
}

void FanCellsTest::theControlIsHiddenUntilThereIsAMode()
{
    ControlBench bench;
    ControlCell& cell = bench.cell;
    QVERIFY(!cell.button()->isVisible());
    QCOMPARE(cell.selection(), -1);

    cell.showMode(automatic);

    QVERIFY(cell.button()->isVisible());
}

void FanCellsTest::anInvalidModeLeavesTheControlAsItIs()
{
    ControlBench bench;
    ControlCell& cell = bench.cell;
    cell.showMode(FanControlMode());
    cell.showMode(FanControlMode(), true);
    QVERIFY(!cell.button()->isVisible());
    QCOMPARE(cell.segment(1)->text(), QString());

    cell.showMode(constant);
    cell.showMode(FanControlMode(), true);
    QVERIFY(cell.button()->isVisible());
    QCOMPARE(cell.selection(), 1);
    QCOMPARE(cell.segment(1)->text(), QStringLiteral("Constant value of 3456"));
    QCOMPARE(cell.mode(), constant);
}

void FanCellsTest::aModeIsShown_data()
{
    QTest::addColumn<FanControlMode>("mode");
    QTest::addColumn<int>("selection");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("toolTip");
    const auto row = [](const char* name, const FanControlMode& mode, const char* text) {
        QTest::newRow(name) << mode << 1 << QString::fromLatin1(text) << QString::fromLatin1(text);
    };
    QTest::newRow("automatic") << automatic << 0 << QStringLiteral("Custom...")
                               << QStringLiteral("Specify a custom controlling mode");
    row("constant", constant, "Constant value of 3456");
    row("sensor", followMode("TC0P"), "Based on Name of TC0P");
    row("not assigned", FanControlMode::notAssigned(), "Unknown!");
}

void FanCellsTest::aModeIsShown()
{
    QFETCH(FanControlMode, mode);
    QFETCH(QString, text);
    ControlBench bench;
    ControlCell& cell = bench.cell;

    cell.showMode(mode);

    QTEST(cell.selection(), "selection");
    QCOMPARE(cell.segment(0)->text(), QStringLiteral("Auto"));
    QCOMPARE(cell.segment(0)->toolTip(), QStringLiteral("Automatic (controlled by system)"));
    QCOMPARE(cell.segment(1)->text(), text);
    QTEST(cell.segment(1)->toolTip(), "toolTip");
    QCOMPARE(cell.mode(), mode);
    QCOMPARE(cell.text(), text);
}

void FanCellsTest::aModeTakesTheSelectionAlong()
{
    ControlBench bench;
    ControlCell& cell = bench.cell;
    cell.showMode(constant);
    cell.showMode(automatic);
    QCOMPARE(cell.selection(), 0);
    cell.showMode(constant);
    QCOMPARE(cell.selection(), 1);
}

void FanCellsTest::theSameModeDoesNotTouchTheButton()
{
    ControlBench bench;
    ControlCell& cell = bench.cell;
    cell.showMode(constant);
    cell.segment(0)->click();

    cell.showMode(FanControlMode::constant(3456));

    QCOMPARE(cell.selection(), 0);
}

void FanCellsTest::forceShowsTheSameModeAgain()
{
    ControlBench bench;
    ControlCell& cell = bench.cell;
    cell.showMode(constant);
    cell.segment(0)->click();
    cell.showMode(constant, true);
    QCOMPARE(cell.selection(), 1);

    cell.segment(0)->click();
    cell.showLastMode();
    QCOMPARE(cell.selection(), 1);
    QCOMPARE(cell.segment(1)->text(), QStringLiteral("Constant value of 3456"));
}

void FanCellsTest::aClickTellsWhatIsWanted()
{
    ControlBench bench;
    ControlCell& cell = bench.cell;
    cell.showMode(automatic);
    QSignalSpy manualClicks(&cell, &ControlCell::fanManualModeClicked);
    QSignalSpy autoClicks(&cell, &ControlCell::fanAutoModeClicked);

    QTest::mouseClick(cell.segment(1), Qt::LeftButton);
    QCOMPARE(manualClicks.count(), 1);
    QCOMPARE(manualClicks[0][0].value<uint8_t>(), uint8_t(3));
    QCOMPARE(autoClicks.count(), 0);
    // It doesn't wait for what comes of it.
    QCOMPARE(cell.selection(), 1);

    QTest::mouseClick(cell.segment(0), Qt::LeftButton);
    QCOMPARE(autoClicks.count(), 1);
    QCOMPARE(autoClicks[0][0].value<uint8_t>(), uint8_t(3));
    QCOMPARE(manualClicks.count(), 1);

    cell.slotClicked(2);
    QCOMPARE(manualClicks.count(), 2);
}

void FanCellsTest::aClickOnTheSelectedSegmentIsToldToo()
{
    ControlBench bench;
    ControlCell& cell = bench.cell;
    cell.showMode(constant);
    QSignalSpy manualClicks(&cell, &ControlCell::fanManualModeClicked);
    QTest::mouseClick(cell.segment(1), Qt::LeftButton);
    QCOMPARE(manualClicks.count(), 1);
    QCOMPARE(cell.selection(), 1);
}

void FanCellsTest::segmentsFollowTheWidth_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("automatic");
    QTest::addColumn<int>("custom");
    QTest::newRow("the least") << 41 << 0 << 1;
    QTest::newRow("both halves") << 140 << 50 << 50;
    QTest::newRow("an odd rest") << 141 << 50 << 51;
    QTest::newRow("the limit of the first") << 240 << 100 << 100;
    QTest::newRow("beyond it") << 300 << 100 << 160;
    QTest::newRow("the limit of both") << 440 << 100 << 300;
    QTest::newRow("beyond both") << 900 << 100 << 300;
    QTest::newRow("nothing left") << 40 << 100 << 300; // as before
}

void FanCellsTest::segmentsFollowTheWidth()
{
    QFETCH(int, width);
    ControlBench bench;
    ControlCell& cell = bench.cell;
    cell.showMode(automatic);
    QCOMPARE(cell.segment(0)->width(), 100);

    cell.resize(width, 36);

    QTEST(cell.segment(0)->width(), "automatic");
    QTEST(cell.segment(1)->width(), "custom");
}

void FanCellsTest::segmentsStandSideBySide()
{
    ControlBench bench;
    ControlCell& cell = bench.cell;
    cell.showMode(automatic);
    cell.resize(900, 36);
    QCoreApplication::processEvents();

    QCOMPARE(cell.button()->geometry(), cell.rect());
    QCOMPARE(cell.segment(0)->geometry().right() + 1, cell.segment(1)->geometry().left());
    QCOMPARE(cell.segment(0)->x(), 250);
    QCOMPARE(cell.segment(0)->height(), cell.segment(1)->height());
}

void FanCellsTest::textsFollowTheWidth()
{
    ControlBench bench;
    ControlCell& cell = bench.cell;
    cell.showMode(constant);
    const QString whole = QStringLiteral("Constant value of 3456");
    QCOMPARE(cell.segment(1)->text(), whole);

    cell.resize(170, 36);
    const QString cut = cell.segment(1)->text();
    QVERIFY(cut.endsWith(QLatin1String("...")));
    QVERIFY(cut.size() < whole.size());
    QVERIFY(whole.startsWith(cut.chopped(3)));
    QCOMPARE(cell.segment(1)->toolTip(), whole);
    QCOMPARE(cell.text(), whole);

    cell.resize(440, 36);
    QCOMPARE(cell.segment(1)->text(), whole);
    QCOMPARE(cell.segment(0)->text(), QStringLiteral("Auto"));
}

void FanCellsTest::aResizeKeepsTheModeAndTheHiding()
{
    ControlBench bench;
    ControlCell& cell = bench.cell;
    cell.resize(300, 36);
    QVERIFY(!cell.button()->isVisible());

    cell.showMode(constant);
    cell.resize(440, 36);
    QCOMPARE(cell.mode(), constant);
    QCOMPARE(cell.selection(), 1);
}

void FanCellsTest::textsFollowTheLanguage()
{
    ControlBench bench;
    ControlCell& cell = bench.cell;
    cell.showMode(constant);
    m_texts->translate("<MainWindow><fanControlAutomatic>Selbst</fanControlAutomatic>"
                       "<fanControlAutomaticInfo>Von selbst</fanControlAutomaticInfo>"
                       "<fanControlConstant>Fest %1</fanControlConstant></MainWindow>");

    cell.translate();

    QCOMPARE(cell.segment(0)->text(), QStringLiteral("Selbst"));
    QCOMPARE(cell.segment(0)->toolTip(), QStringLiteral("Von selbst"));
    QCOMPARE(cell.segment(1)->text(), QStringLiteral("Fest 3456"));
    QCOMPARE(cell.segment(1)->toolTip(), QStringLiteral("Fest 3456"));
}

void FanCellsTest::aCheckedSegmentLooksDifferent_data()
{
    QTest::addColumn<QColor>("button");
    QTest::addColumn<QColor>("text");
    QTest::newRow("light") << QColor(239, 239, 239) << QColor(Qt::black);
    QTest::newRow("dark") << QColor(45, 45, 45) << QColor(Qt::white);
}

void FanCellsTest::aCheckedSegmentLooksDifferent()
{
    QFETCH(QColor, button);
    QFETCH(QColor, text);
    ControlBench bench;
    ControlCell& cell = bench.cell;
    QPalette colors = cell.palette();
    colors.setColor(QPalette::Button, button);
    colors.setColor(QPalette::ButtonText, text);
    colors.setColor(QPalette::Highlight, QColor(42, 130, 218));
    cell.setPalette(colors);
    cell.showMode(automatic);
    const auto groundOf = [&cell](int segment) {
        const QImage image = cell.segment(segment)->grab().toImage();
        return image.pixelColor(8, image.height() / 2);
    };

    const QColor checked = groundOf(0);
    const QColor unchecked = groundOf(1);

    // The highlight is blue, the button grey.
    QVERIFY(checked.hsvSaturation() > 100);
    QVERIFY(unchecked.hsvSaturation() < 30);
    QVERIFY(qAbs(checked.lightness() - text.lightness()) > 80);
}

void FanCellsTest::arrowsReachTheOtherSegment()
{
    ControlBench bench;
    ControlCell& cell = bench.cell;
    cell.showMode(automatic);
    bench.table.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&bench.table));
    QSignalSpy manualClicks(&cell, &ControlCell::fanManualModeClicked);
    cell.segment(0)->setFocus();

    QTest::keyClick(cell.segment(0), Qt::Key_Right);

    QVERIFY(cell.segment(1)->hasFocus());
    QTest::keyClick(cell.segment(1), Qt::Key_Space);
    QVERIFY(manualClicks.count() > 0);
}

BRISORA_TEST_MAIN(FanCellsTest, QApplication)

#include "test_fancells.moc"
