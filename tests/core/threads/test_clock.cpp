#include <thread>

#include <QCoreApplication>

#include "core/threads/clock.h"
#include "tests/support/testenvironment.h"

using core::threads::Clock;
using Event = core::threads::event;

class TestClock : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void thereIsOneSystemClock() { QCOMPARE(&Clock::system(), &Clock::system()); }

    void timePassesWithTheSleep()
    {
        Clock& clock = Clock::system();
        const std::int64_t before = clock.elapsedMilliseconds();
        const QDateTime dateBefore = clock.now();
        QVERIFY(before >= 0);
        clock.sleep(30);
        QVERIFY(clock.elapsedMilliseconds() - before >= 29);
        QVERIFY(dateBefore.msecsTo(clock.now()) >= 29);
    }

    void theDateIsInUtc()
    {
        const QDateTime now = Clock::system().now();
        QCOMPARE(now.timeSpec(), Qt::UTC);
        QVERIFY(qAbs(now.secsTo(QDateTime::currentDateTimeUtc())) < 60);
    }

    void aWaitEndsWithTheEventOrTheTime()
    {
        Clock& clock = Clock::system();
        Event first;
        Event second;
        const std::int64_t before = clock.elapsedMilliseconds();
        QCOMPARE(clock.waitForEvents({ &first, &second }, false, 30), 258);
        QVERIFY(clock.elapsedMilliseconds() - before >= 29);
        std::thread setter([&] { second.set(); });
        QCOMPARE(clock.waitForEvents({ &first, &second }, false, Event::infinite), 1);
        setter.join();
        QCOMPARE(clock.waitForEvents({ &first, &second }, true, 0), 258);
    }
};

BRISORA_TEST_MAIN(TestClock, QCoreApplication)

#include "test_clock.moc"
