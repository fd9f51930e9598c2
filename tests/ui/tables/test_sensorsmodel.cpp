#include <cmath>
#include <limits>
#include <memory>

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QPixmap>
#include <QSettings>
#include <QtTest>

#include "app/settingskeys.h"
#include "app/ui/tables/qtableviewsensorsmodel.h"
#include "app/ui/typeicons.h"
#include "core/widgets/widgethelpers.h"
#include "tests/support/interfacetexts.h"
#include "tests/support/testenvironment.h"
#include "tests/ui/tables/tablesprocess.h"

namespace {

// The sensors 7 and 8, a separator, and the drive 9, under a clock that the test
// moves; degrees Celsius, rounded.
class Sensors {
public:
    Sensors()
        : settings(std::make_unique<QSettings>(m_folder.filePath(QStringLiteral("settings.ini")),
                                               QSettings::IniFormat))
        , model(nullptr, [this] { return now; })
    {
        settings.setInt(SettingsKeys::fahrenheit, 0);
        model.setSettings(settings);
        model.addRow(7, QStringLiteral("Ambient"), icon);
        model.addRow(8, QStringLiteral("CPU"), icon);
        model.addRow(QTableViewSensorsModel::separatorId, QStringLiteral("separator"), {});
        model.addRow(9, QStringLiteral("Disk"), icon);
    }

    [[nodiscard]] QVariant data(int row, int column, int role = Qt::DisplayRole) const
    {
        return model.index(row, column).data(role);
    }
    [[nodiscard]] QString value(int row) const { return data(row, 1).toString(); }
    [[nodiscard]] bool isGrey(int row) const
    {
        const QVariant color = data(row, 1, Qt::ForegroundRole);
        return color.isValid() && color.value<QColor>() == QColor(128, 128, 128, 255);
    }

private:
    QTemporaryDir m_folder;

public:
    QSettingsCache settings;
    QDateTime now { QDate(2026, 3, 1), QTime(12, 0), Qt::UTC };
    const QIcon icon = transparentIcon(10);
    QTableViewSensorsModel model;
    QAbstractItemModelTester tester { &model,
                                      QAbstractItemModelTester::FailureReportingMode::QtTest };
};

// The cells that views were told of, in order, as "row:column".
class ToldCells {
public:
    explicit ToldCells(const QAbstractItemModel& model)
        : m_changed(&model, &QAbstractItemModel::dataChanged)
    {
    }

    [[nodiscard]] QStringList take()
    {
        QStringList cells;
        for (const auto& arguments : std::as_const(m_changed)) {
            const auto first = arguments[0].toModelIndex();
            const auto last = arguments[1].toModelIndex();
            cells.append(QStringLiteral("%1:%2").arg(first.row()).arg(first.column()));
            if (first != last) {
                cells.append(QStringLiteral("to %1:%2").arg(last.row()).arg(last.column()));
            }
        }
        m_changed.clear();
        return cells;
    }

private:
    QSignalSpy m_changed;
};

QStringList cells(std::initializer_list<const char*> names)
{
    QStringList result;
    for (const char* name : names) {
        result.append(QString::fromLatin1(name));
    }
    return result;
}

} // namespace

class SensorsModelTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        prepareTablesProcess();
        m_texts = std::make_unique<InterfaceTexts>();
    }
    void cleanup() { m_texts->useEnglish(); }

    void sensorsShowTheirNamesAndIcons();
    void theSeparatorNamesTheDrives();
    void theSeparatorIsDisabled();
    void aNullIconBecomesATransparentOne();
    void aRowThatIsGoneHasNoData();
    void columnsHaveTitles_data();
    void columnsHaveTitles();
    void textsStandAtTheirPlaces();
    void valuesAreShown_data();
    void valuesAreShown();
    void withoutSettingsValuesAreWholeCelsius();
    void aChangedSettingShowsTheStoredValues();
    void anUpdateChangesItsRowOnly();
    void anUpdateOfAnUnknownSensorChangesNothing_data();
    void anUpdateOfAnUnknownSensorChangesNothing();
    void theSameTextIsNotToldAgain();
    void aValueTurnsGreyAfterFiveSeconds_data();
    void aValueTurnsGreyAfterFiveSeconds();
    void aValueNeverReadIsNotGrey();
    void anUpdateTakesTheGreyAway();
    void anUpdateTellsOfOthersThatHaveTurnedGrey();
    void loadingPutsASeparatorBeforeTheFirstDrive();
    void loadingWithoutDrivesHasNoSeparator();
    void loadingReplacesWhatWasThere();
    void clearingResets();
    void newTextsAreAnnounced();

private:
    std::unique_ptr<InterfaceTexts> m_texts;
};

void SensorsModelTest::sensorsShowTheirNamesAndIcons()
{
    const Sensors sensors;
    QCOMPARE(sensors.model.rowCount(), 4);
    QCOMPARE(sensors.model.columnCount(), 2);
    QCOMPARE(sensors.data(0, 0), QVariant(QStringLiteral("Ambient")));
    QCOMPARE(sensors.data(3, 0), QVariant(QStringLiteral("Disk")));
    QCOMPARE(sensors.data(0, 0, Qt::DecorationRole).value<QIcon>().cacheKey(),
             sensors.icon.cacheKey());
    QVERIFY(!sensors.data(0, 1, Qt::DecorationRole).isValid());
    QVERIFY(!sensors.data(0, 0, Qt::FontRole).isValid());
    QVERIFY(!sensors.data(0, 0, Qt::ToolTipRole).isValid());
    QCOMPARE(sensors.model.flags(sensors.model.index(0, 0)), Qt::ItemFlags(Qt::ItemIsEnabled));
    QCOMPARE(sensors.model.flags(sensors.model.index(0, 1)), Qt::ItemFlags(Qt::ItemIsEnabled));
}

void SensorsModelTest::theSeparatorNamesTheDrives()
{
    Sensors sensors;
    QFont font;
    font.setPointSize(5);
    sensors.model.setSeparatorFont(font);

    QCOMPARE(sensors.data(2, 0), QVariant(QStringLiteral("Disk Drives:")));
    QVERIFY(!sensors.data(2, 1).isValid());
    QCOMPARE(sensors.data(2, 0, Qt::FontRole).value<QFont>().pointSize(), 5);
    QVERIFY(!sensors.data(2, 1, Qt::FontRole).isValid());
    QVERIFY(!sensors.data(2, 1, Qt::ForegroundRole).isValid());
    for (const int column : { 0, 1 }) {
        const auto pixmap = sensors.data(2, column, Qt::DecorationRole).value<QPixmap>();
        QCOMPARE(pixmap.size(), QSize(scaled(16), scaled(16)));
        QCOMPARE(pixmap.toImage().pixelColor(8, 8).alpha(), 0);
    }
}

void SensorsModelTest::theSeparatorIsDisabled()
{
    const Sensors sensors;
    QCOMPARE(sensors.model.flags(sensors.model.index(2, 0)), Qt::ItemFlags(Qt::NoItemFlags));
    QCOMPARE(sensors.model.flags(sensors.model.index(2, 1)), Qt::ItemFlags(Qt::NoItemFlags));
}

void SensorsModelTest::aNullIconBecomesATransparentOne()
{
    Sensors sensors;
    sensors.model.addRow(10, QStringLiteral("Bare"), QIcon());
    const auto icon = sensors.data(4, 0, Qt::DecorationRole).value<QIcon>();
    QCOMPARE(icon.availableSizes(), QList<QSize>({ QSize(16, 16) }));
    QCOMPARE(icon.pixmap(16, 16).toImage().pixelColor(8, 8).alpha(), 0);
}

void SensorsModelTest::aRowThatIsGoneHasNoData()
{
    Sensors sensors;
    const QModelIndex old = sensors.model.index(3, 0);
    sensors.model.clear();
    for (const int role : { Qt::DisplayRole, Qt::DecorationRole, Qt::FontRole,
                            Qt::TextAlignmentRole, Qt::ForegroundRole }) {
        QVERIFY(!sensors.model.data(old, role).isValid());
        QVERIFY(!sensors.model.data(QModelIndex(), role).isValid());
    }
    QCOMPARE(sensors.model.flags(old), Qt::ItemFlags(Qt::NoItemFlags));
}

void SensorsModelTest::columnsHaveTitles_data()
{
    QTest::addColumn<int>("fahrenheit");
    QTest::addColumn<int>("column");
    QTest::addColumn<QVariant>("title");
    QTest::newRow("sensor") << 0 << 0 << QVariant(QStringLiteral("Sensor"));
    QTest::newRow("Celsius") << 0 << 1 << QVariant(QStringLiteral("Value °C"));
    QTest::newRow("Fahrenheit") << 1 << 1 << QVariant(QStringLiteral("Value °F"));
    QTest::newRow("none") << 0 << 2 << QVariant();
}

void SensorsModelTest::columnsHaveTitles()
{
    QFETCH(int, fahrenheit);
    QFETCH(int, column);
    Sensors sensors;
    sensors.settings.setInt(SettingsKeys::fahrenheit, fahrenheit);
    QTEST(sensors.model.headerData(column, Qt::Horizontal), "title");
    QVERIFY(!sensors.model.headerData(column, Qt::Vertical).isValid());
    QVERIFY(!sensors.model.headerData(column, Qt::Horizontal, Qt::ToolTipRole).isValid());
}

void SensorsModelTest::textsStandAtTheirPlaces()
{
    const Sensors sensors;
    for (int row = 0; row < 4; ++row) {
        QCOMPARE(sensors.data(row, 0, Qt::TextAlignmentRole).toInt(),
                 int(Qt::AlignLeft | Qt::AlignVCenter));
        QCOMPARE(sensors.data(row, 1, Qt::TextAlignmentRole).toInt(),
                 int(Qt::AlignHCenter | Qt::AlignVCenter));
    }
}

void SensorsModelTest::valuesAreShown_data()
{
    QTest::addColumn<int>("fahrenheit");
    QTest::addColumn<int>("precise");
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("text");
    const auto row
        = [](const char* name, int fahrenheit, int precise, double value, const char* text) {
              QTest::newRow(name) << fahrenheit << precise << value << QString::fromLatin1(text);
          };
    row("precise Celsius", 0, 1, 45.44, "45.4");
    row("Celsius, half up", 0, 0, 45.5, "46");
    row("Celsius, down", 0, 0, 45.44, "45");
    row("Fahrenheit", 1, 0, 100.0, "212");
    row("precise Fahrenheit", 1, 1, 100.0, "212.0");
    row("Fahrenheit is rounded last", 1, 0, 45.44, "114"); // 113.79
    row("0 in Celsius", 0, 0, 0.0, "-");
    row("precise 0 in Celsius", 0, 1, 0.0, "-");
    row("0 in Fahrenheit", 1, 0, 0.0, "-");
    row("precise 0 in Fahrenheit", 1, 1, 0.0, "-");
    row("negative zero", 0, 0, -0.0, "-");
    row("just above 0", 0, 0, 0.1, "0");
    row("precise, just above 0", 0, 1, 0.1, "0.1");
    row("below 0", 0, 0, -0.5, "");
    row("below 0 in Fahrenheit", 1, 1, -10.0, "");
    row("very high", 0, 0, 1234567.0, "1.23457e+06");
    row("no number", 0, 0, std::numeric_limits<double>::quiet_NaN(), "");
    row("endless", 1, 1, std::numeric_limits<double>::infinity(), "");
    row("endless below", 0, 0, -std::numeric_limits<double>::infinity(), "");
}

void SensorsModelTest::valuesAreShown()
{
    QFETCH(int, fahrenheit);
    QFETCH(int, precise);
    QFETCH(double, value);
    Sensors sensors;
    sensors.settings.setInt(SettingsKeys::fahrenheit, fahrenheit);
    sensors.settings.setInt(SettingsKeys::preciseTemperature, precise);
    QCOMPARE(sensors.value(1), QString());

    sensors.model.update(8, value);

    QTEST(sensors.value(1), "text");
}

void SensorsModelTest::withoutSettingsValuesAreWholeCelsius()
{
    QTableViewSensorsModel model;
    model.addRow(1, QStringLiteral("Ambient"), {});
    model.update(1, 45.44);
    QCOMPARE(model.index(0, 1).data().toString(), QStringLiteral("45"));
    QCOMPARE(model.headerData(1, Qt::Horizontal).toString(), QStringLiteral("Value"));
}

void SensorsModelTest::aChangedSettingShowsTheStoredValues()
{
    Sensors sensors;
    sensors.model.update(7, 45.44);
    QCOMPARE(sensors.value(0), QStringLiteral("45"));
    sensors.settings.setInt(SettingsKeys::preciseTemperature, 1);
    QCOMPARE(sensors.value(0), QStringLiteral("45.4"));
    sensors.settings.setInt(SettingsKeys::fahrenheit, 1);
    QCOMPARE(sensors.value(0), QStringLiteral("113.8"));
}

void SensorsModelTest::anUpdateChangesItsRowOnly()
{
    Sensors sensors;
    ToldCells told(sensors.model);

    sensors.model.update(9, 33.0);

    QCOMPARE(sensors.value(3), QStringLiteral("33"));
    QCOMPARE(sensors.value(0), QString());
    QCOMPARE(told.take(), cells({ "3:1" }));
}

void SensorsModelTest::anUpdateOfAnUnknownSensorChangesNothing_data()
{
    QTest::addColumn<uint>("id");
    QTest::newRow("another sensor") << 6U;
    QTest::newRow("the separator") << std::numeric_limits<uint>::max();
}

void SensorsModelTest::anUpdateOfAnUnknownSensorChangesNothing()
{
    QFETCH(uint, id);
    Sensors sensors;
    sensors.model.update(7, 40.0);
    ToldCells told(sensors.model);

    sensors.model.update(id, 50.0);

    QCOMPARE(told.take(), QStringList());
    QCOMPARE(sensors.value(0), QStringLiteral("40"));
    QCOMPARE(sensors.value(1), QString());
    QVERIFY(!sensors.data(2, 1).isValid());
}

void SensorsModelTest::theSameTextIsNotToldAgain()
{
    Sensors sensors;
    sensors.model.update(7, 40.0);
    ToldCells told(sensors.model);

    sensors.model.update(7, 40.0);
    sensors.model.update(7, 40.3);
    QCOMPARE(told.take(), QStringList());
    sensors.model.update(7, 40.5);
    QCOMPARE(told.take(), cells({ "0:1" }));

    sensors.settings.setInt(SettingsKeys::preciseTemperature, 1);
    sensors.model.update(7, 40.6);
    QCOMPARE(told.take(), cells({ "0:1" }));
}

void SensorsModelTest::aValueTurnsGreyAfterFiveSeconds_data()
{
    QTest::addColumn<int>("milliseconds");
    QTest::addColumn<bool>("isGrey");
    QTest::newRow("at once") << 0 << false;
    QTest::newRow("exactly five seconds") << 5000 << false;
    QTest::newRow("later") << 5001 << true;
    QTest::newRow("much later") << 3600000 << true;
    QTest::newRow("a clock set back") << -3600000 << false;
}

void SensorsModelTest::aValueTurnsGreyAfterFiveSeconds()
{
    QFETCH(int, milliseconds);
    Sensors sensors;
    sensors.model.update(7, 40.0);
    sensors.now = sensors.now.addMSecs(milliseconds);
    QTEST(sensors.isGrey(0), "isGrey");
    QVERIFY(!sensors.data(0, 0, Qt::ForegroundRole).isValid());
}

void SensorsModelTest::aValueNeverReadIsNotGrey()
{
    Sensors sensors;
    sensors.now = sensors.now.addDays(1);
    QVERIFY(!sensors.data(0, 1, Qt::ForegroundRole).isValid());
    QVERIFY(!sensors.data(2, 1, Qt::ForegroundRole).isValid());
}

void SensorsModelTest::anUpdateTakesTheGreyAway()
{
    Sensors sensors;
    sensors.model.update(7, 40.0);
    ToldCells told(sensors.model);
    sensors.now = sensors.now.addSecs(6);
    QVERIFY(sensors.isGrey(0));

    // A view may have painted the grey of its own accord.
    sensors.model.update(7, 40.0);
    QVERIFY(!sensors.isGrey(0));
    QCOMPARE(told.take(), cells({ "0:1" }));

    sensors.model.update(7, 40.0);
    QCOMPARE(told.take(), QStringList());
}

void SensorsModelTest::anUpdateTellsOfOthersThatHaveTurnedGrey()
{
    Sensors sensors;
    sensors.model.update(7, 40.0);
    sensors.model.update(9, 30.0);
    sensors.now = sensors.now.addSecs(4);
    sensors.model.update(8, 50.0);
    ToldCells told(sensors.model);

    sensors.now = sensors.now.addSecs(1);
    sensors.model.update(8, 50.0);
    QCOMPARE(told.take(), QStringList());

    sensors.now = sensors.now.addMSecs(1);
    sensors.model.update(8, 51.0);
    QCOMPARE(told.take(), cells({ "1:1", "0:1", "3:1" }));

    // Once is enough.
    sensors.now = sensors.now.addSecs(1);
    sensors.model.update(8, 51.0);
    QCOMPARE(told.take(), QStringList());

    // Back again, and grey again.
    sensors.model.update(9, 30.0);
    QCOMPARE(told.take(), cells({ "3:1" }));
    sensors.now = sensors.now.addSecs(6);
    sensors.model.update(8, 51.0);
    QCOMPARE(told.take(), cells({ "1:1", "3:1" }));
}

void SensorsModelTest::loadingPutsASeparatorBeforeTheFirstDrive()
{
    EngineMachine machine(QStringLiteral("iMacPro1,1"));
    machine.smc->setTemperature("TH0A", 40.0);
    machine.smc->setTemperature("TH1A", 40.0);
    machine.load();
    QTableViewSensorsModel model;
    QSignalSpy layout(&model, &QTableViewSensorsModel::layoutChanged);

    model.load(*machine.engine->sensorProvider());

    QVERIFY(layout.count() > 0);
    QStringList names;
    for (int row = 0; row < model.rowCount(); ++row) {
        names.append(model.index(row, 0).data().toString());
    }
    QCOMPARE(names.size(), 6);
    QCOMPARE(names.mid(3),
             QStringList({ QStringLiteral("Disk Drives:"), QStringLiteral("SSD A"),
                           QStringLiteral("SSD B") }));
    QCOMPARE(model.flags(model.index(3, 0)), Qt::ItemFlags(Qt::NoItemFlags));

    const auto* const drive = machine.sensor("TH1A");
    QCOMPARE(model.index(5, 0).data(Qt::DecorationRole).value<QIcon>().availableSizes(),
             sensorIcon(drive->type()).availableSizes());
    model.update(drive->id(), 38.0);
    QCOMPARE(model.index(5, 1).data().toString(), QStringLiteral("38"));
}

void SensorsModelTest::loadingWithoutDrivesHasNoSeparator()
{
    EngineMachine machine;
    machine.load();
    QTableViewSensorsModel model;

    model.load(*machine.engine->sensorProvider());

    QCOMPARE(model.rowCount(), 3);
    for (int row = 0; row < 3; ++row) {
        QCOMPARE(model.flags(model.index(row, 0)), Qt::ItemFlags(Qt::ItemIsEnabled));
    }
}

void SensorsModelTest::loadingReplacesWhatWasThere()
{
    EngineMachine machine;
    machine.load();
    Sensors sensors;
    sensors.model.update(7, 40.0);

    sensors.model.load(*machine.engine->sensorProvider());
    sensors.model.load(*machine.engine->sensorProvider());

    QCOMPARE(sensors.model.rowCount(), 3);
    QCOMPARE(sensors.value(0), QString());
}

void SensorsModelTest::clearingResets()
{
    Sensors sensors;
    QSignalSpy reset(&sensors.model, &QTableViewSensorsModel::modelReset);
    sensors.model.clear();
    QCOMPARE(reset.count(), 1);
    QCOMPARE(sensors.model.rowCount(), 0);
}

void SensorsModelTest::newTextsAreAnnounced()
{
    Sensors sensors;
    QSignalSpy layout(&sensors.model, &QTableViewSensorsModel::layoutChanged);
    QSignalSpy header(&sensors.model, &QTableViewSensorsModel::headerDataChanged);
    m_texts->translate("<MainWindow><listColumnSensorValue>Wert</listColumnSensorValue>"
                       "<listSeparatorDrives>Laufwerke:</listSeparatorDrives></MainWindow>");

    sensors.model.refresh();

    QCOMPARE(layout.count(), 1);
    QCOMPARE(header.count(), 1);
    QCOMPARE(sensors.model.headerData(1, Qt::Horizontal).toString(), QStringLiteral("Wert °C"));
    QCOMPARE(sensors.data(2, 0).toString(), QStringLiteral("Laufwerke:"));
}

BRISORA_TEST_MAIN(SensorsModelTest, QApplication)

#include "test_sensorsmodel.moc"
