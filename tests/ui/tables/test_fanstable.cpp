#include <memory>

#include <QApplication>
#include <QHeaderView>
#include <QHelpEvent>
#include <QItemDelegate>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>
#include <QToolTip>
#include <QVBoxLayout>
#include <QtTest>

#include "app/fancontrol/fanprofilelist.h"
#include "app/ui/tables/qtablefanscontrolwidget.h"
#include "app/ui/tables/qtablefansrpmwidget.h"
#include "app/ui/tables/qtableviewfans.h"
#include "core/widgets/nodrawfocusdelegate.h"
#include "core/widgets/widgethelpers.h"
#include "tests/support/interfacetexts.h"
#include "tests/support/testenvironment.h"
#include "tests/ui/tables/tablesprocess.h"

namespace {

// The table over the engine of a machine with two fans, or as many as are asked for.
class FansBench {
public:
    explicit FansBench(int fanCount = 2, bool isPassive = false)
    {
        machine.smc->setKey("FNum", "ui8 ", { static_cast<std::uint8_t>(fanCount) });
        for (int fan = 2; fan < fanCount; ++fan) {
            machine.smc->addFan(fan, "More", 2500, 2000, 6000);
        }
        machine.load();
        table.resize(600, 300);
        table.initialize(*machine.engine, isPassive);
        table.show();
    }

    [[nodiscard]] int rows() const { return table.model()->rowCount(); }
    [[nodiscard]] QString name(int row) const
    {
        return table.model()->index(row, 0).data().toString();
    }
    [[nodiscard]] QLabel* overlay() const
    {
        return table.findChild<QLabel*>(QStringLiteral("labelNoFans"));
    }
    [[nodiscard]] QToolButton* segment(int fan, int index) const
    {
        return table.getControlCell(fan)->findChildren<QToolButton*>().value(index);
    }
    // Modes that the cells show.
    [[nodiscard]] QList<FanControlMode> modes() const
    {
        return { table.getControlCell(0)->mode(), table.getControlCell(1)->mode() };
    }
    // One that is as wide as the text and the room around it.
    [[nodiscard]] int widthFor(const char* title) const
    {
        return table.horizontalHeader()->fontMetrics().horizontalAdvance(QString::fromUtf8(title))
            + 30;
    }

    EngineMachine machine;
    QTableViewFans table;
};

const FanControlMode automatic = FanControlMode::automatic();
const FanControlMode constant = FanControlMode::constant(3456);

} // namespace

class FansTableTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        prepareTablesProcess();
        m_texts = std::make_unique<InterfaceTexts>();
    }
    void cleanup() { m_texts->useEnglish(); }

    void itIsEmptyBeforeTheInitialisation();
    void itLooksLikeAListOfFans();
    void eachFanHasARow();
    void cellsThatAreNotThereAreNull();
    void itHasRoomForAllFans_data();
    void itHasRoomForAllFans();
    void anUpdateReachesItsRowOnly();
    void clicksTellTheFan();
    void theWarningShowsOverTheSpeeds();
    void theSpeedsColumnFitsItsTitle_data();
    void theSpeedsColumnFitsItsTitle();
    void theSpeedsColumnFitsWideSpeeds();
    void theFanColumnFitsTheNames();
    void theProposedSizeCutsNoText();
    void textsFollowTheLanguage();
    void cellsShowTheActivePreset();
    void theFanUnderTheDialogKeepsItsCell();
    void aPresetForFewerFansLeavesTheOthers();
    void aMachineWithFansHasNoMessage();
    void aMachineWithoutFansSaysWhy_data();
    void aMachineWithoutFansSaysWhy();
    void theMessageStaysInTheMiddle();
    void theMessageIsReadableOnTheTable_data();
    void theMessageIsReadableOnTheTable();
    void theMessageFollowsTheLanguage();
    void rowsCannotBeSelected();
    void tabGoesThroughTheRows();
    void controlsAreNamedAfterTheirFans();
    void theDecorationShowsInItsSeason_data();
    void theDecorationShowsInItsSeason();

private:
    std::unique_ptr<InterfaceTexts> m_texts;
};

void FansTableTest::itIsEmptyBeforeTheInitialisation()
{
    QTableViewFans table;
    QCOMPARE(table.model()->rowCount(), 0);
    QCOMPARE(table.model()->columnCount(), 3);
    QVERIFY(table.findChildren<QLabel*>().isEmpty());
    QCOMPARE(table.fanUnderDialog(), -1);
}

void FansTableTest::itLooksLikeAListOfFans()
{
    const FansBench bench;
    const QTableViewFans& table = bench.table;
    QCOMPARE(table.rowHeight(0), scaled(36));
    QCOMPARE(table.rowHeight(1), scaled(36));
    QCOMPARE(table.iconSize(), QSize(scaled(32), scaled(32)));
    QVERIFY(table.verticalHeader()->isHidden());
    QCOMPARE(table.verticalHeader()->defaultSectionSize(), scaled(36));
    QCOMPARE(table.verticalHeader()->sectionResizeMode(0), QHeaderView::Fixed);
    QVERIFY(!table.horizontalHeader()->sectionsClickable());
    QCOMPARE(table.horizontalHeader()->sectionResizeMode(2), QHeaderView::Stretch);
    QCOMPARE(table.selectionBehavior(), QAbstractItemView::SelectRows);
    QCOMPARE(table.selectionMode(), QAbstractItemView::SingleSelection);
    QCOMPARE(table.verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    QVERIFY(!table.showGrid());
    QVERIFY(!table.wordWrap());
    QVERIFY(!table.isCornerButtonEnabled());
    QVERIFY(table.alternatingRowColors());
    QVERIFY(dynamic_cast<Widgets::NoDrawFocusDelegate<QItemDelegate>*>(table.itemDelegate())
            != nullptr);
}

void FansTableTest::eachFanHasARow()
{
    const FansBench bench(4);
    QCOMPARE(bench.rows(), 4);
    for (int fan = 0; fan < 4; ++fan) {
        const auto& record = bench.machine.engine->getFans()[static_cast<std::size_t>(fan)];
        QVERIFY(!record.name().isEmpty());
        QCOMPARE(bench.name(fan), record.name());
        QVERIFY(bench.table.getControlCell(fan) != nullptr);
        QVERIFY(bench.table.getRpmCell(fan) != nullptr);
        QCOMPARE(bench.table.getControlCell(fan)->mode(), FanControlMode());
        QVERIFY(!bench.segment(fan, 0)->isVisible());
    }
}

void FansTableTest::cellsThatAreNotThereAreNull()
{
    const FansBench bench;
    for (const int fan : { -1, 2, 255 }) {
        QVERIFY(bench.table.getControlCell(fan) == nullptr);
        QVERIFY(bench.table.getRpmCell(fan) == nullptr);
    }
}

void FansTableTest::itHasRoomForAllFans_data()
{
    QTest::addColumn<int>("fans");
    QTest::newRow("none") << 0;
    QTest::newRow("two") << 2;
    QTest::newRow("six") << 6;
}

void FansTableTest::itHasRoomForAllFans()
{
    QFETCH(int, fans);
    const FansBench bench(fans);
    const int needed = bench.table.horizontalHeader()->height() + scaled(36) * (fans + 1);
    QCOMPARE(bench.rows(), fans);
    QCOMPARE(bench.table.minimumHeight(), qMax(160, needed));
    QCOMPARE(bench.table.minimumWidth(), 500);
}

void FansTableTest::anUpdateReachesItsRowOnly()
{
    FansBench bench;
    QSignalSpy changed(bench.table.model(), &QAbstractItemModel::dataChanged);

    bench.table.updateRow(1, 2000, 2500, 6000, constant);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed[0][0].toModelIndex().row(), 1);
    // The cells have operations of their own.
    QCOMPARE(bench.table.getControlCell(1)->mode(), FanControlMode());
    QCOMPARE(bench.table.getRpmCell(1)->text(), QString());

    bench.table.updateRow(2, 2000, 2500, 6000, constant);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(bench.rows(), 2);
}

void FansTableTest::clicksTellTheFan()
{
    FansBench bench;
    bench.table.getControlCell(0)->showMode(automatic);
    bench.table.getControlCell(1)->showMode(constant);
    QSignalSpy manualClicks(&bench.table, &QTableViewFans::fanManualModeClicked);
    QSignalSpy autoClicks(&bench.table, &QTableViewFans::fanAutoModeClicked);

    QTest::mouseClick(bench.segment(0, 1), Qt::LeftButton);
    QTest::mouseClick(bench.segment(1, 0), Qt::LeftButton);

    QCOMPARE(manualClicks.count(), 1);
    QCOMPARE(manualClicks[0][0].value<uint8_t>(), uint8_t(0));
    QCOMPARE(autoClicks.count(), 1);
    QCOMPARE(autoClicks[0][0].value<uint8_t>(), uint8_t(1));
}

void FansTableTest::theWarningShowsOverTheSpeeds()
{
    FansBench bench;
    bench.table.updateRow(0, 1200, 1300, 1200, automatic);
    auto* const cell = bench.table.getRpmCell(0);
    cell->showSpeeds(1200, 1300, 1200);

    const QPoint middle = cell->rect().center();
    QHelpEvent help(QEvent::ToolTip, middle, cell->mapToGlobal(middle));
    QCoreApplication::sendEvent(cell, &help);

    QVERIFY(QToolTip::text().contains(QStringLiteral("values are equal (1200)")));
    QToolTip::hideText();
}

void FansTableTest::theSpeedsColumnFitsItsTitle_data()
{
    QTest::addColumn<QByteArray>("title");
    QTest::newRow("English") << QByteArray("Min/Current/Max RPM");
    QTest::newRow("long words") << QByteArray(
        "Umdrehungen pro Minute: mindestens/gegenwärtig/höchstens");
    QTest::newRow("short") << QByteArray("RPM");
}

void FansTableTest::theSpeedsColumnFitsItsTitle()
{
    QFETCH(QByteArray, title);
    FansBench bench;
    m_texts->translate("<MainWindow><listColumnRPM>" + title + "</listColumnRPM></MainWindow>");

    bench.table.recomputeColumns();

    QCOMPARE(bench.table.columnWidth(1), qMax(bench.widthFor(title.constData()), 100));
}

void FansTableTest::theSpeedsColumnFitsWideSpeeds()
{
    FansBench bench;
    m_texts->translate("<MainWindow><listColumnRPM>RPM</listColumnRPM></MainWindow>");
    bench.table.recomputeColumns();
    QCOMPARE(bench.table.columnWidth(1), 100);
    auto* const cell = bench.table.getRpmCell(1);

    cell->showSpeeds(10000, 12000, 16000);

    QVERIFY(cell->sizeHint().width() > 100);
    QTRY_COMPARE(bench.table.columnWidth(1), cell->sizeHint().width());

    bench.table.hide();
    cell->showSpeeds(60000, 61000, 62000);
    bench.table.show();
    QTRY_COMPARE(bench.table.columnWidth(1), cell->sizeHint().width());
}

void FansTableTest::theFanColumnFitsTheNames()
{
    FansBench bench;
    QCOMPARE(bench.table.horizontalHeader()->sectionResizeMode(0), QHeaderView::ResizeToContents);
    const QFontMetrics metrics(bench.table.font());
    const int textWidth
        = qMax(metrics.horizontalAdvance(bench.name(0)), metrics.horizontalAdvance(bench.name(1)));
    QVERIFY(bench.table.columnWidth(0) > textWidth);

    const int before = bench.table.columnWidth(0);
    m_texts->translate("<MainWindow><listColumnFan>Eine sehr lange Überschrift der "
                       "Spalte</listColumnFan></MainWindow>");
    bench.table.translate();
    QTRY_VERIFY(bench.table.columnWidth(0) > before);
}

void FansTableTest::theProposedSizeCutsNoText()
{
    FansBench bench;
    for (std::uint8_t fan = 0; fan < bench.rows(); ++fan) {
        bench.table.getControlCell(fan)->showMode(automatic);
    }
    m_texts->translate("<MainWindow><buttonFanControlCustom>Eigenmächtig</buttonFanControlCustom>"
                       "<listColumnRPM>Eine viel längere Überschrift</listColumnRPM></MainWindow>");
    bench.table.translate();
    bench.table.resize(bench.table.minimumSize());
    const QString whole = QStringLiteral("Eigenmächtig");
    QVERIFY(bench.segment(0, 1)->text() != whole);

    bench.table.resize(bench.table.sizeHint());

    QCOMPARE(bench.segment(0, 0)->text(), QStringLiteral("Auto"));
    QCOMPARE(bench.segment(0, 1)->text(), whole);
}

void FansTableTest::textsFollowTheLanguage()
{
    FansBench bench;
    bench.table.getControlCell(0)->showMode(constant);
    QSignalSpy layout(bench.table.model(), &QAbstractItemModel::layoutChanged);
    m_texts->translate("<MainWindow><fanControlConstant>Fest %1</fanControlConstant>"
                       "<listColumnRPM>Eine viel längere Überschrift</listColumnRPM></MainWindow>");

    bench.table.translate();

    QCOMPARE(layout.count(), 1);
    QCOMPARE(bench.segment(0, 1)->text(), QStringLiteral("Fest 3456"));
    QCOMPARE(bench.table.columnWidth(1), bench.widthFor("Eine viel längere Überschrift"));
    QVERIFY(!bench.segment(1, 0)->isVisible());
}

void FansTableTest::cellsShowTheActivePreset()
{
    FansBench bench;
    bench.machine.engine->setFanMode(1, constant, false);

    bench.table.slotProfilesChanged(bench.machine.engine->profiles());

    QCOMPARE(bench.modes(), QList<FanControlMode>({ automatic, constant }));
    QVERIFY(bench.segment(1, 1)->isChecked());

    // A mode that is shown already is not forced.
    bench.segment(1, 0)->click();
    bench.table.slotProfilesChanged(bench.machine.engine->profiles());
    QVERIFY(bench.segment(1, 0)->isChecked());
}

void FansTableTest::theFanUnderTheDialogKeepsItsCell()
{
    FansBench bench;
    bench.table.slotProfilesChanged(bench.machine.engine->profiles());
    bench.table.setFanUnderDialog(1);
    QCOMPARE(bench.table.fanUnderDialog(), 1);
    bench.machine.engine->setFanMode(0, constant, false);
    bench.machine.engine->setFanMode(1, constant, false);

    bench.table.slotProfilesChanged(bench.machine.engine->profiles());
    QCOMPARE(bench.modes(), QList<FanControlMode>({ constant, automatic }));

    bench.table.setFanUnderDialog(-1);
    bench.table.slotProfilesChanged(bench.machine.engine->profiles());
    QCOMPARE(bench.modes(), QList<FanControlMode>({ constant, constant }));
}

void FansTableTest::aPresetForFewerFansLeavesTheOthers()
{
    FansBench bench;
    bench.table.getControlCell(0)->showMode(constant);
    bench.table.getControlCell(1)->showMode(constant);
    // Without an active preset there is no mode.
    QFanProfileList empty(bench.machine.settings);

    bench.table.slotProfilesChanged(&empty);

    QCOMPARE(bench.modes(), QList<FanControlMode>({ constant, constant }));
}

void FansTableTest::aMachineWithFansHasNoMessage()
{
    const FansBench bench;
    QVERIFY(bench.overlay() == nullptr);
}

void FansTableTest::aMachineWithoutFansSaysWhy_data()
{
    QTest::addColumn<bool>("isPassive");
    QTest::addColumn<QString>("start");
    QTest::newRow("no fans found")
        << false << QStringLiteral("No fans detected, please try to <a href=\"");
    QTest::newRow("passive") << true
                             << QStringLiteral(
                                    "This computer does not have any fans and is cooled passively");
}

void FansTableTest::aMachineWithoutFansSaysWhy()
{
    QFETCH(bool, isPassive);
    QFETCH(QString, start);
    const FansBench bench(0, isPassive);

    QCOMPARE(bench.rows(), 0);
    const QLabel* const overlay = bench.overlay();
    QVERIFY(overlay != nullptr && overlay->isVisible());
    QVERIFY(overlay->text().startsWith(start));
    QVERIFY(overlay->openExternalLinks());
    QVERIFY(overlay->textInteractionFlags().testFlag(Qt::LinksAccessibleByKeyboard));
    QCOMPARE(overlay->alignment(), Qt::Alignment(Qt::AlignCenter));
    QCOMPARE(int(overlay->font().weight()), 75);
    QVERIFY(overlay->testAttribute(Qt::WA_TranslucentBackground));
}

void FansTableTest::theMessageStaysInTheMiddle()
{
    FansBench bench(0);
    for (const QSize size : { QSize(600, 300), QSize(811, 203) }) {
        bench.table.resize(size);
        QCoreApplication::processEvents();
        const QRect place = bench.overlay()->geometry();
        QCOMPARE(place.size(), QSize(size.width(), 40));
        QCOMPARE(place.topLeft(),
                 bench.table.rect().center() - QRect(QPoint(), place.size()).center());
    }
}

void FansTableTest::theMessageIsReadableOnTheTable_data()
{
    QTest::addColumn<QColor>("base");
    QTest::addColumn<QString>("style");
    QTest::newRow("light") << QColor(Qt::white) << QStringLiteral("QLabel { color : #293956; }");
    QTest::newRow("dark") << QColor(18, 18, 18) << QStringLiteral("QLabel { color : #ffffff; }");
}

void FansTableTest::theMessageIsReadableOnTheTable()
{
    QFETCH(QColor, base);
    EngineMachine machine;
    machine.removeFans();
    machine.load();
    QTableViewFans table;
    QPalette colors = table.palette();
    colors.setColor(QPalette::Base, base);
    table.setPalette(colors);

    table.initialize(*machine.engine, false);

    QTEST(table.findChild<QLabel*>(QStringLiteral("labelNoFans"))->styleSheet(), "style");
}

void FansTableTest::theMessageFollowsTheLanguage()
{
    FansBench bench(0, true);
    m_texts->translate("<MainWindow><messageNoFansAvailable>**Kein** "
                       "Lüfter</messageNoFansAvailable></MainWindow>");
    bench.table.translate();
    QCOMPARE(bench.overlay()->text(), QStringLiteral("<b>Kein</b> Lüfter"));
}

void FansTableTest::rowsCannotBeSelected()
{
    FansBench bench;
    QTest::mouseClick(bench.table.viewport(), Qt::LeftButton, {},
                      bench.table.visualRect(bench.table.model()->index(1, 0)).center());
    bench.table.selectAll();
    QVERIFY(!bench.table.selectionModel()->hasSelection());
}

void FansTableTest::tabGoesThroughTheRows()
{
    // What comes after the table in the window was there before its rows.
    QWidget window;
    auto* const layout = new QVBoxLayout(&window);
    auto* const table = new QTableViewFans(&window);
    auto* const after = new QLineEdit(&window);
    after->setFocusPolicy(Qt::StrongFocus);
    layout->addWidget(table);
    layout->addWidget(after);
    EngineMachine machine;
    machine.load();
    table->initialize(*machine.engine, false);
    table->getControlCell(0)->showMode(automatic);
    table->getControlCell(1)->showMode(constant);
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    table->setFocus();

    const auto fanWithFocus = [table] {
        QWidget* const focus = QApplication::focusWidget();
        return table->getControlCell(0)->isAncestorOf(focus) ? 0
            : table->getControlCell(1)->isAncestorOf(focus)  ? 1
                                                             : -1;
    };
    QList<int> visited;
    for (int step = 0; step < 10 && !after->hasFocus(); ++step) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        if (!visited.endsWith(fanWithFocus())) {
            visited.append(fanWithFocus());
        }
    }

    QVERIFY(after->hasFocus());
    QCOMPARE(visited, QList<int>({ 0, 1, -1 }));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab, Qt::ShiftModifier);
    QCOMPARE(fanWithFocus(), 1);
}

void FansTableTest::controlsAreNamedAfterTheirFans()
{
    const FansBench bench;
    const QString name = bench.machine.engine->getFans()[1].name();
    QCOMPARE(bench.table.getControlCell(1)->accessibleName(), name);
    QCOMPARE(bench.table.getRpmCell(1)->accessibleDescription(), name);
}

void FansTableTest::theDecorationShowsInItsSeason_data()
{
    QTest::addColumn<QDate>("today");
    QTest::addColumn<bool>("isShown");
    QTest::newRow("23 December") << QDate(2026, 12, 23) << false;
    QTest::newRow("31 December") << QDate(2026, 12, 31) << true;
    QTest::newRow("1 January") << QDate(2027, 1, 1) << false;
}

void FansTableTest::theDecorationShowsInItsSeason()
{
    QFETCH(QDate, today);
    QFETCH(bool, isShown);
    const auto picture = [](const QDate& date) {
        QTableViewFans table(nullptr, [date] { return date; });
        table.resize(500, 300);
        return table.grab().toImage();
    };
    QCOMPARE(picture(today) != picture(QDate(2026, 6, 1)), isShown);
}

BRISORA_TEST_MAIN(FansTableTest, QApplication)

#include "test_fanstable.moc"
