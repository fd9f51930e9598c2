#include <QTest>

#include "app/settingskeys.h"
#include "tests/fancontrol/enginemachine.h"
#include "tests/support/testenvironment.h"

// What the control task does with fans that follow a sensor: the algorithm,
// sensors that vanish or stop, and sleep.
class EngineSensorTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { EngineMachine::prepareProcess(); }

    void theAlgorithmDrivesTheFan();
    void noReadingLeavesTheFanAlone();
    void aVanishedSensorLeavesTheFanToTheController();
    void aSensorThatStopsGivesItsFanBackUntilItReturns();
    void aStandstillOfLessThanThirtySecondsIsNoStop();
    void whileOneSensorStandsStillTheOthersFansAreControlled();
    void aSensorThatNobodyReadIsNotTakenForStopped();
    void anotherModeEndsTheWithholding();
    void aSensorThatIsKnownToHaveStoppedIsNotWaitedForAgain();
    void theModeOfAnotherFanLeavesAWithheldFanAlone();
    void aWithheldFanGetsNoMinimumForSleep();
    void aReloadDoesNotPassForAReturn();
    void theTimeAsleepDoesNotCount();
    void asleepFansThatFollowASensorGetTheirMinimum();
    void afterTheWakeControlRestartsFromNothing();
    void aSleepThatNobodyNoticedDoesNotShortenTheNext();
};

namespace {

const QString stopped = QStringLiteral(
    "warning: The sensor TC0P has stopped reading, the Left fan is left to the system");
const QString returned
    = QStringLiteral("warning: The sensor TC0P reads again, the Left fan follows it again");

FanControlMode following(const char* key)
{
    return FanControlMode::sensor(QString::fromLatin1(key), 40, 70);
}

// Fan 0 follows TC0P, and both tasks run.
void startFollowing(EngineMachine& machine)
{
    machine.load();
    machine.engine->setFanMode(0, following("TC0P"), false);
    machine.start();
    machine.tick();
    static_cast<void>(machine.takeWrites());
}

QStringList masks(const QStringList& writes) { return writes.filter(QStringLiteral("FS! ")); }

QStringList speeds(const QStringList& writes) { return writes.filter(QStringLiteral("Tg ")); }

QStringList withoutDuplicates(QStringList list)
{
    list.removeDuplicates();
    return list;
}

} // namespace

void EngineSensorTest::theAlgorithmDrivesTheFan()
{
    EngineMachine machine;
    machine.hasWindow = false; // the test reads the sensor itself
    machine.load();
    machine.engine->setFanMode(0, following("TC0p"), false);
    machine.sensor("TC0P")->UpdateValue();
    static_cast<void>(machine.takeWrites());
    machine.start(1);
    machine.tick(2);

    // 55 degrees between 40 and 70, from 2000 to 6000 RPM: the foot of the band is
    // 3862, and the fan climbs from there by one at a time.
    const QStringList expected { QStringLiteral("FS! 1"), QStringLiteral("F0Tg 3863"),
                                 QStringLiteral("F0Tg 3864"), QStringLiteral("F0Tg 3865") };
    QCOMPARE(machine.takeWrites(), expected);
}

void EngineSensorTest::noReadingLeavesTheFanAlone()
{
    EngineMachine machine;
    machine.hasWindow = false;
    machine.load();
    machine.engine->setFanMode(0, following("TC0P"), false);
    static_cast<void>(machine.takeWrites());
    machine.start(1);
    machine.tick(2);
    QCOMPARE(machine.takeWrites(), QStringList());

    machine.sensor("TC0P")->UpdateValue();
    machine.tick();
    QCOMPARE(speeds(machine.takeWrites()), QStringList { QStringLiteral("F0Tg 3863") });
}

void EngineSensorTest::aVanishedSensorLeavesTheFanToTheController()
{
    EngineMachine machine;
    startFollowing(machine);
    machine.engine->setFanMode(1, FanControlMode::constant(3000), false);
    const QString before = machine.settings.getString(SettingsKeys::activePreset);
    machine.smc->removeKey("TC0P");
    static_cast<void>(machine.takeWrites());
    machine.reload();
    machine.tick(3);

    QCOMPARE(
        machine.log.count(QStringLiteral("info: ControlFanSpeedThread: reset fan mode for Left")),
        1);
    QCOMPARE(machine.engine->getFanMode(0), FanControlMode::automatic());
    QCOMPARE(machine.engine->getFanMode(1), FanControlMode::constant(3000));
    QVERIFY(masks(machine.takeWrites()).contains(QStringLiteral("FS! 2")));
    QVERIFY(machine.settings.getString(SettingsKeys::activePreset) != before);
}

void EngineSensorTest::aSensorThatStopsGivesItsFanBackUntilItReturns()
{
    EngineMachine machine;
    startFollowing(machine);
    const FanControlMode mode = machine.engine->getFanMode(0);
    machine.smc->setFailing("TC0P", true);
    machine.tick(22);

    QCOMPARE(machine.log.count(stopped), 1);
    QCOMPARE(machine.takeLastWrite(), QStringLiteral("FS! 0"));
    machine.tick(25);
    QCOMPARE(machine.takeWrites(), QStringList());
    QCOMPARE(machine.log.count(stopped), 1);
    QCOMPARE(machine.engine->getFanMode(0), mode);
    // The bit stays out of what the interface sends, too.
    machine.engine->changeActiveProfile(machine.engine->profiles()->activeProfile());
    QCOMPARE(machine.takeWrites(), QStringList { QStringLiteral("FS! 0") });

    machine.smc->setFailing("TC0P", false);
    machine.tick(2);
    QCOMPARE(machine.log.count(returned), 1);
    const QStringList writes = machine.takeWrites();
    QCOMPARE(writes.value(0), QStringLiteral("FS! 1"));
    // From nothing: at the foot of the band again.
    QCOMPARE(speeds(writes).value(0), QStringLiteral("F0Tg 3863"));
}

void EngineSensorTest::aStandstillOfLessThanThirtySecondsIsNoStop()
{
    EngineMachine machine;
    machine.hasWindow = false;
    machine.load();
    machine.engine->setFanMode(0, following("TC0P"), false);
    machine.sensor("TC0P")->UpdateValue();
    machine.start(1);
    machine.tick(19); // 28.5 seconds
    QCOMPARE(machine.log.count(stopped), 0);
    machine.sensor("TC0P")->UpdateValue();
    machine.tick(20); // seen after 1.5 seconds
    QCOMPARE(machine.log.count(stopped), 0);
    machine.tick();
    QCOMPARE(machine.log.count(stopped), 1);
}

void EngineSensorTest::whileOneSensorStandsStillTheOthersFansAreControlled()
{
    EngineMachine machine;
    startFollowing(machine);
    machine.engine->setFanMode(1, FanControlMode::constant(5000), false);
    machine.smc->setFailing("TC0P", true);
    machine.tick(22);
    static_cast<void>(machine.takeWrites());
    machine.tick(4);

    const QStringList writes = machine.takeWrites();
    const QStringList others { QStringLiteral("F1Tg 5000") };
    QCOMPARE(withoutDuplicates(speeds(writes)), others);
    QVERIFY(!masks(writes).isEmpty());
    QCOMPARE(withoutDuplicates(masks(writes)), QStringList { QStringLiteral("FS! 2") });
}

void EngineSensorTest::aSensorThatNobodyReadIsNotTakenForStopped()
{
    EngineMachine machine;
    machine.isVisible = false;
    machine.load();
    machine.start();
    machine.tick(60); // in which TC0P is not read
    machine.engine->setFanMode(0, following("TC0P"), false);
    machine.tick(60);

    QCOMPARE(machine.log.count(stopped), 0);
    QVERIFY(!speeds(machine.takeWrites()).isEmpty());
}

void EngineSensorTest::anotherModeEndsTheWithholding()
{
    EngineMachine machine;
    startFollowing(machine);
    machine.smc->setFailing("TC0P", true);
    machine.tick(22);
    QCOMPARE(machine.log.count(stopped), 1);

    machine.engine->setFanMode(0, following("TG0P"), false);
    static_cast<void>(machine.takeWrites());
    machine.tick(2);
    QCOMPARE(machine.takeWrites().value(0), QStringLiteral("FS! 1"));

    machine.engine->setFanMode(0, following("TC0P"), false);
    machine.tick(22);
    QCOMPARE(machine.log.count(stopped), 2);
    machine.engine->setFanMode(0, FanControlMode::constant(2500), false);
    static_cast<void>(machine.takeWrites());
    machine.tick();
    QCOMPARE(machine.takeWrites(),
             (QStringList { QStringLiteral("FS! 1"), QStringLiteral("F0Tg 2500") }));
    QCOMPARE(machine.log.count(returned), 0);
}

void EngineSensorTest::aSensorThatIsKnownToHaveStoppedIsNotWaitedForAgain()
{
    EngineMachine machine;
    startFollowing(machine);
    machine.smc->setFailing("TC0P", true);
    machine.tick(22);
    QCOMPARE(machine.log.count(stopped), 1);
    machine.engine->setFanMode(0, FanControlMode::automatic(), false);
    machine.tick(2);

    machine.engine->setFanMode(0, following("TC0P"), false);
    static_cast<void>(machine.takeWrites());
    machine.tick(2);
    QCOMPARE(machine.log.count(stopped), 2);
    QCOMPARE(machine.takeWrites(), QStringList { QStringLiteral("FS! 0") });

    // Another fan doesn't wait either, and both come back with the sensor.
    machine.engine->setFanMode(1, following("TC0P"), false);
    static_cast<void>(machine.takeWrites());
    machine.tick(2);
    QCOMPARE(machine.takeWrites(), QStringList { QStringLiteral("FS! 0") });
    machine.smc->setFailing("TC0P", false);
    machine.tick(2);
    const QStringList writes = machine.takeWrites();
    QVERIFY(speeds(writes).contains(QStringLiteral("F0Tg 3863")));
    QVERIFY(speeds(writes).contains(QStringLiteral("F1Tg 3863")));
}

void EngineSensorTest::theModeOfAnotherFanLeavesAWithheldFanAlone()
{
    EngineMachine machine;
    startFollowing(machine);
    machine.smc->setFailing("TC0P", true);
    machine.tick(22);
    static_cast<void>(machine.takeWrites());
    machine.engine->setFanMode(1, FanControlMode::constant(3000), false);

    QCOMPARE(machine.takeWrites(), QStringList { QStringLiteral("FS! 2") });
}

void EngineSensorTest::aWithheldFanGetsNoMinimumForSleep()
{
    EngineMachine machine;
    startFollowing(machine);
    machine.engine->setFanMode(1, following("TG0P"), false);
    machine.smc->setFailing("TC0P", true);
    machine.tick(24);
    QCOMPARE(machine.log.count(stopped), 1);
    machine.clock.advance(4000); // the modes are due again
    static_cast<void>(machine.takeWrites());
    machine.engine->slotEnteringSleepMode();
    machine.tick();

    const QStringList writes = machine.takeWrites();
    QVERIFY(speeds(writes).contains(QStringLiteral("F1Tg 2000")));
    QVERIFY(speeds(writes).filter(QStringLiteral("F0Tg")).isEmpty());
    QVERIFY(!machine.log.contains(
        QStringLiteral("info: ControlFanSpeedThread: set min rpm for the Left fan")));
    QCOMPARE(withoutDuplicates(masks(writes)), QStringList { QStringLiteral("FS! 2") });
}

void EngineSensorTest::aReloadDoesNotPassForAReturn()
{
    EngineMachine machine;
    machine.hasWindow = false;
    machine.load();
    machine.engine->setFanMode(0, following("TC0P"), false);
    machine.sensor("TC0P")->UpdateValue();
    machine.start(1);
    machine.tick(20);
    QCOMPARE(machine.log.count(stopped), 1);

    static_cast<void>(machine.takeWrites());
    machine.reload();
    machine.tick(2);
    QCOMPARE(machine.log.count(returned), 0);
    QCOMPARE(machine.takeWrites(), QStringList());

    machine.sensor("TC0P")->UpdateValue();
    machine.tick();
    QCOMPARE(machine.log.count(returned), 1);
}

void EngineSensorTest::theTimeAsleepDoesNotCount()
{
    EngineMachine machine;
    machine.hasWindow = false;
    machine.load();
    machine.engine->setFanMode(0, following("TC0P"), false);
    machine.sensor("TC0P")->UpdateValue();
    machine.start(1);
    machine.tick(10); // 15 seconds
    machine.engine->slotEnteringSleepMode();
    machine.tick(); // parked after 16.5 seconds
    machine.clock.advance(100000);
    const int begun = machine.clock.waitsBegun();
    machine.engine->slotWakeUp();
    QVERIFY(machine.clock.waitForWaitsBegun(begun + 1));
    machine.tick(8); // 28.5 seconds
    QCOMPARE(machine.log.count(stopped), 0);
    machine.tick();
    QCOMPARE(machine.log.count(stopped), 1);
}

void EngineSensorTest::asleepFansThatFollowASensorGetTheirMinimum()
{
    EngineMachine machine;
    machine.load();
    machine.engine->setFanMode(0, following("TC0P"), false);
    machine.engine->setFanMode(1, FanControlMode::constant(3000), false);
    machine.start();
    machine.tick();
    machine.log.clear();
    static_cast<void>(machine.takeWrites());
    machine.engine->slotEnteringSleepMode();
    machine.tick();

    const QStringList expected {
        QStringLiteral("info: slotEnteringSleepMode"),
        QStringLiteral("info: ControlFanSpeedThread: sleep mode"),
        QStringLiteral("info: ControlFanSpeedThread: set min rpm for the Left fan"),
    };
    QCOMPARE(machine.log.lines().mid(0, 3), expected);
    QCOMPARE(speeds(machine.takeWrites()), QStringList { QStringLiteral("F0Tg 2000") });

    // Parked: only the update task goes on.
    QCOMPARE(machine.clock.timedWaits(), 1);
    machine.smc->setFanSpeed("F1Ac", 5000);
    machine.tick(5);
    QCOMPARE(machine.takeWrites(), QStringList());
    QVERIFY(machine.log.count(QStringLiteral("info: ControlFanSpeedThread: sleep mode")) == 1);
}

void EngineSensorTest::afterTheWakeControlRestartsFromNothing()
{
    EngineMachine machine;
    startFollowing(machine);
    machine.tick();
    // The modes are due in this pass, and not yet in the one after the wake.
    machine.engine->slotEnteringSleepMode();
    machine.tick();
    static_cast<void>(machine.takeWrites());
    machine.smc->setKey("FS! ", "ui16", { 0, 0 }); // lost in sleep

    const int begun = machine.clock.waitsBegun();
    machine.engine->slotWakeUp();
    QVERIFY(machine.clock.waitForWaitsBegun(begun + 1));
    machine.tick();

    QVERIFY(machine.log.contains(QStringLiteral("info: slotWakeUp")));
    QCOMPARE(machine.takeWrites(),
             (QStringList { QStringLiteral("FS! 1"), QStringLiteral("F0Tg 3863") }));
}

void EngineSensorTest::aSleepThatNobodyNoticedDoesNotShortenTheNext()
{
    EngineMachine machine;
    startFollowing(machine);
    machine.engine->slotEnteringSleepMode();
    machine.engine->slotWakeUp();
    machine.engine->slotEnteringSleepMode();
    // The event of the first wake does not end the sleep: this wait and that of the
    // update task.
    const int begun = machine.clock.waitsBegun();
    machine.tick();
    QVERIFY(machine.clock.waitForWaitsBegun(begun + 2));
    QTRY_COMPARE_WITH_TIMEOUT(machine.clock.timedWaits(), 1, EngineMachine::patience);
    static_cast<void>(machine.takeWrites());
    machine.tick(3);

    QCOMPARE(machine.takeWrites(), QStringList());
    QCOMPARE(machine.log.count(QStringLiteral("info: ControlFanSpeedThread: sleep mode")), 1);
}

BRISORA_TEST_MAIN(EngineSensorTest, QCoreApplication)
#include "test_engine_sensor.moc"
