
#include <QCoreApplication>
#include <QTest>

#include "app/fancontrol/fancontrolmode.h"
#include "app/fancontrol/sensorcontrol.h"
#include "core/threads/clock.h"
#include "tests/support/allocationcounter.h"
#include "tests/support/logcapture.h"
#include "tests/support/testenvironment.h"

class TestSensorControlAllocations : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theCounterCounts();
    void aCallThatLogsNothingAllocatesNothing();
};

void TestSensorControlAllocations::theCounterCounts()
{
    const long before = allocationCount();
    const QString text = QString::number(before) + QLatin1String(" before");
    QVERIFY(!text.isEmpty());
    QVERIFY(allocationCount() > before);
}

void TestSensorControlAllocations::aCallThatLogsNothingAllocatesNothing()
{
    LogCapture log;
    SensorBasedControl_Simple control(QStringLiteral("Main"), core::threads::Clock::system());
    const FanSpeeds speeds { 3900, 2000, 6000 };
    const FanControlMode mode = FanControlMode::sensor(QStringLiteral("TC0P"), 40, 70);
    QCOMPARE(control.update(speeds, mode, 55), 3900);
    log.clear();

    const long before = allocationCount();
    int written = 0;
    for (int call = 0; call < 100; ++call) {
        written += control.update(speeds, mode, 55) == -1 ? 0 : 1;
    }
    const long after = allocationCount();

    QCOMPARE(written, 0);
    QCOMPARE(log.take(), QStringList());
    QCOMPARE(after - before, 0L);
}

BRISORA_TEST_MAIN(TestSensorControlAllocations, QCoreApplication)

#include "test_sensorcontrol_allocations.moc"
