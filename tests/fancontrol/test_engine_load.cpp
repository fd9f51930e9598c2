#include <atomic>
#include <functional>

#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

#include "app/settingskeys.h"
#include "core/application_flags.h"
#include "tests/fancontrol/enginemachine.h"
#include "tests/support/testenvironment.h"

class EngineLoadTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { EngineMachine::prepareProcess(); }
    void cleanup() { core::flags::clear(core::flags::noSupport); }

    void theLoadFindsTheFansAndLogsThem();
    void fansAreNamedByTheProgramsOwnDataFirst();
    void thePredefinedPresetsAreAutomaticAndFullBlast();
    void fansForcedByAnotherProgramAreTakenBack();
    void modesThatCannotBeQueriedAreLogged();
    void aMachineWithoutFansIsLoadedAndRunsWithoutWrites();
    void aPassiveMachineGetsNoFanTraffic();
    void withoutSupportTheControllerIsNotAskedForFans();
    void theStoredActivePresetIsAppliedAtTheNextStart();
    void changesBeforeTheEndOfTheLoadAreIgnored();
    void presetsThatAreNotValidAreIgnored();
    void aStopBeforeTheEndOfTheLoadKeepsItQuiet();
    void anAsynchronousLoadReportsItsEnd();
    void theLoadRunsOnce();
    void theNameFunctionLivesAsLongAsTheEngine();
    void beforeTheLoadThereIsNothing();
    void theTechnicalReportHasItsForm();
    void theTechnicalReportTellsThePowerOfLaptops_data();
    void theTechnicalReportTellsThePowerOfLaptops();
    void fanIdsBeyondTheFansAreIgnored();
    void settingAnInvalidOrUnassignedModeIsIgnored_data();
    void settingAnInvalidOrUnassignedModeIsIgnored();
    void setFanModeCanKeepTheChangeInItsPreset();
    void deletingTheActivePresetGivesTheFansBack();
};

void EngineLoadTest::theLoadFindsTheFansAndLogsThem()
{
    EngineMachine machine;
    machine.open();
    QSignalSpy finished(machine.engine.get(), &QFanControl::initFinished);
    machine.log.clear();

    machine.engine->initialLoad(false);

    QCOMPARE(finished.size(), 1);
    QCOMPARE(finished.first().first().value<uint8_t>(), uint8_t(0));
    const QStringList expected {
        QStringLiteral("info: initialLoadThread"),
        QStringLiteral("info: QFanControl::loadFansFromSMC"),
        QStringLiteral("info: Fans count - 2"),
        QStringLiteral("info: Fan 0: Left"),
        QStringLiteral("info: Fan 1: Right"),
        QStringLiteral("info: checkFansControlModeFromSMC"),
    };
    QCOMPARE(machine.log.lines().mid(0, expected.size()), expected);
    QCOMPARE(machine.engine->fanCount(), uint8_t(2));
    const FanRecord& fan = machine.engine->getFans().at(1);
    QCOMPARE(fan.name(), QStringLiteral("Right"));
    QCOMPARE(fan.rpmCurrent(), uint16_t(3000));
    QCOMPARE(fan.rpmMin(), uint16_t(2000));
    QCOMPARE(fan.rpmMax(), uint16_t(6000));
    QCOMPARE(machine.engine->getFanMode(0), FanControlMode::automatic());
    // The preset is applied, and no fan was forced before.
    QCOMPARE(machine.takeWrites(), QStringList { QStringLiteral("FS! 0") });
}

void EngineLoadTest::fansAreNamedByTheProgramsOwnDataFirst()
{
    EngineMachine machine(QStringLiteral("MacBookPro15,4"));
    machine.load();

    // The data names one fan of this model, the controller the other.
    QCOMPARE(machine.engine->getFans().at(0).name(), QStringLiteral("Right side"));
    QCOMPARE(machine.engine->getFans().at(1).name(), QStringLiteral("Right"));
}

void EngineLoadTest::thePredefinedPresetsAreAutomaticAndFullBlast()
{
    EngineMachine machine;
    machine.smc->setFanSpeed("F1Mx", 5500);
    machine.load();

    const auto predefined = machine.engine->profiles()->predefinedProfiles();
    QCOMPARE(predefined.size(), std::size_t(2));
    QCOMPARE(predefined[0].mode(0), FanControlMode::automatic());
    QCOMPARE(predefined[0].mode(1), FanControlMode::automatic());
    QCOMPARE(predefined[1].mode(0), FanControlMode::constant(6000));
    QCOMPARE(predefined[1].mode(1), FanControlMode::constant(5500));
    QVERIFY(machine.engine->profiles()->isActiveAutomatic());
}

void EngineLoadTest::fansForcedByAnotherProgramAreTakenBack()
{
    EngineMachine machine;
    machine.smc->setKey("FS! ", "ui16", { 0, 2 });
    machine.load();

    QCOMPARE(machine.log.count(QStringLiteral("warning: Fan 1 mode is set by another program")), 1);
    QVERIFY(!machine.log.contains(QStringLiteral("warning: Fan 0 mode is set by another program")));
    const QStringList cleared { QStringLiteral("FS! 0"), QStringLiteral("FS! 0") };
    QCOMPARE(machine.takeWrites(), cleared);
}

void EngineLoadTest::modesThatCannotBeQueriedAreLogged()
{
    EngineMachine machine;
    machine.open();
    machine.smc->setFailing("FS! ", true);
    machine.engine->initialLoad(false);

    QCOMPARE(machine.log.count(QStringLiteral("error: Unable to query fans control mode!")), 1);
}

void EngineLoadTest::aMachineWithoutFansIsLoadedAndRunsWithoutWrites()
{
    EngineMachine machine;
    machine.removeFans();
    machine.open();
    QSignalSpy finished(machine.engine.get(), &QFanControl::initFinished);
    machine.engine->initialLoad(false);

    QCOMPARE(machine.log.count(QStringLiteral("error: No fans detected!")), 1);
    QCOMPARE(finished.size(), 1);
    machine.start(2);
    machine.tick(2);
    QVERIFY(machine.engine->stopAndWaitForFinished());
    machine.engine.reset();
    QCOMPARE(machine.takeWrites(), QStringList());
}

void EngineLoadTest::aPassiveMachineGetsNoFanTraffic()
{
    EngineMachine machine(QStringLiteral("MacBook10,1"));
    machine.smc->setKey("FS! ", "ui16", { 0, 1 });
    machine.open();
    QSignalSpy finished(machine.engine.get(), &QFanControl::initFinished);
    machine.engine->initialLoad(false);
    machine.start(2);
    machine.tick();
    QVERIFY(machine.engine->stopAndWaitForFinished());
    machine.engine.reset();

    QCOMPARE(finished.size(), 1);
    QVERIFY(!machine.log.contains(QStringLiteral("error: No fans detected!")));
    QVERIFY(machine.smc->writes().empty());
    const QStringList reads = machine.takeReads();
    QVERIFY(reads.contains(QStringLiteral("TC0P")));
    QVERIFY(reads.filter(QRegularExpression(QStringLiteral("^F"))).isEmpty());
}

void EngineLoadTest::withoutSupportTheControllerIsNotAskedForFans()
{
    EngineMachine machine;
    core::flags::set(core::flags::noSupport);
    machine.smc->setKey("FS! ", "ui16", { 0, 1 });
    machine.load();
    QVERIFY(machine.engine->stopAndWaitForFinished());
    machine.engine.reset();

    QVERIFY(machine.smc->writes().empty());
    QVERIFY(machine.takeReads().filter(QRegularExpression(QStringLiteral("^F"))).isEmpty());
    QVERIFY(!machine.log.contains(QStringLiteral("info: restore default control?")));
}

void EngineLoadTest::theStoredActivePresetIsAppliedAtTheNextStart()
{
    EngineMachine machine;
    machine.load();
    machine.engine->setFanMode(1, FanControlMode::sensor(QStringLiteral("TC0P"), 40, 70), false);
    machine.makeEngine();
    static_cast<void>(machine.takeWrites());

    machine.engine->initialLoad(false);

    QCOMPARE(machine.engine->getFanMode(0), FanControlMode::automatic());
    QCOMPARE(machine.engine->getFanMode(1), FanControlMode::sensor(QStringLiteral("TC0P"), 40, 70));
    QCOMPARE(machine.takeLastWrite(), QStringLiteral("FS! 2"));
}

void EngineLoadTest::changesBeforeTheEndOfTheLoadAreIgnored()
{
    EngineMachine machine;
    FanProfile::setFanCount(2);
    const FanProfile fullBlast({ FanControlMode::constant(6000), FanControlMode::constant(6000) },
                               QStringLiteral("any"));
    const QSignalSpy changed(machine.engine->profiles(), &QFanProfileList::profilesChanged);
    machine.engine->changeActiveProfile(fullBlast);
    machine.engine->setFanMode(0, FanControlMode::constant(3000), false);
    QCOMPARE(changed.size(), 0);

    machine.load();
    QVERIFY(machine.engine->profiles()->isActiveAutomatic());
    machine.engine->changeActiveProfile(fullBlast);
    QVERIFY(machine.engine->profiles()->isActiveFullBlast());
}

void EngineLoadTest::presetsThatAreNotValidAreIgnored()
{
    EngineMachine machine;
    machine.load();
    static_cast<void>(machine.takeWrites());
    const FanControlMode full = FanControlMode::constant(6000);
    machine.engine->changeActiveProfile(FanProfile({ full }, QStringLiteral("too short")));
    machine.engine->changeActiveProfile(
        FanProfile({ full, FanControlMode() }, QStringLiteral("invalid mode")));
    machine.engine->changeActiveProfile(FanProfile());

    QVERIFY(machine.engine->profiles()->isActiveAutomatic());
    QCOMPARE(machine.takeWrites(), QStringList());
}

void EngineLoadTest::aStopBeforeTheEndOfTheLoadKeepsItQuiet()
{
    EngineMachine machine;
    machine.open();
    QSignalSpy finished(machine.engine.get(), &QFanControl::initFinished);
    machine.engine->requestStop();
    machine.engine->initialLoad(false);

    QCOMPARE(finished.size(), 0);
}

void EngineLoadTest::anAsynchronousLoadReportsItsEnd()
{
    EngineMachine machine;
    machine.open();
    std::atomic<int> ends { 0 };
    connect(
        machine.engine.get(), &QFanControl::initFinished, machine.engine.get(),
        [&ends](uint8_t failed) { ends += failed == 0 ? 1 : 100; }, Qt::DirectConnection);
    machine.engine->initialLoad(true);

    QTRY_COMPARE_WITH_TIMEOUT(ends.load(), 1, EngineMachine::patience);
    QCOMPARE(machine.engine->fanCount(), uint8_t(2));
}

void EngineLoadTest::theLoadRunsOnce()
{
    EngineMachine machine;
    machine.load();
    machine.engine->initialLoad(false);

    QCOMPARE(machine.engine->fanCount(), uint8_t(2));
    QCOMPARE(machine.log.count(QStringLiteral("info: initialLoadThread")), 1);
}

void EngineLoadTest::theNameFunctionLivesAsLongAsTheEngine()
{
    EngineMachine machine;
    machine.load();
    const QString text = QStringLiteral("2,TC0P,40,70");

    QCOMPARE(FanControlMode::fromString(text).type(), FanControlSensor);
    machine.engine.reset();
    QVERIFY_EXCEPTION_THROWN(static_cast<void>(FanControlMode::fromString(text)),
                             std::bad_function_call);
}

void EngineLoadTest::beforeTheLoadThereIsNothing()
{
    EngineMachine machine;

    QCOMPARE(machine.engine->fanCount(), uint8_t(0));
    QVERIFY(machine.engine->getFans().empty());
    QCOMPARE(machine.engine->getFanMode(0).type(), FanControlInvalid);
}

void EngineLoadTest::theTechnicalReportHasItsForm()
{
    EngineMachine machine;
    machine.load();
    machine.engine->setFanMode(1, FanControlMode::constant(3100), false);

    const QString expected
        = QStringLiteral("Brisora 1.5.9 [Qt %1]\nMacBookPro11,3 [AC]\nCPU: %2 [%3 cores]\n%4\n\n"
                         "Fans:\n"
                         "Left-min{2000}curr{2500}max{6000}mode{0}\n"
                         "Right-min{2000}curr{3000}max{6000}mode{1,3100}\n"
                         "\n%5")
              .arg(QString::fromLatin1(qVersion()), machine.systemInfo.cpuName(),
                   QString::number(machine.systemInfo.coreCount()), machine.systemInfo.osName(),
                   machine.engine->sensorProvider()->getTechInfo(machine.service.get()));
    QCOMPARE(machine.engine->getTechInfo(), expected);
}

void EngineLoadTest::theTechnicalReportTellsThePowerOfLaptops_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<int>("source");
    QTest::addColumn<QString>("line");
    const auto row
        = [](const char* name, const char* model, System::PowerSource source, const char* line) {
              QTest::newRow(name) << QString(QLatin1String(model)) << int(source)
                                  << QString(QLatin1String(line));
          };
    row("mains", "MacBookPro11,3", System::PowerSourceAC, "MacBookPro11,3 [AC]");
    row("battery", "MacBookPro11,3", System::PowerSourceBattery, "MacBookPro11,3 [battery]");
    row("unknown", "MacBookPro11,3", System::PowerSourceUnknown, "MacBookPro11,3 [unknown]");
    row("Air", "MacBookAir7,2", System::PowerSourceBattery, "MacBookAir7,2 [battery]");
    row("MacBook", "MacBook7,1", System::PowerSourceBattery, "MacBook7,1 [battery]");
    row("no laptop", "Macmini7,1", System::PowerSourceAC, "Macmini7,1");
    row("no laptop, iMac", "iMacPro1,1", System::PowerSourceUnknown, "iMacPro1,1");
}

void EngineLoadTest::theTechnicalReportTellsThePowerOfLaptops()
{
    QFETCH(QString, model);
    QFETCH(int, source);
    EngineMachine machine(model);
    machine.powerSource = static_cast<System::PowerSource>(source);
    machine.load();
    QTEST(machine.engine->getTechInfo().section(QLatin1Char('\n'), 1, 1), "line");
}

void EngineLoadTest::fanIdsBeyondTheFansAreIgnored()
{
    EngineMachine machine;
    machine.load();
    machine.engine->setFanMode(2, FanControlMode::constant(3100), false);

    QVERIFY(machine.engine->profiles()->isActiveAutomatic());
    QCOMPARE(machine.engine->getFanMode(2).type(), FanControlInvalid);
}

void EngineLoadTest::settingAnInvalidOrUnassignedModeIsIgnored_data()
{
    QTest::addColumn<bool>("isInvalid");
    QTest::newRow("invalid") << true;
    QTest::newRow("not assigned") << false;
}

void EngineLoadTest::settingAnInvalidOrUnassignedModeIsIgnored()
{
    QFETCH(bool, isInvalid);
    EngineMachine machine;
    machine.load();
    static_cast<void>(machine.takeWrites());

    machine.engine->setFanMode(0, isInvalid ? FanControlMode() : FanControlMode::notAssigned(),
                               false);

    QVERIFY(machine.engine->profiles()->isActiveAutomatic());
    QCOMPARE(machine.takeWrites(), QStringList());
}

void EngineLoadTest::setFanModeCanKeepTheChangeInItsPreset()
{
    EngineMachine machine;
    machine.load();
    machine.engine->setFanMode(0, FanControlMode::constant(3000), false);
    QVERIFY(machine.engine->profiles()->isUnsaved());
    QCOMPARE(machine.takeLastWrite(), QStringLiteral("FS! 1"));

    machine.engine->profiles()->saveUnsavedProfile(QStringLiteral("Quiet"));
    machine.engine->setFanMode(1, FanControlMode::constant(2500), true);

    const auto custom = machine.engine->profiles()->customProfiles();
    QCOMPARE(custom.size(), std::size_t(1));
    QCOMPARE(custom[0].name(), QStringLiteral("Quiet"));
    QCOMPARE(custom[0].mode(1), FanControlMode::constant(2500));
    QVERIFY(machine.engine->profiles()->isActiveCustom());
    QCOMPARE(machine.takeLastWrite(), QStringLiteral("FS! 3"));
}

void EngineLoadTest::deletingTheActivePresetGivesTheFansBack()
{
    EngineMachine machine;
    machine.load();
    machine.engine->setFanMode(0, FanControlMode::constant(3000), false);
    machine.engine->profiles()->saveUnsavedProfile(QStringLiteral("Quiet"));
    const FanProfile quiet = machine.engine->profiles()->activeProfile();
    static_cast<void>(machine.takeWrites());
    QSignalSpy changed(machine.engine->profiles(), &QFanProfileList::profilesChanged);

    machine.engine->deleteProfile(quiet);

    QVERIFY(machine.engine->profiles()->isActiveAutomatic());
    QVERIFY(machine.engine->profiles()->customProfiles().empty());
    QCOMPARE(machine.takeWrites(), QStringList { QStringLiteral("FS! 0") });
    QCOMPARE(changed.size(), 2);

    machine.engine->changeActiveProfile(quiet);
    QCOMPARE(machine.takeWrites(), QStringList { QStringLiteral("FS! 1") });
}

BRISORA_TEST_MAIN(EngineLoadTest, QCoreApplication)
#include "test_engine_load.moc"
