#include <memory>

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QtTest>

#include "app/ui/tables/qtableviewfansmodel.h"
#include "app/ui/typeicons.h"
#include "tests/support/interfacetexts.h"
#include "tests/support/testenvironment.h"
#include "tests/ui/tables/tablesprocess.h"

namespace {

// Two fans that have had no update.
class Fans {
public:
    Fans()
    {
        model.addRow(QStringLiteral("Left"), icon);
        model.addRow(QStringLiteral("Right"), icon);
    }

    [[nodiscard]] QVariant data(int row, int column, int role = Qt::DisplayRole) const
    {
        return model.index(row, column).data(role);
    }

    const QIcon icon = transparentIcon(32);
    QTableViewFansModel model;
    QAbstractItemModelTester tester { &model,
                                      QAbstractItemModelTester::FailureReportingMode::QtTest };
};

const FanControlMode constant = FanControlMode::constant(3000);

} // namespace

class FansModelTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        prepareTablesProcess();
        m_texts = std::make_unique<InterfaceTexts>();
    }
    void cleanup() { m_texts->useEnglish(); }

    void everyCellIsEnabledAndNoMore();
    void theFirstColumnShowsTheFan();
    void textsStandAtTheirPlaces_data();
    void textsStandAtTheirPlaces();
    void otherColumnsLeaveTheirContentsToTheCells();
    void aFanWithoutAnIconHasNoData();
    void aRowThatIsGoneHasNoData();
    void columnsHaveTitles_data();
    void columnsHaveTitles();
    void onlyTheTitlesAreInTheHeader();
    void anUpdateTellsOfTheSpeedsAndTheControl();
    void aNewModeIsToldFirst();
    void anUpdateWithoutNewsSaysNothing();
    void eachPartOfAnUpdateIsNews_data();
    void eachPartOfAnUpdateIsNews();
    void anUpdateOfAnUnknownFanChangesNothing();
    void equalLimitsHaveAWarning_data();
    void equalLimitsHaveAWarning();
    void clearingResets();
    void newTextsAreAnnounced();

private:
    std::unique_ptr<InterfaceTexts> m_texts;
};

void FansModelTest::everyCellIsEnabledAndNoMore()
{
    const Fans fans;
    QCOMPARE(fans.model.rowCount(), 2);
    QCOMPARE(fans.model.columnCount(), 3);
    for (int column = 0; column < 3; ++column) {
        QCOMPARE(fans.model.flags(fans.model.index(1, column)), Qt::ItemFlags(Qt::ItemIsEnabled));
    }
}

void FansModelTest::theFirstColumnShowsTheFan()
{
    const Fans fans;
    QCOMPARE(fans.data(0, 0), QVariant(QStringLiteral("Left")));
    QCOMPARE(fans.data(1, 0), QVariant(QStringLiteral("Right")));
    QCOMPARE(fans.data(1, 0, Qt::DecorationRole).value<QIcon>().cacheKey(), fans.icon.cacheKey());
}

void FansModelTest::textsStandAtTheirPlaces_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<int>("alignment");
    QTest::newRow("name") << 0 << int(Qt::AlignLeft | Qt::AlignVCenter);
    QTest::newRow("speeds") << 1 << int(Qt::AlignHCenter | Qt::AlignVCenter);
    QTest::newRow("control") << 2 << int(Qt::AlignHCenter | Qt::AlignVCenter);
}

void FansModelTest::textsStandAtTheirPlaces()
{
    QFETCH(int, column);
    const Fans fans;
    QTEST(fans.data(0, column, Qt::TextAlignmentRole).toInt(), "alignment");
}

void FansModelTest::otherColumnsLeaveTheirContentsToTheCells()
{
    Fans fans;
    fans.model.updateRow(0, 2000, 2500, 6000, constant);
    for (const int column : { 1, 2 }) {
        QVERIFY(!fans.data(0, column).isValid());
        QVERIFY(!fans.data(0, column, Qt::DecorationRole).isValid());
        QVERIFY(!fans.data(0, column, Qt::ToolTipRole).isValid());
    }
}

void FansModelTest::aFanWithoutAnIconHasNoData()
{
    Fans fans;
    fans.model.addRow(QStringLiteral("Bare"), QIcon());
    fans.model.updateRow(2, 2000, 2500, 2000, constant);
    for (int column = 0; column < 3; ++column) {
        for (const int role :
             { Qt::DisplayRole, Qt::DecorationRole, Qt::ToolTipRole, Qt::TextAlignmentRole }) {
            QVERIFY(!fans.data(2, column, role).isValid());
        }
    }
}

void FansModelTest::aRowThatIsGoneHasNoData()
{
    Fans fans;
    const QModelIndex old = fans.model.index(1, 0);
    QVERIFY(fans.model.data(old).isValid());
    fans.model.clear();
    QVERIFY(!fans.model.data(old).isValid());
    QVERIFY(!fans.model.data(old, Qt::TextAlignmentRole).isValid());
    QVERIFY(!fans.model.data(QModelIndex()).isValid());
}

void FansModelTest::columnsHaveTitles_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<QVariant>("title");
    QTest::newRow("fan") << 0 << QVariant(QStringLiteral("Fan"));
    QTest::newRow("speeds") << 1 << QVariant(QStringLiteral("Min/Current/Max RPM"));
    QTest::newRow("control") << 2 << QVariant(QStringLiteral("Control"));
    QTest::newRow("none") << 3 << QVariant();
}

void FansModelTest::columnsHaveTitles()
{
    QFETCH(int, column);
    const Fans fans;
    QTEST(fans.model.headerData(column, Qt::Horizontal), "title");
}

void FansModelTest::onlyTheTitlesAreInTheHeader()
{
    const Fans fans;
    QVERIFY(!fans.model.headerData(0, Qt::Vertical).isValid());
    QVERIFY(!fans.model.headerData(0, Qt::Horizontal, Qt::ToolTipRole).isValid());
}

void FansModelTest::anUpdateTellsOfTheSpeedsAndTheControl()
{
    Fans fans;
    QSignalSpy changed(&fans.model, &QTableViewFansModel::dataChanged);

    fans.model.updateRow(1, 2000, 2500, 6000, constant);

    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed[0][0].toModelIndex(), fans.model.index(1, 1));
    QCOMPARE(changed[0][1].toModelIndex(), fans.model.index(1, 2));
}

void FansModelTest::aNewModeIsToldFirst()
{
    Fans fans;
    QStringList told;
    connect(&fans.model, &QTableViewFansModel::modeChanged, this,
            [&told](uint8_t fan) { told.append(QStringLiteral("mode of %1").arg(fan)); });
    connect(&fans.model, &QTableViewFansModel::dataChanged, this,
            [&told] { told.append(QStringLiteral("data")); });

    fans.model.updateRow(1, 2000, 2500, 6000, constant);
    QCOMPARE(told, QStringList({ QStringLiteral("mode of 1"), QStringLiteral("data") }));

    fans.model.updateRow(1, 2000, 2600, 6000, constant);
    QCOMPARE(told.mid(2), QStringList({ QStringLiteral("data") }));
}

void FansModelTest::anUpdateWithoutNewsSaysNothing()
{
    Fans fans;
    fans.model.updateRow(0, 2000, 2500, 6000, constant);
    QSignalSpy changed(&fans.model, &QTableViewFansModel::dataChanged);
    QSignalSpy mode(&fans.model, &QTableViewFansModel::modeChanged);

    fans.model.updateRow(0, 2000, 2500, 6000, constant);

    QCOMPARE(changed.count(), 0);
    QCOMPARE(mode.count(), 0);
}

void FansModelTest::eachPartOfAnUpdateIsNews_data()
{
    QTest::addColumn<int>("min");
    QTest::addColumn<int>("current");
    QTest::addColumn<int>("max");
    QTest::addColumn<FanControlMode>("mode");
    QTest::newRow("minimum") << 2001 << 2500 << 6000 << constant;
    QTest::newRow("current") << 2000 << 2501 << 6000 << constant;
    QTest::newRow("maximum") << 2000 << 2500 << 6001 << constant;
    QTest::newRow("mode") << 2000 << 2500 << 6000 << FanControlMode::constant(3001);
}

void FansModelTest::eachPartOfAnUpdateIsNews()
{
    QFETCH(int, min);
    QFETCH(int, current);
    QFETCH(int, max);
    QFETCH(FanControlMode, mode);
    Fans fans;
    fans.model.updateRow(0, 2000, 2500, 6000, constant);
    QSignalSpy changed(&fans.model, &QTableViewFansModel::dataChanged);

    fans.model.updateRow(0, min, current, max, mode);

    QCOMPARE(changed.count(), 1);
}

void FansModelTest::anUpdateOfAnUnknownFanChangesNothing()
{
    Fans fans;
    QSignalSpy changed(&fans.model, &QTableViewFansModel::dataChanged);
    QSignalSpy mode(&fans.model, &QTableViewFansModel::modeChanged);

    fans.model.updateRow(2, 2000, 2500, 6000, constant);
    fans.model.updateRow(255, 2000, 2500, 6000, constant);

    QCOMPARE(changed.count(), 0);
    QCOMPARE(mode.count(), 0);
    QCOMPARE(fans.model.rowCount(), 2);
}

void FansModelTest::equalLimitsHaveAWarning_data()
{
    QTest::addColumn<int>("min");
    QTest::addColumn<int>("max");
    QTest::addColumn<bool>("isWarned");
    QTest::newRow("a span") << 2000 << 6000 << false;
    QTest::newRow("equal") << 2000 << 2000 << true;
    QTest::newRow("both 0") << 0 << 0 << true;
    QTest::newRow("unread") << 65535 << 65535 << false;
    QTest::newRow("never updated") << -1 << -1 << false;
}

void FansModelTest::equalLimitsHaveAWarning()
{
    QFETCH(int, min);
    QFETCH(int, max);
    QFETCH(bool, isWarned);
    Fans fans;
    QVERIFY(!fans.data(0, 1, Qt::ToolTipRole).isValid());

    fans.model.updateRow(0, min, 2500, max, constant);

    const QString warning
        = QStringLiteral("Something is wrong - min/max fan values are equal (%1).<br/> Please "
                         "make sure to uninstall any other fan-controlling software and to reset "
                         "the SMC.")
              .arg(max);
    QCOMPARE(fans.data(0, 1, Qt::ToolTipRole), isWarned ? QVariant(warning) : QVariant());
    QVERIFY(!fans.data(0, 0, Qt::ToolTipRole).isValid());
    QVERIFY(!fans.data(0, 2, Qt::ToolTipRole).isValid());
}

void FansModelTest::clearingResets()
{
    Fans fans;
    QSignalSpy reset(&fans.model, &QTableViewFansModel::modelReset);
    fans.model.clear();
    QCOMPARE(reset.count(), 1);
    QCOMPARE(fans.model.rowCount(), 0);
}

void FansModelTest::newTextsAreAnnounced()
{
    Fans fans;
    QSignalSpy layout(&fans.model, &QTableViewFansModel::layoutChanged);
    QSignalSpy header(&fans.model, &QTableViewFansModel::headerDataChanged);
    m_texts->translate("<MainWindow><listColumnFan>Ventilator</listColumnFan></MainWindow>");

    fans.model.refresh();

    QCOMPARE(layout.count(), 1);
    QCOMPARE(header.count(), 1);
    QCOMPARE(fans.model.headerData(0, Qt::Horizontal).toString(), QStringLiteral("Ventilator"));
}

BRISORA_TEST_MAIN(FansModelTest, QApplication)

#include "test_fansmodel.moc"
