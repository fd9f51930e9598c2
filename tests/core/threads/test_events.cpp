#include <array>
#include <atomic>
#include <chrono>
#include <memory>
#include <thread>
#include <vector>

#include <QCoreApplication>
#include <QElapsedTimer>

#include "core/threads/event.h"
#include "core/threads/wfmo_monitor.h"
#include "tests/support/testenvironment.h"

using Event = core::threads::event;
using core::threads::event_monitor;
using core::threads::wfmo_monitor;

namespace {

// Longer than any wait that is expected to be ended by an event.
constexpr std::uint32_t longTime = 20000;

class CountingMonitor : public event_monitor {
public:
    void notify(std::uint32_t bit) override { bits.push_back(bit); }

    std::vector<std::uint32_t> bits;
};

// Several events and pointers to them.
class Events {
public:
    explicit Events(int count)
    {
        for (int i = 0; i < count; ++i) {
            m_events.push_back(std::make_unique<Event>());
            pointers.push_back(m_events.back().get());
        }
    }

    Event& operator[](std::size_t index) { return *m_events[index]; }

    std::vector<Event*> pointers;

private:
    std::vector<std::unique_ptr<Event>> m_events;
};

int waitFor(const std::vector<Event*>& events, bool waitAll, std::uint32_t milliseconds)
{
    wfmo_monitor monitor;
    return monitor.waitForMultipleEvents(events, waitAll, milliseconds);
}

void rest() { std::this_thread::sleep_for(std::chrono::milliseconds(20)); }

} // namespace

class TestEvents : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void anEventStaysSetUntilItIsReset()
    {
        Event tested;
        QVERIFY(!tested.isSet());
        QVERIFY(!tested.wait(0));
        tested.set();
        tested.set();
        QVERIFY(tested.isSet());
        QVERIFY(tested.wait(0));
        QVERIFY(tested.wait(Event::infinite));
        QVERIFY(tested.isSet());
        tested.reset();
        QVERIFY(!tested.isSet());
        QVERIFY(!tested.wait(1));
    }

    void anAutoResetEventIsConsumedByOneWait()
    {
        Event tested(true);
        tested.set();
        QVERIFY(tested.isSet());
        QVERIFY(tested.wait(0));
        QVERIFY(!tested.isSet());
        QVERIFY(!tested.wait(0));
    }

    void eachSetOfAnAutoResetEventFreesOneWaiter()
    {
        Event tested(true);
        std::atomic<int> freed { 0 };
        std::array<std::thread, 3> waiters;
        for (auto& waiter : waiters) {
            waiter = std::thread([&] {
                if (tested.wait(longTime)) {
                    ++freed;
                }
            });
        }
        for (int expected = 1; expected <= 3; ++expected) {
            tested.set();
            QTRY_COMPARE(freed.load(), expected);
            QVERIFY(!tested.isSet());
        }
        for (auto& waiter : waiters) {
            waiter.join();
        }
    }

    void aWaitEndsWithTheSet_data()
    {
        QTest::addColumn<quint32>("milliseconds");
        QTest::newRow("for a time") << longTime;
        QTest::newRow("for ever") << Event::infinite;
    }
    void aWaitEndsWithTheSet()
    {
        QFETCH(quint32, milliseconds);
        Event tested;
        std::thread setter([&] {
            rest();
            tested.set();
        });
        QVERIFY(tested.wait(milliseconds));
        setter.join();
    }

    void aWaitEndsWithTheTime()
    {
        Event tested;
        QElapsedTimer timer;
        timer.start();
        QVERIFY(!tested.wait(50));
        QVERIFY(timer.elapsed() >= 49);
        timer.start();
        QCOMPARE(waitFor({ &tested }, false, 50), 258);
        QVERIFY(timer.elapsed() >= 49);
    }

    void monitorsAreToldTheirBitAtEachSet()
    {
        Event tested;
        CountingMonitor first;
        CountingMonitor second;
        tested.addMonitor(&first, 3);
        tested.addMonitor(&second, 7);
        tested.set();
        tested.set();
        tested.removeMonitor(&first);
        tested.set();
        tested.removeMonitor(&second);
        tested.set();
        QCOMPARE(first.bits, (std::vector<std::uint32_t> { 3, 3 }));
        QCOMPARE(second.bits, (std::vector<std::uint32_t> { 7, 7, 7 }));
    }

    void theLowestEventThatIsSetIsReported_data()
    {
        QTest::addColumn<QVector<int>>("set");
        QTest::addColumn<int>("expected");
        QTest::newRow("the first") << QVector<int> { 0 } << 0;
        QTest::newRow("the second") << QVector<int> { 1 } << 1;
        QTest::newRow("the last") << QVector<int> { 3 } << 3;
        QTest::newRow("two") << QVector<int> { 3, 1 } << 1;
        QTest::newRow("all") << QVector<int> { 3, 2, 1, 0 } << 0;
        QTest::newRow("none") << QVector<int> {} << 258;
    }
    void theLowestEventThatIsSetIsReported()
    {
        QFETCH(QVector<int>, set);
        QFETCH(int, expected);
        Events events(4);
        for (const int index : set) {
            events[static_cast<std::size_t>(index)].set();
        }
        QCOMPARE(waitFor(events.pointers, false, 0), expected);
        // Nothing was consumed.
        QCOMPARE(waitFor(events.pointers, false, 0), expected);
    }

    void anEventThatIsSetDuringTheWaitIsReported_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<quint32>("milliseconds");
        QTest::newRow("the first") << 0 << longTime;
        QTest::newRow("the second") << 1 << longTime;
        QTest::newRow("the last, for ever") << 3 << Event::infinite;
    }
    void anEventThatIsSetDuringTheWaitIsReported()
    {
        QFETCH(int, index);
        QFETCH(quint32, milliseconds);
        Events events(4);
        std::thread setter([&] {
            rest();
            events[static_cast<std::size_t>(index)].set();
        });
        QCOMPARE(waitFor(events.pointers, false, milliseconds), index);
        setter.join();
    }

    void anAutoResetEventIsNotConsumedByAMultiWait()
    {
        Event tested(true);
        tested.set();
        QCOMPARE(waitFor({ &tested }, false, 0), 0);
        QVERIFY(tested.isSet());
    }

    void aWaitForAllNeedsAll()
    {
        Events events(3);
        QCOMPARE(waitFor(events.pointers, true, 0), 258);
        events[0].set();
        events[2].set();
        QCOMPARE(waitFor(events.pointers, true, 10), 258);
        events[1].set();
        QCOMPARE(waitFor(events.pointers, true, 0), 0);
        QCOMPARE(waitFor(events.pointers, true, Event::infinite), 0);
        events[0].reset();
        QCOMPARE(waitFor(events.pointers, true, 0), 258);
    }

    void aWaitForAllEndsWithTheLastSet()
    {
        Events events(3);
        std::thread setter([&] {
            events[2].set();
            rest();
            events[0].set();
            rest();
            events[1].set();
        });
        QCOMPARE(waitFor(events.pointers, true, longTime), 0);
        QVERIFY(events[1].isSet());
        setter.join();
    }

    void theNumberOfEventsIsLimited_data()
    {
        QTest::addColumn<int>("count");
        QTest::addColumn<int>("expected");
        QTest::newRow("as many as allowed") << 32 << 31;
        QTest::newRow("one more") << 33 << -1;
        QTest::newRow("many more") << 100 << -1;
    }
    void theNumberOfEventsIsLimited()
    {
        QFETCH(int, count);
        QFETCH(int, expected);
        Events events(count);
        events[31].set();
        QCOMPARE(waitFor(events.pointers, false, Event::infinite), expected);
    }

    void noEventsMeanATimeOut() { QCOMPARE(waitFor({}, false, 1), 258); }

    void aMonitorIsForgottenAfterTheWait()
    {
        Events events(2);
        {
            wfmo_monitor monitor;
            QCOMPARE(monitor.waitForMultipleEvents(events.pointers, false, 0), 258);
        }
        // Would use the monitor that is gone.
        events[0].set();
        events[1].set();
        QCOMPARE(waitFor(events.pointers, false, 0), 0);
    }

    void oneMonitorMayWaitAgain()
    {
        Events events(2);
        wfmo_monitor monitor;
        QCOMPARE(monitor.waitForMultipleEvents(events.pointers, false, 1), 258);
        events[1].set();
        QCOMPARE(monitor.waitForMultipleEvents(events.pointers, false, longTime), 1);
        events[1].reset();
        QCOMPARE(monitor.waitForMultipleEvents(events.pointers, false, 1), 258);
    }

    void aSetAtAnyMomentOfTheWaitIsSeen()
    {
        // The set meets the start of the wait at ever other moments: before, amid
        // and after the registration. A lost one would show as a time-out.
        Events events(2);
        std::atomic<int> round { 0 };
        constexpr int rounds = 3000;
        std::thread setter([&] {
            for (int i = 1; i <= rounds; ++i) {
                while (round.load() != i) {
                    std::this_thread::yield();
                }
                for (std::atomic<int> spin = 0; spin < (i % 50) * 20; ++spin) { }
                events[1].set();
            }
        });
        int failures = 0;
        for (int i = 1; i <= rounds; ++i) {
            round = i;
            failures += waitFor(events.pointers, false, longTime) == 1 ? 0 : 1;
            events[1].reset();
        }
        setter.join();
        QCOMPARE(failures, 0);
    }

    void aRequestIsNeverTakenForTheStop()
    {
        // As the tasks use it: the first event ends, the second one only interrupts.
        Event stop;
        Event request;
        std::atomic<int> requests { 0 };
        std::atomic<bool> stoppedEarly { false };
        std::atomic<bool> mayStop { false };
        std::vector<std::thread> tasks;
        for (int i = 0; i < 3; ++i) {
            tasks.emplace_back([&] {
                for (;;) {
                    const int result = waitFor({ &stop, &request }, false, longTime);
                    if (result != 1) {
                        stoppedEarly = stoppedEarly || result != 0 || !mayStop;
                        return;
                    }
                    ++requests;
                    std::this_thread::yield();
                }
            });
        }
        for (int i = 0; i < 300; ++i) {
            request.set();
            std::this_thread::yield();
            request.reset();
        }
        request.set();
        QTRY_VERIFY(requests.load() > 10);
        mayStop = true;
        stop.set();
        for (auto& task : tasks) {
            task.join();
        }
        QVERIFY(!stoppedEarly);
    }
};

BRISORA_TEST_MAIN(TestEvents, QCoreApplication)

#include "test_events.moc"
