#include <atomic>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include <QSignalSpy>
#include <QTest>

#include "app/settingskeys.h"
#include "core/application_flags.h"
#include "tests/fancontrol/enginemachine.h"
#include "tests/support/testenvironment.h"

// Exceptions in the engine's tasks: the fans are given back, and can be taken
// again.
class EngineFailureTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { EngineMachine::prepareProcess(); }
    void cleanup() { core::flags::clear(core::flags::noSupport); }

    void anExceptionInTheLoadIsReported();
    void presetsAreOnlySavedOnceLoaded();
    void aFailedLoadSavesNoPresets();
    void aFailedLoadGivesForcedFansBack_data();
    void aFailedLoadGivesForcedFansBack();
    void anExceptionInTheControlTaskGivesTheFansBack();
    void anExceptionInTheUpdateTaskGivesTheFansBack();
    void fansThatCannotBeGivenBackAreGivenBackLater();
    void aStartAfterAnExceptionDrivesTheFansAgain_data();
    void aStartAfterAnExceptionDrivesTheFansAgain();
    void aNewControlTaskWithholdsNoFan();
};

namespace {

const QString released = QStringLiteral("FS! 0");

QString unreadableCustomPreset() { return QStringLiteral("bm9uc2Vuc2U="); }

void forceFans(EngineMachine& machine)
{
    machine.load();
    machine.engine->setFanMode(0, FanControlMode::constant(5000), false);
    machine.engine->setFanMode(1, FanControlMode::sensor(QStringLiteral("TC0P"), 40, 70), false);
}

} // namespace

void EngineFailureTest::anExceptionInTheLoadIsReported()
{
    EngineMachine machine;
    machine.open();
    machine.platform->onRead = [](const std::string& key) {
        if (key == "F1Mn") {
            throw std::runtime_error("broken");
        }
    };
    QSignalSpy finished(machine.engine.get(), &QFanControl::initFinished);
    machine.engine->initialLoad(false);

    QCOMPARE(finished.size(), 1);
    QCOMPARE(finished.first().first().value<uint8_t>(), uint8_t(1));
    QCOMPARE(machine.log.count(QStringLiteral("error: initialLoadThread failed: broken")), 1);
    QVERIFY(machine.engine->stopAndWaitForFinished());
}

void EngineFailureTest::presetsAreOnlySavedOnceLoaded()
{
    EngineMachine machine;
    machine.settings.setStringList(SettingsKeys::customPresets, { unreadableCustomPreset() });
    machine.settings.setString(SettingsKeys::activePreset, QStringLiteral("Predefined:1"));

    machine.engine.reset(); // never loaded

    QCOMPARE(machine.settings.getStringList(SettingsKeys::customPresets),
             QStringList { unreadableCustomPreset() });
    QCOMPARE(machine.settings.getString(SettingsKeys::activePreset),
             QStringLiteral("Predefined:1"));
}

void EngineFailureTest::aFailedLoadSavesNoPresets()
{
    EngineMachine machine;
    machine.settings.setStringList(SettingsKeys::customPresets, { unreadableCustomPreset() });
    machine.settings.setString(SettingsKeys::activePreset, QStringLiteral("Predefined:1"));
    machine.platform->onRead = [](const std::string& key) {
        if (key == "TC0P") {
            throw std::runtime_error("broken");
        }
    };
    machine.load();
    machine.engine.reset();

    QCOMPARE(machine.settings.getStringList(SettingsKeys::customPresets),
             QStringList { unreadableCustomPreset() });
    QCOMPARE(machine.settings.getString(SettingsKeys::activePreset),
             QStringLiteral("Predefined:1"));
}

void EngineFailureTest::aFailedLoadGivesForcedFansBack_data()
{
    QTest::addColumn<QString>("brokenKey");
    QTest::addColumn<bool>("isSupported");
    QTest::addColumn<QStringList>("writes");
    const QStringList cleared { QStringLiteral("FS! 0") };
    QTest::newRow("before the fans are known") << QStringLiteral("F1ID") << true << cleared;
    QTest::newRow("after the fans were found")
        << QStringLiteral("TC0P") << true << cleared + cleared;
    QTest::newRow("without support") << QStringLiteral("TC0P") << false << QStringList();
}

void EngineFailureTest::aFailedLoadGivesForcedFansBack()
{
    QFETCH(QString, brokenKey);
    QFETCH(bool, isSupported);
    QFETCH(QStringList, writes);
    if (!isSupported) {
        core::flags::set(core::flags::noSupport);
    }
    EngineMachine machine;
    machine.smc->setKey("FS! ", "ui16", { 0, 3 });
    machine.platform->onRead = [&brokenKey](const std::string& key) {
        if (key == brokenKey.toStdString()) {
            throw std::runtime_error("broken");
        }
    };
    machine.load();
    QVERIFY(machine.log.contains(QStringLiteral("error: initialLoadThread failed: broken")));
    QCOMPARE(machine.takeWrites(), writes);
    QVERIFY(machine.engine->stopAndWaitForFinished());
    QCOMPARE(machine.takeWrites(), QStringList());
}

void EngineFailureTest::anExceptionInTheControlTaskGivesTheFansBack()
{
    EngineMachine machine;
    machine.hasWindow = false;
    machine.smc->setFailing("F0Mx", true);
    forceFans(machine);
    // Limits that are unread are read by the control task.
    machine.platform->onRead = [](const std::string& key) {
        if (key == "F0Mx") {
            throw std::runtime_error("broken");
        }
    };
    machine.engine->startThreads();
    QTRY_VERIFY_WITH_TIMEOUT(machine.log.contains(QStringLiteral(
                                 "error: Task brisora-control ended with an exception: broken")),
                             EngineMachine::patience);

    QCOMPARE(machine.takeLastWrite(), released);
    machine.engine->setFanMode(1, FanControlMode::constant(4000), false);
    QCOMPARE(machine.takeWrites(), QStringList());
    QVERIFY(machine.engine->stopAndWaitForFinished());
}

void EngineFailureTest::anExceptionInTheUpdateTaskGivesTheFansBack()
{
    EngineMachine machine;
    forceFans(machine);
    std::atomic<bool> isBroken { false };
    machine.platform->onRead = [&isBroken](const std::string& key) {
        if (key == "TA0P" && isBroken) {
            throw std::runtime_error("broken");
        }
    };
    machine.start();
    isBroken = true;
    machine.clock.advance(EngineContext::passInterval);
    QTRY_VERIFY_WITH_TIMEOUT(machine.log.contains(QStringLiteral(
                                 "error: Task brisora-update ended with an exception: broken")),
                             EngineMachine::patience);
    QTRY_COMPARE_WITH_TIMEOUT(machine.clock.timedWaits(), 1, EngineMachine::patience);
    machine.tick(4);

    QCOMPARE(machine.takeLastWrite(), released);
    QVERIFY(machine.engine->stopAndWaitForFinished());
}

void EngineFailureTest::fansThatCannotBeGivenBackAreGivenBackLater()
{
    EngineMachine machine;
    machine.hasWindow = false;
    forceFans(machine);
    machine.platform->onWrite = [](const std::string& key) {
        if (key == "FS! " || key == "F0Tg") {
            throw std::runtime_error("broken");
        }
    };
    machine.engine->startThreads();
    QTRY_VERIFY_WITH_TIMEOUT(machine.log.contains(QStringLiteral(
                                 "error: Task brisora-control ended with an exception: broken")),
                             EngineMachine::patience);
    QVERIFY(machine.log.contains(QStringLiteral("error: The fans can't be given back: broken")));
    QCOMPARE(machine.smc->keyValue("FS! "), (std::vector<std::uint8_t> { 0, 3 }));

    // Nothing is sent by then, and a reload need not wait for the task.
    machine.platform->onWrite = nullptr;
    static_cast<void>(machine.takeWrites());
    machine.engine->setFanMode(0, FanControlMode::constant(4000), false);
    QCOMPARE(machine.takeWrites(), QStringList());
    const std::int64_t begin = machine.clock.elapsedMilliseconds();
    machine.engine->slotSensorsReload();
    QCOMPARE(machine.clock.elapsedMilliseconds(), begin);
    QVERIFY(!machine.log.contains(
        QStringLiteral("warning: The tasks can't be paused, the sensors are loaded later")));
    QVERIFY(machine.engine->stopAndWaitForFinished());
    QCOMPARE(machine.takeWrites(), QStringList { released });
}

void EngineFailureTest::aStartAfterAnExceptionDrivesTheFansAgain_data()
{
    QTest::addColumn<bool>("hasWriteAccess");
    QTest::newRow("with write access") << true;
    QTest::newRow("without write access") << false;
}

void EngineFailureTest::aStartAfterAnExceptionDrivesTheFansAgain()
{
    QFETCH(bool, hasWriteAccess);
    EngineMachine machine;
    forceFans(machine);
    std::atomic<bool> isBroken { false };
    machine.platform->onRead = [&isBroken](const std::string& key) {
        if (key == "TA0P" && isBroken) {
            throw std::runtime_error("broken");
        }
    };
    machine.start();
    machine.tick(3);
    isBroken = true;
    machine.clock.advance(EngineContext::passInterval);
    QTRY_VERIFY_WITH_TIMEOUT(machine.log.contains(QStringLiteral(
                                 "error: Task brisora-update ended with an exception: broken")),
                             EngineMachine::patience);
    QTRY_COMPARE_WITH_TIMEOUT(machine.clock.timedWaits(), 1, EngineMachine::patience);
    isBroken = false;
    static_cast<void>(machine.takeWrites());

    machine.hasWriteAccess = hasWriteAccess;
    machine.start(1); // the update task
    if (!hasWriteAccess) {
        machine.tick(2);
        QCOMPARE(machine.takeWrites(), QStringList());
        return;
    }
    QCOMPARE(machine.takeWrites(), QStringList { QStringLiteral("FS! 3") });
    machine.tick();
    const QStringList writes = machine.takeWrites();
    QVERIFY(writes.contains(QStringLiteral("F0Tg 5000")));
    QVERIFY(writes.contains(QStringLiteral("F1Tg 3863"))); // from nothing
    QVERIFY(machine.engine->stopAndWaitForFinished());
    QCOMPARE(machine.takeLastWrite(), released);
}

void EngineFailureTest::aNewControlTaskWithholdsNoFan()
{
    EngineMachine machine;
    machine.hasWindow = false; // nobody reads a sensor
    machine.load();
    machine.engine->setFanMode(0, FanControlMode::constant(5000), false);
    machine.engine->setFanMode(1, FanControlMode::sensor(QStringLiteral("TC0P"), 40, 70), false);
    machine.sensor("TC0P")->UpdateValue();
    std::atomic<bool> isBroken { false };
    machine.platform->onWrite = [&isBroken](const std::string& key) {
        if (key == "F0Tg" && isBroken) {
            throw std::runtime_error("broken");
        }
    };
    machine.start(1);
    machine.tick(21);
    QVERIFY(machine.log.contains(QStringLiteral(
        "warning: The sensor TC0P has stopped reading, the Right fan is left to the system")));
    isBroken = true;
    machine.clock.advance(EngineContext::passInterval);
    QTRY_VERIFY_WITH_TIMEOUT(machine.log.contains(QStringLiteral(
                                 "error: Task brisora-control ended with an exception: broken")),
                             EngineMachine::patience);
    QTRY_COMPARE_WITH_TIMEOUT(machine.clock.timedWaits(), 0, EngineMachine::patience);
    isBroken = false;
    static_cast<void>(machine.takeWrites());
    machine.start(1);

    QCOMPARE(machine.takeWrites(),
             (QStringList { QStringLiteral("FS! 1"), QStringLiteral("FS! 3"),
                            QStringLiteral("F0Tg 5000"), QStringLiteral("F1Tg 3863") }));
}

BRISORA_TEST_MAIN(EngineFailureTest, QCoreApplication)
#include "test_engine_failure.moc"
