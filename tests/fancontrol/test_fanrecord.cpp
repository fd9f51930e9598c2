#include <vector>

#include <QCoreApplication>
#include <QTest>

#include "app/fancontrol/fancontrolmode.h"
#include "app/fancontrol/fanrecord.h"
#include "tests/support/manualclock.h"
#include "tests/support/testenvironment.h"

class TestFanRecord : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theNameTellsTheLocation_data();
    void theNameTellsTheLocation();
    void speedsAreUnreadAtFirst();
    void speedsAreKeptInTheirOrder();
    void theLongestNameIsRemembered();
    void aCopyHasTheSameNameSpeedsAndControlState();
    void updateControlsWithTheFansOwnSpeeds();
    void resettingStartsControlFromNothing();
};

void TestFanRecord::theNameTellsTheLocation_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("location");
    QTest::newRow("ODD") << "ODD" << 0;
    QTest::newRow("HDD") << "HDD" << 1;
    QTest::newRow("CPU") << "CPU" << 2;
    QTest::newRow("named by the program") << "Left side" << 3;
    QTest::newRow("other case") << "cpu" << 3;
    QTest::newRow("more") << "CPU 1" << 3;
    QTest::newRow("none") << "" << 3;
}

void TestFanRecord::theNameTellsTheLocation()
{
    QFETCH(QString, name);
    ManualClock clock;
    const FanRecord fan(name, clock);
    QCOMPARE(fan.name(), name);
    QTEST(int(fan.location()), "location");
}

void TestFanRecord::speedsAreUnreadAtFirst()
{
    ManualClock clock;
    const FanRecord fan(QStringLiteral("CPU"), clock);
    QCOMPARE(fan.rpmCurrent(), std::uint16_t(65535));
    QCOMPARE(fan.rpmMin(), std::uint16_t(65535));
    QCOMPARE(fan.rpmMax(), std::uint16_t(65535));
}

void TestFanRecord::speedsAreKeptInTheirOrder()
{
    ManualClock clock;
    FanRecord fan(QStringLiteral("CPU"), clock);
    fan.setRpmCurrent(2500);
    fan.setRpmMin(2000);
    fan.setRpmMax(6000);
    QCOMPARE(fan.rpmCurrent(), std::uint16_t(2500));
    QCOMPARE(fan.speeds().current, std::uint16_t(2500));
    QCOMPARE(fan.speeds().min, std::uint16_t(2000));
    QCOMPARE(fan.speeds().max, std::uint16_t(6000));
}

void TestFanRecord::theLongestNameIsRemembered()
{
    ManualClock clock;
    const QString longest(100, QLatin1Char('x'));
    const FanRecord first(longest, clock);
    const FanRecord shorter(QStringLiteral("CPU"), clock);
    const FanRecord asLong(QString(100, QLatin1Char('y')), clock);
    QCOMPARE(FanRecord::longestFanName(), longest);
}

void TestFanRecord::aCopyHasTheSameNameSpeedsAndControlState()
{
    ManualClock clock;
    const FanControlMode mode = FanControlMode::sensor(QStringLiteral("TC0P"), 40, 70);
    std::vector<FanRecord> fans;
    fans.emplace_back(QStringLiteral("HDD"), clock);
    fans[0].setRpmCurrent(2500);
    fans[0].setRpmMin(2000);
    fans[0].setRpmMax(6000);
    QCOMPARE(fans[0].update(55, mode), 3863);

    for (int i = 0; i < 10; ++i) { // the vector grows and copies
        fans.emplace_back(QStringLiteral("ODD"), clock);
    }

    QCOMPARE(fans[0].name(), QStringLiteral("HDD"));
    QCOMPARE(fans[0].location(), FanLocationHdd);
    QCOMPARE(fans[0].speeds().max, std::uint16_t(6000));
    QCOMPARE(fans[0].update(55, mode), 3864);
}

void TestFanRecord::updateControlsWithTheFansOwnSpeeds()
{
    ManualClock clock;
    FanRecord fan(QStringLiteral("CPU"), clock);
    fan.setRpmCurrent(1000);
    fan.setRpmMin(1200);
    fan.setRpmMax(1800);
    const FanControlMode mode = FanControlMode::sensor(QStringLiteral("TC0P"), 40, 70);
    QCOMPARE(fan.update(30, mode), 1200);
    QCOMPARE(fan.update(90, mode), 1800);
    QCOMPARE(fan.update(0.5, mode), -1);
}

void TestFanRecord::resettingStartsControlFromNothing()
{
    ManualClock clock;
    FanRecord fan(QStringLiteral("CPU"), clock);
    fan.setRpmCurrent(2500);
    fan.setRpmMin(2000);
    fan.setRpmMax(6000);
    const FanControlMode mode = FanControlMode::sensor(QStringLiteral("TC0P"), 40, 70);
    QCOMPARE(fan.update(39, mode), 2000);
    QCOMPARE(fan.update(39, mode), -1);

    fan.resetControl();

    QCOMPARE(fan.update(39, mode), 2000);
}

BRISORA_TEST_MAIN(TestFanRecord, QCoreApplication)

#include "test_fanrecord.moc"
