#include <cerrno>
#include <cmath>
#include <span>

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonObject>

#include "app/sensors/drives/atapassthrough.h"
#include "app/sensors/drives/driveidentity.h"
#include "app/sensors/drives/smartattributes.h"
#include "macsim/model/driveblocks.h"
#include "macsim/model/machinestate.h"
#include "tests/macsim/macbench.h"
#include "tests/support/testenvironment.h"

using namespace macsim;

namespace {

std::span<const std::uint8_t> bytesOf(const QByteArray& block)
{
    return { static_cast<const std::uint8_t*>(static_cast<const void*>(block.constData())),
             static_cast<std::size_t>(block.size()) };
}

QByteArray commandOf(const ScsiCommand& command)
{
    return { static_cast<const char*>(static_cast<const void*>(command.bytes.data())),
             static_cast<int>(command.bytes.size()) };
}

const QByteArray identifyCommand
    = commandOf(AtaPassThrough::reading(AtaCommands::identifyDevice, {}));
const QByteArray readCommand = commandOf(AtaPassThrough::reading(AtaCommands::smartReadData, {}));
const QByteArray enableCommand = commandOf(AtaPassThrough::plain(AtaCommands::smartEnable));
const QByteArray powerCommand = commandOf(AtaPassThrough::asking(AtaCommands::checkPowerMode));

// The answer as the program's own parser sees it; -1 when it holds no power mode.
int powerModeIn(const SimulatedDrive::Answer& answer)
{
    ScsiOutcome outcome;
    outcome.error = answer.error;
    outcome.status = answer.status;
    outcome.senseSize = static_cast<std::size_t>(answer.sense.size());
    std::copy(answer.sense.begin(), answer.sense.end(), outcome.sense.begin());
    const auto count = AtaPassThrough::returnedSectorCount(outcome);
    return count ? *count : -1;
}

SimulatedDrive& sdb(MacBench& bench) { return *bench.mac.drive(QStringLiteral("sdb")); }

QStringList words(const char* text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

const QString iMac = QStringLiteral("iMac14,2");

} // namespace

class DrivesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aDriveTellsWhoItIs();
    void itsTemperatureIsUnderItsAttribute_data();
    void itsTemperatureIsUnderItsAttribute();
    void blocksHaveTheirChecksum();
    void itsTemperatureFollowsTheLoad();
    void aDriveInStandbyIsWokenByReadings();
    void selfMonitoringCanBeOff();
    void whatItDoesNotKnowIsAborted_data();
    void whatItDoesNotKnowIsAborted();
    void faultsShowInTheAnswers_data();
    void faultsShowInTheAnswers();
    void aDriveThatIsForbiddenIsNotOpened_data();
    void aDriveThatIsForbiddenIsNotOpened();
    void verbsLeaveAnEvent_data();
    void verbsLeaveAnEvent();
    void nonsenseIsRefused_data();
    void nonsenseIsRefused();
    void healingEndsEverythingButTheMissingPlug();
    void plugsReachTheFiles();
    void filesThatCanNotBeWrittenAreToldOf();
    void theStateTellsTheDrives();
};

void DrivesTest::aDriveTellsWhoItIs()
{
    MacBench bench(iMac);
    SimulatedDrive& ssd = *bench.mac.drive(QStringLiteral("sda"));

    const auto answer = ssd.execute(identifyCommand, 40.0);
    const DriveIdentity identity = DriveIdentity::parse(bytesOf(answer.data));

    QCOMPARE(answer.error, 0);
    QCOMPARE(answer.status, quint8(0));
    QCOMPARE(identity.key(), QStringLiteral("APPLE SSD SM0128F (S1K4NYAF215377)"));
    QCOMPARE(identity.firmwareRevision, QStringLiteral("UXM2JA1Q"));
    QVERIFY(identity.isSolidState);
    QVERIFY(identity.isSmartEnabled);
    QVERIFY(!DriveIdentity::parse(bytesOf(sdb(bench).execute(identifyCommand, 40.0).data))
                 .isSolidState);
    QCOMPARE(ssd.counters().identifies, 1U);
}

void DrivesTest::itsTemperatureIsUnderItsAttribute_data()
{
    QTest::addColumn<int>("attribute");
    QTest::addColumn<int>("celsius");
    QTest::newRow("194") << 194 << 38;
    QTest::newRow("190") << 190 << 38;
    QTest::newRow("none") << 0 << -1;
}

void DrivesTest::itsTemperatureIsUnderItsAttribute()
{
    QFETCH(int, attribute);
    QFETCH(int, celsius);
    DriveDescription description;
    description.attribute = attribute;
    SimulatedDrive drive(description);

    const auto answer = drive.execute(readCommand, 38.4);

    const auto read = smartTemperature(bytesOf(answer.data));
    QCOMPARE(read ? static_cast<int>(*read) : -1, celsius);
}

void DrivesTest::blocksHaveTheirChecksum()
{
    DriveDescription description;
    description.model = QStringLiteral("APPLE HDD");
    for (const QByteArray& block :
         { identifyBlock(description, true), smartBlock(description, 40.0, 50.0) }) {
        int sum = 0;
        for (const char byte : block) {
            sum += static_cast<quint8>(byte);
        }
        QCOMPARE(block.size(), 512);
        QCOMPARE(sum & 0xFF, 0);
    }
}

void DrivesTest::itsTemperatureFollowsTheLoad()
{
    MacBench bench(iMac);
    const DriveDescription& drive = sdb(bench).description();
    const double cool = bench.mac.temperature(drive);
    QVERIFY2(cool > 25.0 && cool < 50.0, qPrintable(QString::number(cool)));

    QVERIFY(bench.ask({ QStringLiteral("load"), QStringLiteral("heavy") }));
    bench.passSeconds(3600);

    const double warm = bench.mac.temperature(drive);
    QVERIFY2(warm > cool + 2.0 && warm < 70.0, qPrintable(QString::number(warm)));
}

void DrivesTest::aDriveInStandbyIsWokenByReadings()
{
    MacBench bench(iMac);
    SimulatedDrive& drive = sdb(bench);
    drive.setInStandby(true);

    QCOMPARE(powerModeIn(drive.execute(powerCommand, 40.0)), 0);
    QCOMPARE(drive.execute(identifyCommand, 40.0).status, quint8(0));
    QVERIFY(drive.isInStandby());
    QCOMPARE(drive.counters().wakeUps, 0U);

    QCOMPARE(drive.execute(readCommand, 40.0).status, quint8(0));
    QVERIFY(!drive.isInStandby());
    QCOMPARE(drive.counters().wakeUps, 1U);
    QCOMPARE(powerModeIn(drive.execute(powerCommand, 40.0)), 0xFF);
}

void DrivesTest::selfMonitoringCanBeOff()
{
    MacBench bench(iMac);
    SimulatedDrive& drive = sdb(bench);
    QByteArray disableCommand = enableCommand;
    disableCommand[4] = static_cast<char>(0xD9);

    QCOMPARE(drive.execute(disableCommand, 40.0).status, quint8(0));
    QVERIFY(
        !DriveIdentity::parse(bytesOf(drive.execute(identifyCommand, 40.0).data)).isSmartEnabled);
    QCOMPARE(drive.execute(readCommand, 40.0).status, quint8(2));

    QCOMPARE(drive.execute(enableCommand, 40.0).status, quint8(0));
    QCOMPARE(drive.execute(readCommand, 40.0).status, quint8(0));
}

void DrivesTest::whatItDoesNotKnowIsAborted_data()
{
    QTest::addColumn<QByteArray>("command");
    QTest::addColumn<int>("error");
    QTest::addColumn<int>("status");
    const auto changed = [](const QByteArray& command, int place, int value) {
        QByteArray result = command;
        result[place] = static_cast<char>(value);
        return result;
    };
    QTest::newRow("an ATA command") << changed(identifyCommand, 14, 0x25) << 0 << 2;
    QTest::newRow("a SMART feature") << changed(readCommand, 4, 0xDA) << 0 << 2;
    QTest::newRow("SMART without its signature") << changed(readCommand, 10, 0) << 0 << 2;
    QTest::newRow("a SCSI command") << changed(identifyCommand, 0, 0x12) << EINVAL << 0;
    QTest::newRow("nothing") << QByteArray() << EINVAL << 0;
}

void DrivesTest::whatItDoesNotKnowIsAborted()
{
    QFETCH(QByteArray, command);
    MacBench bench(iMac);
    const auto answer = sdb(bench).execute(command, 40.0);
    QTEST(answer.error, "error");
    QTEST(static_cast<int>(answer.status), "status");
    QVERIFY(answer.data.isEmpty());
}

void DrivesTest::faultsShowInTheAnswers_data()
{
    QTest::addColumn<QString>("verb");
    QTest::addColumn<int>("error");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("word");
    const auto row = [](const char* verb, int error, int status, const char* word) {
        QTest::newRow(verb) << QString::fromLatin1(verb) << error << status
                            << QString::fromLatin1(word);
    };
    row("fail", 0, 2, "aborted");
    row("unplug", ENODEV, 0, "gone");
    row("forbid commands", EPERM, 0, "refused");
    row("forbid open", 0, 0, "ok");
}

void DrivesTest::faultsShowInTheAnswers()
{
    QFETCH(QString, verb);
    MacBench bench(iMac);
    QVERIFY(bench.ask(words("drive sdb") + verb.split(QLatin1Char(' '))));

    const auto answer = sdb(bench).execute(readCommand, 40.0);

    QTEST(answer.error, "error");
    QTEST(static_cast<int>(answer.status), "status");
    QTEST(QString::fromLatin1(answer.word), "word");
}

void DrivesTest::aDriveThatIsForbiddenIsNotOpened_data()
{
    QTest::addColumn<QString>("verb");
    QTest::addColumn<int>("error");
    QTest::newRow("well") << QStringLiteral("wake") << 0;
    QTest::newRow("forbidden") << QStringLiteral("forbid open") << EACCES;
    QTest::newRow("forbidden later") << QStringLiteral("forbid commands") << 0;
    QTest::newRow("gone") << QStringLiteral("unplug") << ENOENT;
}

void DrivesTest::aDriveThatIsForbiddenIsNotOpened()
{
    QFETCH(QString, verb);
    MacBench bench(iMac);
    QVERIFY(bench.ask(words("drive sdb") + verb.split(QLatin1Char(' '))));
    QTEST(sdb(bench).open(), "error");
}

void DrivesTest::verbsLeaveAnEvent_data()
{
    QTest::addColumn<QStringList>("request");
    for (const char* verb : { "standby", "wake", "fail", "hang", "hang 5000", "unplug", "plug",
                              "forbid open", "forbid commands", "heal" }) {
        QTest::newRow(verb) << words("drive sdb") + words(verb);
    }
}

void DrivesTest::verbsLeaveAnEvent()
{
    QFETCH(QStringList, request);
    MacBench bench(iMac);
    const ControlReply reply = bench.verbs.execute(request);
    QVERIFY2(reply.ok, qPrintable(reply.text));
    QCOMPARE(bench.events(),
             QStringList(QStringLiteral("event ") + request.join(QLatin1Char(' '))));
}

void DrivesTest::nonsenseIsRefused_data()
{
    QTest::addColumn<QStringList>("request");
    for (const char* request :
         { "drive", "drive sdb", "drive sdz standby", "drive sdb dance", "drive sdb standby now",
           "drive sdb hang long", "drive sdb hang 0", "drive sdb hang -5", "drive sdb hang 1 2",
           "drive sdb forbid", "drive sdb forbid everything" }) {
        QTest::newRow(request) << words(request);
    }
}

void DrivesTest::nonsenseIsRefused()
{
    QFETCH(QStringList, request);
    MacBench bench(iMac);
    const ControlReply reply = bench.verbs.execute(request);
    QVERIFY(!reply.ok);
    QVERIFY(!reply.text.isEmpty());
    QVERIFY(bench.lines.isEmpty());
    QVERIFY(!sdb(bench).faults().hanging);
}

void DrivesTest::healingEndsEverythingButTheMissingPlug()
{
    MacBench bench(iMac);
    for (const char* verb : { "fail", "hang", "forbid open", "forbid commands", "unplug" }) {
        QVERIFY(bench.ask(words("drive sdb") + words(verb)));
    }

    QVERIFY(bench.ask(words("drive sdb heal")));

    const SimulatedDrive::Faults& faults = sdb(bench).faults();
    QVERIFY(!faults.failing && !faults.hanging && !faults.mayNotBeOpened
            && !faults.mayNotBeCommanded);
    QVERIFY(faults.unplugged);
}

void DrivesTest::plugsReachTheFiles()
{
    MacBench bench(iMac);
    QStringList switches;
    ControlVerbs verbs(bench.mac, bench.controller, bench.trace, {},
                       [&switches](const QString& drive, bool isPlugged) {
                           switches.append(drive + QLatin1String(isPlugged ? " in" : " out"));
                           return true;
                       });

    for (const char* verb : { "unplug", "unplug", "plug", "plug", "fail" }) {
        QVERIFY(verbs.execute(words("drive sdb") + words(verb)).ok);
    }

    QCOMPARE(switches, QStringList({ QStringLiteral("sdb out"), QStringLiteral("sdb in") }));
}

void DrivesTest::filesThatCanNotBeWrittenAreToldOf()
{
    MacBench bench(iMac);
    ControlVerbs verbs(bench.mac, bench.controller, bench.trace, {},
                       [](const QString&, bool) { return false; });
    QVERIFY(!verbs.execute(words("drive sdb unplug")).ok);
}

void DrivesTest::theStateTellsTheDrives()
{
    MacBench bench(iMac);
    SimulatedDrive& drive = sdb(bench);
    drive.setInStandby(true);
    static_cast<void>(drive.execute(readCommand, 40.0));
    static_cast<void>(drive.execute(powerCommand, 40.0));
    drive.setInStandby(true);

    const QJsonArray drives
        = machineState(bench.mac, bench.controller)[QLatin1String("drives")].toArray();

    QCOMPARE(drives.size(), 3);
    const QJsonObject told = drives.at(1).toObject();
    QCOMPARE(told[QLatin1String("name")].toString(), QStringLiteral("sdb"));
    QCOMPARE(told[QLatin1String("model")].toString(), QStringLiteral("APPLE HDD ST1000DM003"));
    QVERIFY(std::abs(told[QLatin1String("celsius")].toDouble()
                     - bench.mac.temperature(drive.description()))
            < 0.01);
    QVERIFY(told[QLatin1String("standby")].toBool());
    QVERIFY(!told[QLatin1String("unplugged")].toBool());
    QCOMPARE(told[QLatin1String("commands")].toInt(), 2);
    QCOMPARE(told[QLatin1String("powerChecks")].toInt(), 1);
    QCOMPARE(told[QLatin1String("reads")].toInt(), 1);
    QCOMPARE(told[QLatin1String("wakeUps")].toInt(), 1);
}

BRISORA_TEST_MAIN(DrivesTest, QCoreApplication)

#include "test_macsim_drives.moc"
