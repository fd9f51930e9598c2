#include <QSignalSpy>
#include <QtTest>

#include "core/system/darkmodewatcher.h"
#include "core/system/powersourcewatcher.h"
#include "tests/support/testenvironment.h"

using System::DarkModeWatcher;
using System::PowerSource;
using System::PowerSourceWatcher;

class WatchersTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void thePowerSourcesAreNumberedInOrder();
    void everyOtherPowerSourceIsTold_data();
    void everyOtherPowerSourceIsTold();
    void theSamePowerSourceIsNotToldAgain();
    void theFirstPowerSourceIsToldUnlessItWasTaken();
    void everyOtherLookIsTold();
};

void WatchersTest::thePowerSourcesAreNumberedInOrder()
{
    QCOMPARE(int(System::PowerSourceAC), 0);
    QCOMPARE(int(System::PowerSourceBattery), 1);
    QCOMPARE(int(System::PowerSourceUnknown), 2);
}

void WatchersTest::everyOtherPowerSourceIsTold_data()
{
    QTest::addColumn<PowerSource>("before");
    QTest::addColumn<PowerSource>("after");
    QTest::newRow("unplugged") << System::PowerSourceAC << System::PowerSourceBattery;
    QTest::newRow("plugged in") << System::PowerSourceBattery << System::PowerSourceAC;
    QTest::newRow("lost") << System::PowerSourceAC << System::PowerSourceUnknown;
    QTest::newRow("found") << System::PowerSourceUnknown << System::PowerSourceBattery;
}

void WatchersTest::everyOtherPowerSourceIsTold()
{
    QFETCH(PowerSource, before);
    QFETCH(PowerSource, after);
    PowerSource source = before;
    PowerSourceWatcher watcher([&source] { return source; });
    QSignalSpy told(&watcher, &PowerSourceWatcher::powerSourceChanged);
    watcher.takeSource();
    QCOMPARE(told.count(), 0);

    source = after;
    watcher.lookForChange();

    QCOMPARE(told.count(), 1);
    QCOMPARE(told[0][0].value<PowerSource>(), after);
}

void WatchersTest::theSamePowerSourceIsNotToldAgain()
{
    PowerSource source = System::PowerSourceAC;
    PowerSourceWatcher watcher([&source] { return source; });
    QSignalSpy told(&watcher, &PowerSourceWatcher::powerSourceChanged);
    watcher.takeSource();
    watcher.lookForChange();
    watcher.lookForChange();
    QCOMPARE(told.count(), 0);

    source = System::PowerSourceBattery;
    watcher.lookForChange();
    watcher.lookForChange();

    QCOMPARE(told.count(), 1);
}

void WatchersTest::theFirstPowerSourceIsToldUnlessItWasTaken()
{
    PowerSource source = System::PowerSourceUnknown;
    PowerSourceWatcher watcher([&source] { return source; });
    QSignalSpy told(&watcher, &PowerSourceWatcher::powerSourceChanged);
    watcher.lookForChange();
    QCOMPARE(told.count(), 0); // it starts as unknown

    source = System::PowerSourceAC;
    watcher.lookForChange();
    QCOMPARE(told.count(), 1);
}

void WatchersTest::everyOtherLookIsTold()
{
    DarkModeWatcher watcher;
    QSignalSpy told(&watcher, &DarkModeWatcher::darkModeChanged);
    watcher.takeLook(true);
    watcher.compareLook(true);
    QCOMPARE(told.count(), 0);

    watcher.compareLook(false);
    watcher.compareLook(false);
    QCOMPARE(told.count(), 1);

    watcher.compareLook(true);
    QCOMPARE(told.count(), 2);
}

BRISORA_TEST_MAIN(WatchersTest, QCoreApplication)
#include "test_watchers.moc"
