#include <atomic>
#include <cstdint>
#include <future>
#include <thread>
#include <vector>

#include <QCoreApplication>
#include <QTest>

#include "app/fancontrol/reloadrendezvous.h"
#include "core/threads/clock.h"
#include "core/threads/wfmo_monitor.h"
#include "tests/fancontrol/enginemachine.h"
#include "tests/support/testenvironment.h"

// The reload of the sensors, and where the tasks meet for it.
class EngineReloadTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { EngineMachine::prepareProcess(); }

    void aReloadBuildsTheSensorsAnewWhileBothTasksRun();
    void aReloadWithoutTasksGoesStraightThrough();
    void aReloadBeforeTheEndOfTheLoadWaitsForIt();
    void aReloadWhileAsleepCountsTheParkedTask();
    void aStopDuringAReloadEndsTheTasks();
    void aReloadFromWithinAReloadComesLater();
    void theProviderCanAskForAReload();
    void aReloadGivesUpOnATaskThatDoesNotPauseAndComesBack();
    void aTaskThatEndsReleasesTheReload();
    void aLateTaskThatParksAsksForTheReload();
    void aTaskThatDoesNotLeaveItsPauseDoesNotHoldUpTheNextReload();
    void withoutAReloadATaskIsNotHeldUp();
};

namespace {

// Counts the two signals of a reload.
struct ReloadCounter : QObject {
    explicit ReloadCounter(QFanControl* engine)
    {
        connect(engine, &QFanControl::sensorsReloadBegin, this, [this] { ++begins; });
        connect(engine, &QFanControl::sensorsReloadEnd, this, [this] { ++ends; });
    }
    int begins = 0;
    int ends = 0;
};

// Lets no task come back from a wait until it may. On the thread that makes it the
// events must come in time, or, in haste, time runs out.
class StuckClock final : public core::threads::Clock {
public:
    std::int64_t elapsedMilliseconds() const override { return m_elapsed; }
    QDateTime now() const override { return QDateTime::fromMSecsSinceEpoch(m_elapsed); }
    void sleep(std::uint32_t milliseconds) override { m_elapsed += milliseconds; }
    int waitForEvents(const std::vector<core::threads::event*>& events, bool waitAll,
                      std::uint32_t milliseconds) override
    {
        core::threads::wfmo_monitor monitor;
        if (std::this_thread::get_id() != m_guiThread) {
            const int result = monitor.waitForMultipleEvents(events, waitAll, milliseconds);
            mayReturn.wait(core::threads::event::infinite);
            return result;
        }
        const int result
            = monitor.waitForMultipleEvents(events, waitAll, isHasty ? 1 : EngineMachine::patience);
        if (result == core::threads::wfmo_monitor::timedOut) {
            m_elapsed += milliseconds;
        }
        return result;
    }

    core::threads::event mayReturn;
    bool isHasty = false;

private:
    const std::thread::id m_guiThread = std::this_thread::get_id();
    std::atomic<std::int64_t> m_elapsed { 0 };
};

} // namespace

void EngineReloadTest::aReloadBuildsTheSensorsAnewWhileBothTasksRun()
{
    EngineMachine machine;
    machine.load();
    machine.engine->setFanMode(0, FanControlMode::sensor(QStringLiteral("TC0P"), 40, 70), false);
    machine.start();
    const ReloadCounter counter(machine.engine.get());

    uint32_t id = machine.sensor("TC0P")->id();
    for (int i = 0; i < 100; ++i) {
        machine.engine->slotSensorsReload();
        QCOMPARE(counter.ends, i + 1);
        const uint32_t newId = machine.sensor("TC0P")->id();
        QVERIFY(newId > id);
        id = newId;
        if (i % 2 == 0) {
            machine.clock.advance(EngineContext::passInterval);
        }
    }
    QCOMPARE(counter.begins, 100);

    // Both tasks have survived it and work on.
    QTRY_COMPARE_WITH_TIMEOUT(machine.clock.timedWaits(), 2, EngineMachine::patience);
    machine.smc->setTemperature("TC0P", 60.0);
    machine.tick(2);
    QCOMPARE(machine.sensor("TC0P")->value(), 60.0);
    QVERIFY(machine.engine->stopAndWaitForFinished());
    QCOMPARE(machine.takeLastWrite(), QStringLiteral("FS! 0"));
}

void EngineReloadTest::aReloadWithoutTasksGoesStraightThrough()
{
    EngineMachine machine;
    machine.load();
    const ReloadCounter counter(machine.engine.get());
    machine.engine->slotSensorsReload();

    QCOMPARE(counter.begins, 1);
    QCOMPARE(counter.ends, 1);
    QVERIFY(machine.sensor("TC0P") != nullptr);
}

void EngineReloadTest::aReloadBeforeTheEndOfTheLoadWaitsForIt()
{
    EngineMachine machine;
    machine.open();
    std::promise<void> reached;
    std::promise<void> goOn;
    std::shared_future<void> mayGoOn(goOn.get_future());
    std::atomic<bool> isFirst { true };
    machine.platform->onRead = [&](const std::string& key) {
        if (key == "TG0P" && isFirst.exchange(false)) {
            reached.set_value();
            mayGoOn.wait();
        }
    };
    const ReloadCounter counter(machine.engine.get());
    machine.engine->initialLoad(true);
    reached.get_future().wait();
    machine.engine->slotSensorsReload();
    QCoreApplication::processEvents();
    QCOMPARE(counter.begins, 0);
    goOn.set_value();

    QTRY_COMPARE_WITH_TIMEOUT(counter.ends, 1, EngineMachine::patience);
    QVERIFY(machine.sensor("TG0P") != nullptr);
    QCoreApplication::processEvents();
    QCOMPARE(counter.begins, 1);
}

void EngineReloadTest::aReloadWhileAsleepCountsTheParkedTask()
{
    EngineMachine machine;
    machine.load();
    machine.start();
    machine.engine->slotEnteringSleepMode();
    machine.tick();
    const ReloadCounter counter(machine.engine.get());
    machine.engine->slotSensorsReload();
    machine.engine->slotSensorsReload();
    QCOMPARE(counter.ends, 2);

    machine.engine->slotWakeUp();
    QTRY_COMPARE_WITH_TIMEOUT(machine.clock.timedWaits(), 2, EngineMachine::patience);
    machine.engine->slotSensorsReload();
    QCOMPARE(counter.ends, 3);
}

void EngineReloadTest::aStopDuringAReloadEndsTheTasks()
{
    EngineMachine machine;
    machine.load();
    machine.start();
    static_cast<void>(machine.takeWrites());
    bool hasStopped = false;
    connect(machine.engine.get(), &QFanControl::sensorsReloadBegin, machine.engine.get(),
            [&machine, &hasStopped] { hasStopped = machine.engine->stopAndWaitForFinished(); });
    machine.engine->slotSensorsReload();

    QVERIFY(hasStopped);
    QCOMPARE(machine.takeWrites(), QStringList { QStringLiteral("FS! 0") });
}

void EngineReloadTest::aReloadFromWithinAReloadComesLater()
{
    EngineMachine machine;
    machine.load();
    machine.start();
    const ReloadCounter counter(machine.engine.get());
    const auto connection
        = connect(machine.engine.get(), &QFanControl::sensorsReloadEnd, machine.engine.get(),
                  [&machine] { machine.engine->slotSensorsReload(); });
    machine.engine->slotSensorsReload();
    QCOMPARE(counter.begins, 1);
    disconnect(connection);

    QTRY_COMPARE_WITH_TIMEOUT(counter.ends, 2, EngineMachine::patience);
}

void EngineReloadTest::theProviderCanAskForAReload()
{
    EngineMachine machine;
    machine.load();
    const ReloadCounter counter(machine.engine.get());
    Q_EMIT machine.engine->sensorProvider()->reloadRequired();

    QCOMPARE(counter.ends, 1);
}

void EngineReloadTest::aReloadGivesUpOnATaskThatDoesNotPauseAndComesBack()
{
    EngineMachine machine;
    machine.load();
    std::promise<void> goOn;
    std::shared_future<void> mayGoOn(goOn.get_future());
    std::promise<void> reached;
    // Not while the start gives the fans back: the controller is locked meanwhile.
    std::atomic<bool> isSlow { false };
    machine.platform->onRead = [&](const std::string& key) {
        if (key == "F1Ac" && isSlow.exchange(false)) {
            reached.set_value();
            mayGoOn.wait();
        }
    };
    const ReloadCounter counter(machine.engine.get());
    machine.hasWriteAccess = false;
    machine.start(1);
    isSlow = true;
    machine.clock.advance(EngineContext::passInterval);
    reached.get_future().wait();

    std::thread time([&machine] {
        // The second wait: the first one lets earlier reloads end.
        static_cast<void>(machine.clock.waitForGuiWaitsBegun(2));
        machine.clock.advance(8000);
    });
    machine.engine->slotSensorsReload();
    time.join();
    QCOMPARE(counter.begins, 0);
    QVERIFY(machine.log.contains(
        QStringLiteral("warning: The tasks can't be paused, the sensors are loaded later")));

    goOn.set_value();
    QTRY_COMPARE_WITH_TIMEOUT(machine.clock.timedWaits(), 1, EngineMachine::patience);
    machine.clock.advance(EngineContext::passInterval);
    QTRY_COMPARE_WITH_TIMEOUT(counter.ends, 1, EngineMachine::patience);
    QVERIFY(machine.engine->stopAndWaitForFinished());
}

void EngineReloadTest::aTaskThatEndsReleasesTheReload()
{
    SteppingClock clock;
    core::threads::event stop;
    ReloadRendezvous rendezvous(clock, stop, [] {});
    ReloadRendezvous::Member pausing;
    ReloadRendezvous::Member ending;
    rendezvous.enter(pausing);
    rendezvous.enter(ending);
    std::promise<bool> paused;
    std::thread first([&] {
        rendezvous.request().wait(core::threads::event::infinite);
        paused.set_value(rendezvous.pause(pausing));
        rendezvous.leave(pausing);
    });
    std::thread second([&] {
        rendezvous.request().wait(core::threads::event::infinite);
        rendezvous.leave(ending);
    });

    QVERIFY(rendezvous.holdTasks(8000));
    rendezvous.resumeTasks();
    first.join();
    second.join();
    QVERIFY(paused.get_future().get());
    QVERIFY(rendezvous.holdTasks(8000)); // nobody is left
}

void EngineReloadTest::aLateTaskThatParksAsksForTheReload()
{
    SteppingClock clock;
    core::threads::event stop;
    int lateTasks = 0;
    ReloadRendezvous rendezvous(clock, stop, [&lateTasks] { ++lateTasks; });
    ReloadRendezvous::Member member;
    rendezvous.enter(member);
    QVERIFY(!rendezvous.holdTasks(0));
    QCOMPARE(lateTasks, 0);

    rendezvous.park(member);
    QCOMPARE(lateTasks, 1);
    QVERIFY(rendezvous.holdTasks(0));
    rendezvous.resumeTasks();
    rendezvous.unpark(member);
    rendezvous.leave(member);
    QCOMPARE(lateTasks, 1);
}

void EngineReloadTest::aTaskThatDoesNotLeaveItsPauseDoesNotHoldUpTheNextReload()
{
    StuckClock clock;
    core::threads::event stop;
    std::atomic<int> lateTasks { 0 };
    ReloadRendezvous rendezvous(clock, stop, [&lateTasks] { ++lateTasks; });
    ReloadRendezvous::Member member;
    rendezvous.enter(member);
    std::thread task([&] {
        rendezvous.request().wait(core::threads::event::infinite);
        rendezvous.pause(member);
        rendezvous.leave(member);
    });
    const bool isHeld = rendezvous.holdTasks(8000);
    rendezvous.resumeTasks();
    clock.isHasty = true;
    const bool isHeldAgain = rendezvous.holdTasks(100);
    const int lateBefore = lateTasks;
    clock.mayReturn.set();
    task.join();

    QVERIFY(isHeld);
    QVERIFY(!isHeldAgain);
    QCOMPARE(clock.elapsedMilliseconds(), std::int64_t(100));
    QCOMPARE(lateBefore, 0);
    QCOMPARE(lateTasks.load(), 1);
}

void EngineReloadTest::withoutAReloadATaskIsNotHeldUp()
{
    SteppingClock clock;
    core::threads::event stop;
    ReloadRendezvous rendezvous(clock, stop, [] {});
    ReloadRendezvous::Member member;
    rendezvous.enter(member);

    QVERIFY(!rendezvous.pause(member));
    QCOMPARE(clock.waitsBegun(), 0);
}

BRISORA_TEST_MAIN(EngineReloadTest, QCoreApplication)
#include "test_engine_reload.moc"
