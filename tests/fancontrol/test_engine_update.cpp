#include <algorithm>
#include <mutex>

#include <QTest>

#include "app/fancontrol/fanspeeds.h"
#include "app/settingskeys.h"
#include "tests/fancontrol/enginemachine.h"
#include "tests/support/testenvironment.h"

// The update task alone: without write access no control task runs.
class EngineUpdateTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { EngineMachine::prepareProcess(); }

    void theFirstPassReadsEverythingThoughTheWindowIsHidden();
    void hiddenWithoutAnythingWantedOnlyFansAreRead();
    void hiddenTheSensorOfTheTrayIsRead();
    void hiddenTheSensorsThatFansFollowAreRead();
    void visibleEachKeyIsReadOnceAPass();
    void whatWasReadIsTold();
    void aSpeedThatCannotBeReadIsUnread();
    void withoutAMainWindowNothingIsRead();
    void aStopEndsThePassAtOnce();
    void refusedWriteAccessIsLogged();
};

namespace {

void startUpdateOnly(EngineMachine& machine)
{
    machine.hasWriteAccess = false;
    machine.load();
    static_cast<void>(machine.takeReads());
    machine.start(1);
}

QStringList sorted(QStringList list)
{
    list.sort();
    return list;
}

// What was read but for the control modes, which are looked at when the fans are
// given back.
QStringList passReads(EngineMachine& machine)
{
    QStringList reads = machine.takeReads();
    reads.removeAll(QStringLiteral("FS! "));
    return reads;
}

const QStringList fanKeys { QStringLiteral("F0Ac"), QStringLiteral("F1Ac") };
const QStringList allKeys { QStringLiteral("F0Ac"), QStringLiteral("F1Ac"), QStringLiteral("TA0P"),
                            QStringLiteral("TC0P"), QStringLiteral("TG0P") };

} // namespace

void EngineUpdateTest::theFirstPassReadsEverythingThoughTheWindowIsHidden()
{
    EngineMachine machine;
    machine.isVisible = false;
    startUpdateOnly(machine);

    QCOMPARE(sorted(passReads(machine)), allKeys);
}

void EngineUpdateTest::hiddenWithoutAnythingWantedOnlyFansAreRead()
{
    EngineMachine machine;
    machine.isVisible = false;
    startUpdateOnly(machine);
    static_cast<void>(machine.takeReads());

    machine.tick();

    QCOMPARE(machine.takeReads(), fanKeys);
}

void EngineUpdateTest::hiddenTheSensorOfTheTrayIsRead()
{
    EngineMachine machine;
    machine.isVisible = false;
    machine.settings.setString(SettingsKeys::traySensor, QStringLiteral("TG0P"));
    startUpdateOnly(machine);
    static_cast<void>(machine.takeReads());

    machine.tick();
    QCOMPARE(machine.takeReads(), fanKeys + QStringList { QStringLiteral("TG0P") });

    // The choice is looked up anew at each pass.
    machine.settings.setString(SettingsKeys::traySensor, QString());
    machine.tick();
    QCOMPARE(machine.takeReads(), fanKeys);
}

void EngineUpdateTest::hiddenTheSensorsThatFansFollowAreRead()
{
    EngineMachine machine;
    machine.isVisible = false;
    startUpdateOnly(machine);
    // The fan's key is the sensor's in another spelling, as another model's
    // preset may have it.
    machine.engine->setFanMode(1, FanControlMode::sensor(QStringLiteral("TC0p"), 40, 70), false);
    static_cast<void>(machine.takeReads());

    machine.tick();

    QCOMPARE(machine.takeReads(), fanKeys + QStringList { QStringLiteral("TC0P") });
}

void EngineUpdateTest::visibleEachKeyIsReadOnceAPass()
{
    EngineMachine machine;
    startUpdateOnly(machine);
    machine.engine->setFanMode(1, FanControlMode::sensor(QStringLiteral("TC0P"), 40, 70), false);
    machine.settings.setString(SettingsKeys::traySensor, QStringLiteral("TC0P"));
    static_cast<void>(machine.takeReads());

    machine.tick();

    QCOMPARE(sorted(machine.takeReads()), allKeys);
}

void EngineUpdateTest::whatWasReadIsTold()
{
    EngineMachine machine;
    std::mutex mutex;
    QList<int> fans;
    QMap<uint32_t, double> values;
    connect(
        machine.engine.get(), &QFanControl::fanUpdate, machine.engine.get(),
        [&](uint8_t fan) {
            const std::lock_guard lock(mutex);
            fans.append(fan);
        },
        Qt::DirectConnection);
    connect(
        machine.engine.get(), &QFanControl::sensor_update, machine.engine.get(),
        [&](uint32_t id, double value) {
            const std::lock_guard lock(mutex);
            values.insert(id, value);
        },
        Qt::DirectConnection);
    startUpdateOnly(machine);

    const std::lock_guard lock(mutex);
    QCOMPARE(fans, (QList<int> { 0, 1 }));
    QCOMPARE(values.size(), 3);
    QCOMPARE(values.value(machine.sensor("TA0P")->id()), 30.0);
    QCOMPARE(values.value(machine.sensor("TC0P")->id()), 55.0);
    QCOMPARE(values.value(machine.sensor("TG0P")->id()), 45.0);
}

void EngineUpdateTest::aSpeedThatCannotBeReadIsUnread()
{
    EngineMachine machine;
    startUpdateOnly(machine);
    machine.smc->setFailing("F0Ac", true);
    machine.smc->setFanSpeed("F1Ac", 3210);
    machine.tick();

    QCOMPARE(machine.engine->getFans()[0].rpmCurrent(), FanSpeeds::unread);
    QCOMPARE(machine.engine->getFans()[0].rpmMax(), uint16_t(6000));
    QCOMPARE(machine.engine->getFans()[1].rpmCurrent(), uint16_t(3210));
}

void EngineUpdateTest::withoutAMainWindowNothingIsRead()
{
    EngineMachine machine;
    machine.hasWindow = false;
    machine.load();
    static_cast<void>(machine.takeReads());
    machine.start(1); // the control task
    machine.tick();

    QCOMPARE(machine.takeReads(), QStringList());
    QVERIFY(machine.engine->stopAndWaitForFinished());
}

void EngineUpdateTest::aStopEndsThePassAtOnce()
{
    EngineMachine machine;
    machine.hasWriteAccess = false;
    machine.load();
    static_cast<void>(machine.takeReads());
    machine.platform->onRead = [&machine](const std::string& key) {
        if (key == "F0Ac") {
            machine.engine->requestStop();
        }
    };
    std::atomic<int> updates { 0 };
    connect(
        machine.engine.get(), &QFanControl::fanUpdate, machine.engine.get(),
        [&updates](uint8_t) { ++updates; }, Qt::DirectConnection);
    machine.engine->startThreads();
    QVERIFY(machine.engine->stopAndWaitForFinished());

    QCOMPARE(updates.load(), 0);
    QCOMPARE(passReads(machine), QStringList { QStringLiteral("F0Ac") });
}

void EngineUpdateTest::refusedWriteAccessIsLogged()
{
    EngineMachine machine;
    startUpdateOnly(machine);

    QCOMPARE(machine.log.count(
                 QStringLiteral("warning: Helper tool is not installed, thread cannot start")),
             1);
}

BRISORA_TEST_MAIN(EngineUpdateTest, QCoreApplication)
#include "test_engine_update.moc"
