#include <atomic>

#include <QTest>

#include "tests/fancontrol/enginemachine.h"
#include "tests/support/testenvironment.h"

// When the engine is ready for the machine's sleep.
class EngineSleepTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { EngineMachine::prepareProcess(); }

    void theSleepIsPreparedOnceTheFansAreSet();
    void eachSleepIsPrepared();
    void aSleepRightAfterAWakeIsPreparedToo();
    void aSleepThatIsOverIsNotPrepared();
    void withoutAControlTaskTheSleepIsPreparedAtOnce_data();
    void withoutAControlTaskTheSleepIsPreparedAtOnce();
};

namespace {

// Counts the preparations of a machine's engine, on whichever thread they come.
class Preparations {
public:
    explicit Preparations(EngineMachine& machine)
    {
        QObject::connect(
            machine.engine.get(), &QFanControl::sleepPrepared, &m_context,
            [this, &machine] {
                ++m_count;
                m_writesBefore = machine.takeWrites();
            },
            Qt::DirectConnection);
    }

    [[nodiscard]] int count() const { return m_count; }
    // Of the last one; once the task is parked.
    [[nodiscard]] QStringList writesBefore() const { return m_writesBefore; }

private:
    QObject m_context;
    std::atomic<int> m_count { 0 };
    QStringList m_writesBefore;
};

void startFollowing(EngineMachine& machine)
{
    machine.load();
    machine.engine->setFanMode(0, FanControlMode::constant(5000), false);
    machine.engine->setFanMode(1, FanControlMode::sensor(QStringLiteral("TC0P"), 40, 70), false);
    machine.start();
}

} // namespace

void EngineSleepTest::theSleepIsPreparedOnceTheFansAreSet()
{
    EngineMachine machine;
    startFollowing(machine);
    const Preparations preparations(machine);
    static_cast<void>(machine.takeWrites());

    machine.engine->slotEnteringSleepMode();
    QCOMPARE(preparations.count(), 0); // the control task is in its pause
    machine.tick();

    QCOMPARE(preparations.count(), 1);
    QVERIFY(preparations.writesBefore().contains(QStringLiteral("F1Tg 2000")));
    // Nothing comes after it, and nothing was done to the constant fan.
    QCOMPARE(machine.takeWrites(), QStringList());
    QVERIFY(!preparations.writesBefore().join(QLatin1Char(' ')).contains(QLatin1String("F0Tg")));
    machine.engine->requestStop();
    QVERIFY(machine.engine->stopAndWaitForFinished());
}

void EngineSleepTest::eachSleepIsPrepared()
{
    EngineMachine machine;
    startFollowing(machine);
    const Preparations preparations(machine);
    for (int sleeps = 1; sleeps <= 2; ++sleeps) {
        machine.engine->slotEnteringSleepMode();
        machine.tick();
        QCOMPARE(preparations.count(), sleeps);

        machine.engine->slotWakeUp();
        QTRY_COMPARE(machine.clock.timedWaits(), 2);
    }
    QVERIFY(machine.engine->stopAndWaitForFinished());
}

void EngineSleepTest::aSleepRightAfterAWakeIsPreparedToo()
{
    EngineMachine machine;
    startFollowing(machine);
    const Preparations preparations(machine);
    machine.engine->slotEnteringSleepMode();
    machine.tick();
    QCOMPARE(preparations.count(), 1);

    machine.engine->slotWakeUp();
    machine.engine->slotEnteringSleepMode();

    // The control task may have come as far as its pause, or not have noticed at all.
    const auto goOn = [&machine, &preparations] {
        if (machine.clock.timedWaits() > 0) {
            machine.tick();
        }
        return preparations.count() == 2;
    };
    QTRY_VERIFY(goOn());
    machine.engine->requestStop();
    QVERIFY(machine.engine->stopAndWaitForFinished());
}

void EngineSleepTest::aSleepThatIsOverIsNotPrepared()
{
    EngineMachine machine;
    startFollowing(machine);
    const Preparations preparations(machine);

    machine.engine->slotEnteringSleepMode();
    machine.engine->slotWakeUp();
    machine.tick(2);

    QCOMPARE(preparations.count(), 0);
    QVERIFY(machine.engine->stopAndWaitForFinished());
}

void EngineSleepTest::withoutAControlTaskTheSleepIsPreparedAtOnce_data()
{
    QTest::addColumn<bool>("isLoaded");
    QTest::newRow("before the load") << false;
    QTest::newRow("without write access") << true;
}

void EngineSleepTest::withoutAControlTaskTheSleepIsPreparedAtOnce()
{
    QFETCH(bool, isLoaded);
    EngineMachine machine;
    machine.hasWriteAccess = false;
    if (isLoaded) {
        machine.load();
        machine.start(1);
    }
    const Preparations preparations(machine);

    machine.engine->slotEnteringSleepMode();

    QCOMPARE(preparations.count(), 1);
    QVERIFY(machine.engine->stopAndWaitForFinished());
}

BRISORA_TEST_MAIN(EngineSleepTest, QCoreApplication)
#include "test_engine_sleep.moc"
