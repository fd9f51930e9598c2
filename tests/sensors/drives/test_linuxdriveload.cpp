#include <QCoreApplication>
#include <QtTest>

#include "app/sensors/drives/linuxdriveload.h"
#include "app/sensors/drives/mounteddisks.h"
#include "app/sensors/drives/nvmedrives.h"
#include "tests/sensors/drives/fakedrivecalls.h"
#include "tests/support/logcapture.h"
#include "tests/support/testenvironment.h"

namespace {

QString text(const char* value) { return QString::fromLatin1(value); }

MountedDisk disk(const char* name, bool isFixed = true, bool isUsb = false)
{
    return { text(name), text("/dev/") + text(name), isFixed, isUsb,
             text("/sys/") + text(name) + text("/status") };
}

// A Linux on which drives are loaded.
class Load {
public:
    Load() { calls->drives["/dev/sda"] = {}; }

    FakeDriveCalls::Drive& drive() { return calls->drives["/dev/sda"]; }

    void run(const std::vector<MountedDisk>& disks = { disk("sda") })
    {
        LinuxDriveLoad load(calls);
        load.addSmartDrives(disks);
        sensors = load.takeSensors();
    }

    LogCapture log;
    const std::shared_ptr<FakeDriveCalls> calls = std::make_shared<FakeDriveCalls>();
    TempSensorDisk::List sensors;
};

constexpr const char* identifyCommand
    = "command /dev/sda [85 08 0E 00 00 00 01 00 01 00 00 00 00 A0 EC 00] 512";
constexpr const char* statusFile = "file /sys/sda/status";
constexpr const char* powerCommand
    = "command /dev/sda [85 06 20 00 00 00 00 00 00 00 00 00 00 A0 E5 00] 0";
constexpr const char* enableCommand
    = "command /dev/sda [85 06 00 00 D8 00 01 00 01 00 4F 00 C2 A0 B0 00] 0";

constexpr const char* groupAndCapability
    = "warning: The temperatures of the drives need read access to the drives, which the group "
      "\"disk\" has (\"sudo usermod -aG disk USER\", then log in again), and the capability "
      "CAP_SYS_RAWIO (\"sudo chgrp disk PROGRAM; sudo chmod 750 PROGRAM; "
      "sudo setcap cap_sys_rawio=ep PROGRAM\")";
constexpr const char* capability
    = "warning: The temperatures of the drives need the capability CAP_SYS_RAWIO (\"sudo chgrp "
      "disk PROGRAM; sudo chmod 750 PROGRAM; sudo setcap cap_sys_rawio=ep PROGRAM\")";

} // namespace

class TestLinuxDriveLoad : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aDriveBecomesASensor();
    void selfMonitoringIsSwitchedOnOnlyWhereItIsOff();
    void aStandbyDriveIsNotWoken();
    void drivesThatAreNotFixedOrOnUsbAreNotOpened();
    void aDriveThatFailsGivesNoSensor_data();
    void aDriveThatFailsGivesNoSensor();
    void aDriveThatDoesNotTellItsPowerModeGivesNoSensor();
    void oneFailureDoesNotEndTheLoad();
    void aMissingPrivilegeIsToldOnce_data();
    void aMissingPrivilegeIsToldOnce();
    void namesAreLoggedInOneLine();
    void drivesAreClosedWithTheirSensors();
    void nvmeDrivesAreSensorsWithoutACall();
    void nothingFoundGivesNoSensors();
};

void TestLinuxDriveLoad::aDriveBecomesASensor()
{
    Load load;
    load.drive().identify = identifyBlock("APPLE HDD ST1000DM003", "Z1D4NYAF");

    load.run();

    QCOMPARE(load.sensors.size(), std::size_t(1));
    QCOMPARE(load.sensors[0]->displayName(), text("APPLE HDD ST1000DM003"));
    QCOMPARE(load.sensors[0]->key(), text("APPLE HDD ST1000DM003 (Z1D4NYAF)"));
    QCOMPARE(load.sensors[0]->type(), SensorType::hdd);
    QCOMPARE(load.calls->calls,
             QStringList({ text("open /dev/sda"), text(identifyCommand), text(statusFile),
                           text(powerCommand) }));
    QCOMPARE(load.log.lines(),
             QStringList({
                 text("info: Loading available SMART drives"),
                 text("info: Checking drive sda"),
                 text("info: Adding drive APPLE HDD ST1000DM003"),
             }));
}

void TestLinuxDriveLoad::selfMonitoringIsSwitchedOnOnlyWhereItIsOff()
{
    Load load;
    setWord(load.drive().identify, 85, 0);

    load.run();

    QCOMPARE(load.sensors.size(), std::size_t(1));
    QCOMPARE(load.calls->calls,
             QStringList({ text("open /dev/sda"), text(identifyCommand), text(statusFile),
                           text(powerCommand), text(enableCommand) }));
}

void TestLinuxDriveLoad::aStandbyDriveIsNotWoken()
{
    Load load;
    load.drive().powerMode = 0;

    load.run();

    QCOMPARE(load.sensors.size(), std::size_t(1));
    QCOMPARE(load.drive().wakeUps, 0);
}

void TestLinuxDriveLoad::drivesThatAreNotFixedOrOnUsbAreNotOpened()
{
    Load load;

    load.run({ disk("sda", false), disk("sdb", true, true) });

    QVERIFY(load.sensors.empty());
    QVERIFY(load.calls->calls.isEmpty());
    QVERIFY(load.log.contains(text("info: The drive is NOT fixed")));
    QVERIFY(load.log.contains(text("info: Skipping USB drive")));
}

void TestLinuxDriveLoad::aDriveThatFailsGivesNoSensor_data()
{
    QTest::addColumn<int>("openError");
    QTest::addColumn<int>("identifyError");
    QTest::addColumn<int>("enableError");
    QTest::addColumn<QString>("line");
    QTest::newRow("open") << ENOENT << 0 << 0 << text("warning: Failed to open device /dev/sda: ");
    QTest::newRow("identify, the drive")
        << 0 << EIO << 0 << text("warning: readSmartIdentify failed: ");
    QTest::newRow("identify, the kernel")
        << 0 << ENOTTY << 0 << text("warning: readSmartIdentify failed: ");
    QTest::newRow("enable") << 0 << 0 << EIO << text("warning: Smart is not enabled: ");
}

void TestLinuxDriveLoad::aDriveThatFailsGivesNoSensor()
{
    QFETCH(int, openError);
    QFETCH(int, identifyError);
    QFETCH(int, enableError);
    QFETCH(QString, line);
    Load load;
    setWord(load.drive().identify, 85, 0);
    load.drive().openError = openError;
    load.drive().identifyError = identifyError;
    load.drive().enableError = enableError;

    load.run();

    QVERIFY(load.sensors.empty());
    QVERIFY2(load.log.lines().last().startsWith(line), qPrintable(load.log.lines().last()));
    QVERIFY(load.log.lines().last().size() > line.size());
    QCOMPARE(load.calls->openDrives(), 0);
}

void TestLinuxDriveLoad::aDriveThatDoesNotTellItsPowerModeGivesNoSensor()
{
    Load load;
    load.drive().tellsPowerMode = false;

    load.run();

    QVERIFY(load.sensors.empty());
    QVERIFY(load.log.contains(text(
        "warning: The drive doesn't tell its power mode and isn't read, which might wake it")));
    QCOMPARE(load.calls->openDrives(), 0);
}

void TestLinuxDriveLoad::oneFailureDoesNotEndTheLoad()
{
    Load load;
    load.drive().identifyError = EIO;
    load.calls->drives["/dev/sdb"].identify = identifyBlock("Second", "2");

    load.run({ disk("sda"), disk("sdb") });

    QCOMPARE(load.sensors.size(), std::size_t(1));
    QCOMPARE(load.sensors[0]->displayName(), text("Second"));
}

void TestLinuxDriveLoad::aMissingPrivilegeIsToldOnce_data()
{
    QTest::addColumn<int>("openError");
    QTest::addColumn<int>("commandError");
    QTest::addColumn<QString>("line");
    QTest::newRow("to open") << EACCES << 0 << text(groupAndCapability);
    QTest::newRow("to open, by a rule") << EPERM << 0 << text(groupAndCapability);
    QTest::newRow("to send commands") << 0 << EPERM << text(capability);
    QTest::newRow("to send commands, by a rule") << 0 << EACCES << text(capability);
}

void TestLinuxDriveLoad::aMissingPrivilegeIsToldOnce()
{
    QFETCH(int, openError);
    QFETCH(int, commandError);
    QFETCH(QString, line);
    Load load;
    for (const char* path : { "/dev/sda", "/dev/sdb", "/dev/sdc" }) {
        load.calls->drives[path].openError = openError;
        load.calls->drives[path].commandError = commandError;
    }

    load.run({ disk("sda"), disk("sdb"), disk("sdc") });

    QVERIFY(load.sensors.empty());
    QCOMPARE(load.log.count(line), 1);
    QCOMPARE(load.log.lines().filter(text("need ")).size(), 1);
    QCOMPARE(load.calls->openDrives(), 0);
}

void TestLinuxDriveLoad::namesAreLoggedInOneLine()
{
    Load load;
    load.drive().identify = identifyBlock("Mo\ndel", "1");

    load.run();

    QCOMPARE(load.log.lines().last(), text("info: Adding drive Mo\\ndel"));
}

void TestLinuxDriveLoad::drivesAreClosedWithTheirSensors()
{
    Load load;
    load.run();
    QCOMPARE(load.calls->openDrives(), 1);

    load.sensors.clear();

    QCOMPARE(load.calls->openDrives(), 0);
}

void TestLinuxDriveLoad::nvmeDrivesAreSensorsWithoutACall()
{
    const LogCapture log;
    const auto calls = std::make_shared<FakeDriveCalls>();
    NvmeDrive drive;
    drive.identity.model = text("APPLE SSD AP0512M");
    drive.identity.serial = text("C029");
    drive.temperatureFile = "/sys/class/hwmon/hwmon3/temp1_input";
    calls->files[drive.temperatureFile] = "38850\n";

    LinuxDriveLoad load(calls);
    load.addNvmeDrives({ drive });
    const auto sensors = load.takeSensors();

    QCOMPARE(sensors.size(), std::size_t(1));
    QCOMPARE(sensors[0]->key(), text("APPLE SSD AP0512M (C029)"));
    QCOMPARE(sensors[0]->type(), SensorType::nvme);
    QCOMPARE(calls->calls, QStringList());
    QCOMPARE(log.lines(),
             QStringList({ text("info: Loading available NVMe drives"),
                           text("info: Adding drive APPLE SSD AP0512M") }));
    sensors[0]->UpdateValue();
    QCOMPARE(sensors[0]->value(), 38.85);
}

void TestLinuxDriveLoad::nothingFoundGivesNoSensors()
{
    Load load;

    load.run({});

    QVERIFY(load.sensors.empty());
    QVERIFY(load.calls->calls.isEmpty());
}

BRISORA_TEST_MAIN(TestLinuxDriveLoad, QCoreApplication)

#include "test_linuxdriveload.moc"
