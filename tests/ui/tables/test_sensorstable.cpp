#include <memory>

#include <QApplication>
#include <QHeaderView>
#include <QItemDelegate>
#include <QScrollBar>
#include <QtTest>

#include "app/settingskeys.h"
#include "app/ui/tables/qtableviewsensors.h"
#include "app/ui/tables/qtableviewsensorsmodel.h"
#include "core/widgets/nodrawfocusdelegate.h"
#include "core/widgets/widgethelpers.h"
#include "tests/support/interfacetexts.h"
#include "tests/support/testenvironment.h"
#include "tests/ui/tables/tablesprocess.h"

namespace {

// The table of a machine with the sensors "Ambient", "CPU Proximity", "GPU
// Proximity" and, below the separator, "Apple SSD".
class SensorsBench {
public:
    SensorsBench()
        : table(nullptr, &QDate::currentDate, [this] { return now; })
    {
        machine.settings.setInt(SettingsKeys::fahrenheit, 0);
        machine.smc->setTemperature("TH0A", 40.0);
        machine.load();
        table.resize(240, 300);
        table.setSettings(machine.settings);
        table.load(provider());
    }

    [[nodiscard]] const TemperatureSensorProvider& provider() const
    {
        return *machine.engine->sensorProvider();
    }
    [[nodiscard]] QStringList names() const { return column(0); }
    [[nodiscard]] QStringList values() const { return column(1); }
    void update(const char* key, double value) { table.update(machine.sensor(key)->id(), value); }
    [[nodiscard]] QString valueTitle() const
    {
        return table.model()->headerData(1, Qt::Horizontal).toString();
    }
    [[nodiscard]] int titleWidth() const
    {
        return table.horizontalHeader()->fontMetrics().horizontalAdvance(valueTitle());
    }
    // Whether the columns share the table as they should.
    [[nodiscard]] bool columnsFit() const
    {
        const auto* const bar = table.verticalScrollBar();
        const int barWidth = bar->isVisible() ? bar->width() : 0;
        return table.columnWidth(0) == table.width() - (titleWidth() + 20) - barWidth
            && table.columnWidth(0) + table.columnWidth(1) == table.viewport()->width()
            && table.columnWidth(1) > titleWidth();
    }

    EngineMachine machine;
    QDateTime now { QDate(2026, 3, 1), QTime(12, 0), Qt::UTC };
    QTableViewSensors table;

private:
    [[nodiscard]] QStringList column(int index) const
    {
        QStringList texts;
        for (int row = 0; row < table.model()->rowCount(); ++row) {
            texts.append(table.model()->index(row, index).data().toString());
        }
        return texts;
    }
};

} // namespace

class SensorsTableTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        prepareTablesProcess();
        m_texts = std::make_unique<InterfaceTexts>();
    }
    void cleanup() { m_texts->useEnglish(); }

    void itLooksLikeAListOfSensors();
    void itShowsTheProvidersSensors();
    void valuesComeByUpdates();
    void theSeparatorHasASmallerFont();
    void theSeparatorCannotBeSelected();
    void aReloadStartsAfresh();
    void columnsShareTheWidth_data();
    void columnsShareTheWidth();
    void columnsMakeRoomForTheScrollBar();
    void preferencesChangeValuesAndTitle();
    void textsFollowTheLanguage();
    void onlyChangedCellsArePainted();
    void aStoppedValueIsPaintedGrey();
    void theDecorationShowsInItsSeason_data();
    void theDecorationShowsInItsSeason();

private:
    std::unique_ptr<InterfaceTexts> m_texts;
};

void SensorsTableTest::itLooksLikeAListOfSensors()
{
    const SensorsBench bench;
    const QTableViewSensors& table = bench.table;
    QCOMPARE(table.rowHeight(0), scaled(18));
    QCOMPARE(table.rowHeight(3), scaled(18));
    QVERIFY(table.verticalHeader()->isHidden());
    QCOMPARE(table.verticalHeader()->defaultSectionSize(), scaled(18));
    QCOMPARE(table.verticalHeader()->sectionResizeMode(0), QHeaderView::Fixed);
    QVERIFY(!table.horizontalHeader()->sectionsClickable());
    QCOMPARE(table.horizontalHeader()->sectionResizeMode(1), QHeaderView::Stretch);
    QCOMPARE(table.selectionBehavior(), QAbstractItemView::SelectRows);
    QCOMPARE(table.selectionMode(), QAbstractItemView::SingleSelection);
    QCOMPARE(table.horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    QVERIFY(!table.showGrid());
    QVERIFY(!table.wordWrap());
    QVERIFY(!table.isCornerButtonEnabled());
    QVERIFY(table.alternatingRowColors());
    QVERIFY(dynamic_cast<Widgets::NoDrawFocusDelegate<QItemDelegate>*>(table.itemDelegate())
            != nullptr);
}

void SensorsTableTest::itShowsTheProvidersSensors()
{
    const SensorsBench bench;
    QCOMPARE(bench.names(),
             QStringList({ QStringLiteral("Ambient"), QStringLiteral("CPU Proximity"),
                           QStringLiteral("GPU Proximity"), QStringLiteral("Disk Drives:"),
                           QStringLiteral("Apple SSD") }));
    QCOMPARE(bench.values().join(QString()), QString());
}

void SensorsTableTest::valuesComeByUpdates()
{
    SensorsBench bench;
    bench.update("TC0P", 55.4);
    bench.update("TH0A", 40.0);
    bench.table.update(bench.machine.sensor("TH0A")->id() + 1000, 99.0);
    QCOMPARE(bench.values(),
             QStringList(
                 { QString(), QStringLiteral("55"), QString(), QString(), QStringLiteral("40") }));
}

void SensorsTableTest::theSeparatorHasASmallerFont()
{
    EngineMachine machine;
    machine.smc->setTemperature("TH0A", 40.0);
    machine.load();
    QTableViewSensors table;
    QFont font = table.font();
    font.setPointSize(13);
    table.setFont(font);

    table.load(*machine.engine->sensorProvider());

    QCOMPARE(table.model()->index(3, 0).data(Qt::FontRole).value<QFont>().pointSize(), 12);
}

void SensorsTableTest::theSeparatorCannotBeSelected()
{
    SensorsBench bench;
    bench.table.show();
    const QModelIndex separator = bench.table.model()->index(3, 0);
    QTest::mouseClick(bench.table.viewport(), Qt::LeftButton, {},
                      bench.table.visualRect(separator).center());
    bench.table.selectAll();
    QVERIFY(!bench.table.selectionModel()->hasSelection());
    QVERIFY(bench.table.currentIndex() != separator);
}

void SensorsTableTest::aReloadStartsAfresh()
{
    SensorsBench bench;
    bench.update("TC0P", 55.0);
    QSignalSpy reset(bench.table.model(), &QAbstractItemModel::modelReset);

    bench.table.clear();
    QCOMPARE(reset.count(), 1);
    QCOMPARE(bench.names(), QStringList());

    bench.table.load(bench.provider());
    QCOMPARE(bench.names().size(), 5);
    QCOMPARE(bench.values().join(QString()), QString());
    bench.update("TC0P", 56.0);
    QCOMPARE(bench.values()[1], QStringLiteral("56"));
}

void SensorsTableTest::columnsShareTheWidth_data()
{
    QTest::addColumn<int>("width");
    QTest::newRow("usual") << 240;
    QTest::newRow("wide") << 700;
    QTest::newRow("narrow") << 170;
}

void SensorsTableTest::columnsShareTheWidth()
{
    QFETCH(int, width);
    SensorsBench bench;
    bench.table.show();
    bench.table.resize(width, 400);
    QCoreApplication::processEvents();
    QVERIFY(!bench.table.verticalScrollBar()->isVisible());
    QVERIFY(bench.columnsFit());
}

void SensorsTableTest::columnsMakeRoomForTheScrollBar()
{
    SensorsBench bench;
    bench.table.show();
    bench.table.resize(240, 70);
    QTRY_VERIFY(bench.table.verticalScrollBar()->isVisible());
    QTRY_VERIFY(bench.columnsFit());

    bench.table.resize(240, 400);
    QTRY_VERIFY(!bench.table.verticalScrollBar()->isVisible());
    QTRY_VERIFY(bench.columnsFit());
}

void SensorsTableTest::preferencesChangeValuesAndTitle()
{
    SensorsBench bench;
    bench.table.show();
    bench.update("TC0P", 100.0);
    QSignalSpy layout(bench.table.model(), &QAbstractItemModel::layoutChanged);
    bench.machine.settings.setInt(SettingsKeys::fahrenheit, 1);
    bench.machine.settings.setInt(SettingsKeys::preciseTemperature, 1);

    bench.table.slotUpdatePreferences();

    QCOMPARE(layout.count(), 1);
    QCOMPARE(bench.values()[1], QStringLiteral("212.0"));
    QCOMPARE(bench.valueTitle(), QStringLiteral("Value °F"));
}

void SensorsTableTest::textsFollowTheLanguage()
{
    SensorsBench bench;
    bench.table.show();
    // With room for the other column as well.
    bench.table.resize(400, 200);
    const int before = bench.table.columnWidth(1);
    m_texts->translate("<MainWindow><listColumnSensorValue>Gegenwärtiger "
                       "Wert</listColumnSensorValue></MainWindow>");

    bench.table.slotUpdatePreferences();

    QTRY_VERIFY(bench.table.columnWidth(1) > before);
    QVERIFY(bench.columnsFit());
}

void SensorsTableTest::onlyChangedCellsArePainted()
{
    // What is painted is seen by what the delegate is asked for.
    class Recorder final : public QItemDelegate {
    public:
        void paint(QPainter* painter, const QStyleOptionViewItem& option,
                   const QModelIndex& index) const override
        {
            painted.append(QStringLiteral("%1:%2").arg(index.row()).arg(index.column()));
            QItemDelegate::paint(painter, option, index);
        }
        mutable QStringList painted;
    };
    SensorsBench bench;
    Recorder recorder;
    bench.table.setItemDelegate(&recorder);
    bench.table.show();
    QVERIFY(QTest::qWaitForWindowExposed(&bench.table));
    QTRY_VERIFY(recorder.painted.contains(QStringLiteral("4:1")));
    QCoreApplication::processEvents();
    recorder.painted.clear();

    bench.update("TC0P", 55.0);
    QTRY_COMPARE(recorder.painted, QStringList({ QStringLiteral("1:1") }));

    recorder.painted.clear();
    bench.update("TC0P", 55.2);
    QCoreApplication::processEvents();
    QCOMPARE(recorder.painted, QStringList());
}

void SensorsTableTest::aStoppedValueIsPaintedGrey()
{
    SensorsBench bench;
    bench.table.show();
    const auto hasGrey = [&bench] {
        const QRect cell = bench.table.visualRect(bench.table.model()->index(1, 1));
        const QImage image = bench.table.viewport()->grab(cell).toImage();
        const QColor base = bench.table.palette().color(QPalette::Text);
        bool isGrey = false;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (image.pixelColor(x, y) == base) {
                    return false;
                }
                isGrey = isGrey || image.pixelColor(x, y) == QColor(128, 128, 128);
            }
        }
        return isGrey;
    };
    bench.update("TC0P", 44.0);
    QVERIFY(!hasGrey());

    bench.now = bench.now.addSecs(6);
    QVERIFY(hasGrey());
}

void SensorsTableTest::theDecorationShowsInItsSeason_data()
{
    QTest::addColumn<QDate>("today");
    QTest::addColumn<bool>("isShown");
    QTest::newRow("23 December") << QDate(2026, 12, 23) << false;
    QTest::newRow("31 December") << QDate(2026, 12, 31) << true;
    QTest::newRow("1 January") << QDate(2027, 1, 1) << false;
}

void SensorsTableTest::theDecorationShowsInItsSeason()
{
    QFETCH(QDate, today);
    QFETCH(bool, isShown);
    const auto picture = [](const QDate& date) {
        QTableViewSensors table(nullptr, [date] { return date; });
        table.resize(240, 300);
        return table.grab().toImage();
    };
    QCOMPARE(picture(today) != picture(QDate(2026, 6, 1)), isShown);
}

BRISORA_TEST_MAIN(SensorsTableTest, QApplication)

#include "test_sensorstable.moc"
