#include <QTest>

#include "tests/fancontrol/enginemachine.h"
#include "tests/support/testenvironment.h"

// What the control task writes for constant fans, and how.
class EngineControlTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { EngineMachine::prepareProcess(); }

    void automaticFansAreLeftAlone();
    void aConstantFanIsWrittenByItsDeviation_data();
    void aConstantFanIsWrittenByItsDeviation();
    void anUnreadSpeedCountsAsDeviation();
    void theForceFlagReachesTheFirstConstantFanOnly();
    void anActivationDuringAWriteKeepsItsForceFlag();
    void modesAreSentAgainEveryThreeSecondsBeforeTheSpeed();
    void aSpeedStaysWithinTheLimits_data();
    void aSpeedStaysWithinTheLimits();
    void theDeviationIsMeasuredFromTheClampedSpeed();
    void aFanWithUnreadLimitsIsLeftToTheController();
    void limitsThatAreNoRangeCountAsUnread();
    void aFailingWriteStopsNothing();
};

namespace {

void follow(EngineMachine& machine, const QStringList& writes)
{
    QCOMPARE(machine.takeWrites(), writes);
}

} // namespace

void EngineControlTest::automaticFansAreLeftAlone()
{
    EngineMachine machine;
    machine.load();
    static_cast<void>(machine.takeWrites());
    machine.start();
    machine.tick(5);

    follow(machine, {});
}

void EngineControlTest::aConstantFanIsWrittenByItsDeviation_data()
{
    QTest::addColumn<int>("speed");
    QTest::addColumn<bool>("isWritten");
    QTest::newRow("as it should be") << 3000 << false;
    QTest::newRow("30 above") << 3030 << false;
    QTest::newRow("31 above") << 3031 << true;
    QTest::newRow("30 below") << 2970 << false;
    QTest::newRow("31 below") << 2969 << true;
}

void EngineControlTest::aConstantFanIsWrittenByItsDeviation()
{
    QFETCH(int, speed);
    QFETCH(bool, isWritten);
    EngineMachine machine;
    machine.smc->setFanSpeed("F0Ac", 3000);
    machine.load();
    machine.engine->setFanMode(0, FanControlMode::constant(3000), false);
    machine.start();
    static_cast<void>(machine.takeWrites());

    machine.smc->setFanSpeed("F0Ac", static_cast<std::uint16_t>(speed));
    // The first pass may have looked at the fan before its speed was read.
    machine.tick(2);

    QCOMPARE(machine.takeWrites().contains(QStringLiteral("F0Tg 3000")), isWritten);
}

void EngineControlTest::anUnreadSpeedCountsAsDeviation()
{
    EngineMachine machine;
    machine.smc->setFanSpeed("F0Ac", 3000);
    machine.load();
    machine.engine->setFanMode(0, FanControlMode::constant(3000), false);
    machine.start();
    static_cast<void>(machine.takeWrites());

    machine.smc->setFailing("F0Ac", true);
    machine.tick(2);

    QVERIFY(machine.takeWrites().contains(QStringLiteral("F0Tg 3000")));
}

void EngineControlTest::theForceFlagReachesTheFirstConstantFanOnly()
{
    EngineMachine machine;
    machine.load();
    machine.engine->setFanMode(0, FanControlMode::constant(2500), false);
    machine.engine->setFanMode(1, FanControlMode::constant(3000), false);
    static_cast<void>(machine.takeWrites());
    machine.start();
    machine.tick(2);

    follow(machine, { QStringLiteral("FS! 3"), QStringLiteral("F0Tg 2500") });

    // Every activation sets the flag, that of the same modes too.
    machine.engine->changeActiveProfile(machine.engine->profiles()->activeProfile());
    machine.tick(2);
    follow(machine,
           { QStringLiteral("FS! 3"), QStringLiteral("FS! 3"), QStringLiteral("F0Tg 2500") });
}

void EngineControlTest::anActivationDuringAWriteKeepsItsForceFlag()
{
    EngineMachine machine;
    machine.smc->setFanSpeed("F0Ac", 3000);
    machine.load();
    machine.engine->setFanMode(0, FanControlMode::constant(3000), false);
    FanProfile next = machine.engine->profiles()->activeProfile();
    next.setMode(0, FanControlMode::constant(3020));
    std::atomic<bool> isFirst { true };
    machine.platform->onWrite = [&](const std::string& key) {
        if (key == "F0Tg" && isFirst.exchange(false)) {
            machine.engine->profiles()->setActiveProfile(next);
        }
    };
    static_cast<void>(machine.takeWrites());
    machine.start();
    machine.tick(2);

    // Too close to the speed to be written without the flag.
    follow(machine,
           { QStringLiteral("FS! 1"), QStringLiteral("F0Tg 3000"), QStringLiteral("F0Tg 3020") });
}

void EngineControlTest::modesAreSentAgainEveryThreeSecondsBeforeTheSpeed()
{
    EngineMachine machine;
    machine.load();
    machine.engine->setFanMode(1, FanControlMode::constant(5000), false);
    static_cast<void>(machine.takeWrites());
    machine.start();
    machine.tick(4);

    const QString modes = QStringLiteral("FS! 2");
    const QString speed = QStringLiteral("F1Tg 5000");
    // At 0, 1.5, 3, 4.5 and 6 seconds.
    follow(machine, { modes, speed, speed, speed, modes, speed, speed });
}

void EngineControlTest::aSpeedStaysWithinTheLimits_data()
{
    QTest::addColumn<uint>("wanted");
    QTest::addColumn<QString>("written");
    QTest::newRow("below") << 500u << QStringLiteral("F0Tg 2000");
    QTest::newRow("zero") << 0u << QStringLiteral("F0Tg 2000");
    QTest::newRow("lowest") << 2000u << QStringLiteral("F0Tg 2000");
    QTest::newRow("within") << 4321u << QStringLiteral("F0Tg 4321");
    QTest::newRow("highest") << 6000u << QStringLiteral("F0Tg 6000");
    QTest::newRow("above") << 6001u << QStringLiteral("F0Tg 6000");
    QTest::newRow("unread maximum") << 65535u << QStringLiteral("F0Tg 6000");
    QTest::newRow("more than 16 bits") << 65536u + 3000u << QStringLiteral("F0Tg 6000");
}

void EngineControlTest::aSpeedStaysWithinTheLimits()
{
    QFETCH(uint, wanted);
    QFETCH(QString, written);
    EngineMachine machine;
    machine.load();
    machine.engine->setFanMode(0, FanControlMode::constant(wanted), false);
    static_cast<void>(machine.takeWrites());
    machine.start();

    QCOMPARE(machine.takeLastWrite(), written);
}

void EngineControlTest::theDeviationIsMeasuredFromTheClampedSpeed()
{
    EngineMachine machine;
    machine.smc->setFanSpeed("F0Ac", 6000);
    machine.load();
    machine.engine->setFanMode(0, FanControlMode::constant(9000), false);
    machine.start();
    static_cast<void>(machine.takeWrites());
    machine.tick(3);

    follow(machine, {});
}

void EngineControlTest::aFanWithUnreadLimitsIsLeftToTheController()
{
    EngineMachine machine;
    machine.smc->setFailing("F0Mx", true);
    machine.load();
    static_cast<void>(machine.takeWrites());
    machine.engine->setFanMode(0, FanControlMode::constant(3500), false);
    machine.engine->setFanMode(1, FanControlMode::constant(5000), false);
    follow(machine, { QStringLiteral("FS! 0"), QStringLiteral("FS! 2") });
    machine.start();
    machine.tick(3);

    const QString warning = QStringLiteral(
        "warning: Fan 0: the speed limits can't be read, the fan is left to the system");
    QCOMPARE(machine.log.count(warning), 1);
    // The force flag isn't used up by a fan that can't be written.
    const QStringList expected { QStringLiteral("FS! 2"),     QStringLiteral("F1Tg 5000"),
                                 QStringLiteral("F1Tg 5000"), QStringLiteral("F1Tg 5000"),
                                 QStringLiteral("FS! 2"),     QStringLiteral("F1Tg 5000") };
    QCOMPARE(machine.takeWrites(), expected);

    machine.smc->setFailing("F0Mx", false);
    machine.tick();
    const QStringList writes = machine.takeWrites();
    QCOMPARE(writes.mid(0, 2),
             (QStringList { QStringLiteral("FS! 3"), QStringLiteral("F0Tg 3500") }));
    QCOMPARE(machine.engine->getFans()[0].rpmMax(), uint16_t(6000));
}

void EngineControlTest::limitsThatAreNoRangeCountAsUnread()
{
    EngineMachine machine;
    machine.smc->setFanSpeed("F0Mx", 0);
    machine.load();
    static_cast<void>(machine.takeWrites());
    machine.engine->setFanMode(0, FanControlMode::constant(3500), false);
    follow(machine, { QStringLiteral("FS! 0") });
    machine.start();
    machine.tick(2);

    follow(machine, {});
}

void EngineControlTest::aFailingWriteStopsNothing()
{
    EngineMachine machine;
    machine.smc->setInvertedWrites(true);
    machine.load();
    machine.engine->setFanMode(0, FanControlMode::constant(5000), false);
    static_cast<void>(machine.takeWrites());
    machine.start();
    machine.tick();

    follow(machine,
           { QStringLiteral("FS! 1"), QStringLiteral("F0Tg 5000"), QStringLiteral("F0Tg 5000") });
}

BRISORA_TEST_MAIN(EngineControlTest, QCoreApplication)
#include "test_engine_control.moc"
