#include <atomic>
#include <future>
#include <thread>

#include <QTest>

#include "core/application_flags.h"
#include "tests/fancontrol/enginemachine.h"
#include "tests/support/testenvironment.h"

// How the engine ends, and that the fans are given back whatever happens.
class EngineStopTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { EngineMachine::prepareProcess(); }

    void theStopGivesTheFansBackWithTheLastWrite();
    void aLostReleaseIsSentAgain_data();
    void aLostReleaseIsSentAgain();
    void aControllerThatDoesNotAnswerIsAskedAgainForAWhile_data();
    void aControllerThatDoesNotAnswerIsAskedAgainForAWhile();
    void nothingIsWrittenAfterTheStop();
    void aStopWhileAsleepFailsAfterEightSecondsAndTheEndGivesTheFansBack();
    void aRequestedStopWakesTheParkedTask();
    void aWakeLetsAStoppedTaskEnd();
    void aLogOffKeepsTheFansOnSomeModels_data();
    void aLogOffKeepsTheFansOnSomeModels();
    void withoutWriteAccessTheFansAreGivenBackAtOnce();
    void withoutAStopTheEndGivesTheFansBack();
    void aStopDuringTheLoadGivesTheFansBack();
    void anEngineThatNeverLoadedWritesNothing();
    void theControlTaskCanBeStartedLater();
    void afterTheStopNothingStartsAgain();
};

namespace {

const QString released = QStringLiteral("FS! 0");
const QString question = QStringLiteral("info: restore default control?");

void forceFans(EngineMachine& machine)
{
    machine.load();
    machine.engine->setFanMode(0, FanControlMode::constant(5000), false);
    machine.engine->setFanMode(1, FanControlMode::sensor(QStringLiteral("TC0P"), 40, 70), false);
}

} // namespace

void EngineStopTest::theStopGivesTheFansBackWithTheLastWrite()
{
    EngineMachine machine;
    forceFans(machine);
    machine.start();
    machine.tick();
    QVERIFY(machine.engine->stopAndWaitForFinished());

    QCOMPARE(machine.takeLastWrite(), released);
    QCOMPARE(machine.log.count(question), 1);
    QCOMPARE(machine.log.count(QStringLiteral("info: yes")), 1);
    QCOMPARE(machine.log.count(QStringLiteral("info: stopAndWaitForFinished: Quit OK")), 1);
}

void EngineStopTest::aLostReleaseIsSentAgain_data()
{
    QTest::addColumn<int>("lost");
    QTest::addColumn<int>("sent");
    QTest::addColumn<int>("warnings");
    QTest::addColumn<bool>("isForced");
    QTest::newRow("none") << 0 << 1 << 0 << false;
    QTest::newRow("the first") << 1 << 2 << 1 << false;
    QTest::newRow("the first two") << 2 << 3 << 2 << false;
    QTest::newRow("all") << 100 << 3 << 3 << true;
}

void EngineStopTest::aLostReleaseIsSentAgain()
{
    QFETCH(int, lost);
    QFETCH(int, sent);
    EngineMachine machine;
    forceFans(machine);
    machine.start();
    static_cast<void>(machine.takeWrites());
    machine.smc->loseWrites(lost);

    QVERIFY(machine.engine->stopAndWaitForFinished());

    QStringList expected;
    for (int attempt = 0; attempt < sent; ++attempt) {
        expected.append(released);
    }
    QCOMPARE(machine.takeWrites(), expected);
    QTEST(machine.smc->keyValue("FS! ").back() != 0, "isForced");
    QTEST(machine.log.count(QStringLiteral(
              "warning: The controller still forces fans after they were given back")),
          "warnings");
}

void EngineStopTest::aControllerThatDoesNotAnswerIsAskedAgainForAWhile_data()
{
    QTest::addColumn<int>("milliseconds"); // that a failing read takes
    QTest::addColumn<int>("sent");
    QTest::newRow("fails at once") << 0 << 3;
    QTest::newRow("fails in a while") << 2000 << 2;
    QTest::newRow("fails slowly") << 4000 << 1;
}

void EngineStopTest::aControllerThatDoesNotAnswerIsAskedAgainForAWhile()
{
    QFETCH(int, milliseconds);
    QFETCH(int, sent);
    EngineMachine machine;
    machine.platform->onRead = [&machine, milliseconds](const std::string& key) {
        if (key == "FS! ") {
            machine.clock.advance(milliseconds);
        }
    };
    machine.hasWindow = false; // nobody else reads
    forceFans(machine);
    machine.start(1);
    static_cast<void>(machine.takeWrites());
    machine.smc->setMute(true);

    QVERIFY(machine.engine->stopAndWaitForFinished());

    QCOMPARE(machine.takeWrites().count(released), sent);
}

void EngineStopTest::nothingIsWrittenAfterTheStop()
{
    EngineMachine machine;
    forceFans(machine);
    machine.start();
    QVERIFY(machine.engine->stopAndWaitForFinished());
    static_cast<void>(machine.takeWrites());

    machine.engine->setFanMode(0, FanControlMode::constant(4000), false);
    machine.engine->changeActiveProfile(machine.engine->profiles()->activeProfile());
    machine.engine.reset();

    QCOMPARE(machine.takeWrites(), QStringList());
}

void EngineStopTest::aStopWhileAsleepFailsAfterEightSecondsAndTheEndGivesTheFansBack()
{
    EngineMachine machine;
    machine.hasWindow = false; // no update task that takes its time to end
    forceFans(machine);
    machine.start(1);
    machine.engine->slotEnteringSleepMode();
    machine.tick();
    machine.log.clear();
    static_cast<void>(machine.takeWrites());

    // The clock moves while the GUI thread, this one, waits.
    const std::int64_t begin = machine.clock.elapsedMilliseconds();
    std::int64_t end = 0;
    std::thread time([&machine, &end, begin] {
        for (int wait = 1; machine.clock.waitForGuiWaitsBegun(wait) && wait <= 40; ++wait) {
            machine.clock.advance(200);
            end = machine.clock.elapsedMilliseconds() - begin;
            if (wait == 40) {
                break;
            }
        }
    });
    const bool hasStopped = machine.engine->stopAndWaitForFinished();
    time.join();

    QVERIFY(!hasStopped);
    QCOMPARE(end, std::int64_t(8000));
    const QString states
        = QStringLiteral("m_ThreadUpdate = false, m_ThreadInit = false, m_ThreadControl = true");
    QCOMPARE(machine.log.count(QStringLiteral("error: stopAndWaitForFinished ERROR: ") + states),
             1);
    const QStringList infos
        = machine.log.lines().filter(QStringLiteral("info: stopAndWaitForFinished: m_Thread"));
    QCOMPARE(infos.size(), 40);
    QCOMPARE(infos.last(), QStringLiteral("info: stopAndWaitForFinished: ") + states);
    QCOMPARE(machine.takeWrites(), QStringList());

    machine.engine.reset();
    QCOMPARE(machine.takeWrites(), QStringList { released });
}

void EngineStopTest::aRequestedStopWakesTheParkedTask()
{
    EngineMachine machine;
    forceFans(machine);
    machine.start();
    machine.engine->slotEnteringSleepMode();
    machine.tick();

    machine.engine->requestStop();
    QVERIFY(machine.engine->stopAndWaitForFinished());

    QCOMPARE(machine.takeLastWrite(), released);
}

void EngineStopTest::aWakeLetsAStoppedTaskEnd()
{
    EngineMachine machine;
    forceFans(machine);
    machine.start();
    machine.engine->slotEnteringSleepMode();
    machine.tick();
    machine.engine->slotWakeUp();

    QVERIFY(machine.engine->stopAndWaitForFinished());
    QCOMPARE(machine.takeLastWrite(), released);
}

void EngineStopTest::aLogOffKeepsTheFansOnSomeModels_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<bool>("logsOff");
    QTest::addColumn<bool>("areGivenBack");
    const QString sensitive = QStringLiteral("iMac14,2");
    QTest::newRow("sensitive, log-off") << sensitive << true << false;
    QTest::newRow("sensitive, quit") << sensitive << false << true;
    QTest::newRow("other, log-off") << QStringLiteral("iMac19,1") << true << true;
    QTest::newRow("laptop, log-off") << QStringLiteral("MacBookPro11,3") << true << true;
}

void EngineStopTest::aLogOffKeepsTheFansOnSomeModels()
{
    QFETCH(QString, model);
    QFETCH(bool, logsOff);
    QFETCH(bool, areGivenBack);
    EngineMachine machine(model);
    forceFans(machine);
    machine.start();
    if (logsOff) {
        machine.engine->slotUserLoggedOut();
        QVERIFY(machine.log.contains(QStringLiteral("info: slotUserLoggedOut")));
    }
    static_cast<void>(machine.takeWrites());
    QVERIFY(machine.engine->stopAndWaitForFinished());
    machine.engine.reset();

    QCOMPARE(machine.takeWrites().contains(released), areGivenBack);
    QCOMPARE(machine.log.count(QStringLiteral("info: yes")), areGivenBack ? 1 : 0);
    QCOMPARE(machine.log.count(QStringLiteral("info: no")), areGivenBack ? 0 : 1);
}

void EngineStopTest::withoutWriteAccessTheFansAreGivenBackAtOnce()
{
    EngineMachine machine;
    machine.hasWriteAccess = false;
    forceFans(machine);
    static_cast<void>(machine.takeWrites());
    machine.start(1);
    QCOMPARE(machine.takeWrites(), QStringList { released });

    // Nobody would drive a fan that the user forces now.
    machine.engine->setFanMode(0, FanControlMode::constant(4000), false);
    machine.engine->startThreads();
    QVERIFY(machine.engine->stopAndWaitForFinished());
    machine.engine.reset();
    QCOMPARE(machine.takeWrites(), QStringList());
    QCOMPARE(machine.log.count(question), 1);
}

void EngineStopTest::withoutAStopTheEndGivesTheFansBack()
{
    EngineMachine machine;
    forceFans(machine);
    static_cast<void>(machine.takeWrites());
    machine.engine.reset();

    QCOMPARE(machine.takeWrites(), QStringList { released });
}

void EngineStopTest::aStopDuringTheLoadGivesTheFansBack()
{
    EngineMachine machine;
    forceFans(machine); // stored for the next start
    machine.makeEngine();
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
    static_cast<void>(machine.takeWrites());
    machine.engine->initialLoad(true);
    reached.get_future().wait();
    std::thread later([&machine, &goOn] {
        static_cast<void>(machine.clock.waitForGuiWaitsBegun(1));
        goOn.set_value();
    });
    QVERIFY(machine.engine->stopAndWaitForFinished());
    later.join();

    const QStringList writes = machine.takeWrites();
    QVERIFY(!writes.contains(QStringLiteral("FS! 3"))); // not even for a moment
    QCOMPARE(writes.value(writes.size() - 1), released);
    QCOMPARE(machine.smc->keyValue("FS! "), (std::vector<std::uint8_t> { 0, 0 }));
    QVERIFY(machine.log.contains(
        QStringLiteral("info: stopAndWaitForFinished: m_ThreadUpdate = false, m_ThreadInit = "
                       "true, m_ThreadControl = false")));
}

void EngineStopTest::anEngineThatNeverLoadedWritesNothing()
{
    EngineMachine machine;
    machine.open();
    QVERIFY(machine.engine->stopAndWaitForFinished());
    machine.engine.reset();

    QCOMPARE(machine.takeWrites(), QStringList());
    QVERIFY(!machine.log.contains(question));
}

void EngineStopTest::theControlTaskCanBeStartedLater()
{
    EngineMachine machine;
    machine.hasWriteAccess = false;
    forceFans(machine);
    machine.start(1);
    static_cast<void>(machine.takeWrites());
    machine.hasWriteAccess = true;
    machine.start(1); // the update task is left alone

    const QStringList writes = machine.takeWrites();
    QCOMPARE(writes.value(0), QStringLiteral("FS! 3"));
    QVERIFY(writes.contains(QStringLiteral("F0Tg 5000")));
    QVERIFY(machine.engine->stopAndWaitForFinished());
    QCOMPARE(machine.takeLastWrite(), released);
}

void EngineStopTest::afterTheStopNothingStartsAgain()
{
    EngineMachine machine;
    forceFans(machine);
    QVERIFY(machine.engine->stopAndWaitForFinished());
    static_cast<void>(machine.takeReads());
    machine.engine->startThreads();
    machine.engine->slotSensorsReload();
    machine.engine.reset();

    QCOMPARE(machine.takeReads(), QStringList());
}

BRISORA_TEST_MAIN(EngineStopTest, QCoreApplication)
#include "test_engine_stop.moc"
