#include <QCoreApplication>
#include <QtTest>

#include "app/sensors/drives/atadrive.h"
#include "app/sensors/drives/driveidentity.h"
#include "app/sensors/drives/nvmedrives.h"
#include "app/sensors/tempsensordisk_win.h"
#include "app/sensors/tempsensordisklinux.h"
#include "app/sensors/tempsensornvme.h"
#include "tests/sensors/drives/fakedrivecalls.h"
#include "tests/sensors/drives/fakestoragecalls.h"
#include "tests/support/allocationcounter.h"
#include "tests/support/testenvironment.h"

namespace {

long allocationsOf(TemperatureSensorAbstract& sensor)
{
    const long before = allocationCount();
    for (int pass = 0; pass < 100; ++pass) {
        sensor.UpdateValue();
    }
    return allocationCount() - before;
}

} // namespace

class TestDriveAllocations : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theCounterCounts();
    void readingADriveUnderWindowsAllocatesNothing();
    void readingADriveUnderLinuxAllocatesNothing();
    void readingAnNvmeDriveAllocatesNothing();
    void theSystemsOwnCallsAllocateNothing();

private:
    const DriveIdentity m_identity = DriveIdentity::parse(identifyBlock("Model", "Serial"));
};

void TestDriveAllocations::theCounterCounts()
{
    const long before = allocationCount();
    const QString text = QString::number(before) + QLatin1String(" before");
    QVERIFY(!text.isEmpty());
    QVERIFY(allocationCount() > before);
}

void TestDriveAllocations::readingADriveUnderWindowsAllocatesNothing()
{
    const auto calls = std::make_shared<FakeStorageCalls>();
    calls->drives[0] = {};
    calls->notesCalls = false;
    TempSensorDiskWin sensor(m_identity, calls,
                             calls->createFile(QStringLiteral("\\\\.\\PHYSICALDRIVE0"), 0, 0, 0, 0),
                             0);

    QCOMPARE(allocationsOf(sensor), 0L);
    QCOMPARE(sensor.successfulReads(), 100U);
    calls->drives[0].isOn = false;
    QCOMPARE(allocationsOf(sensor), 0L);
}

void TestDriveAllocations::readingADriveUnderLinuxAllocatesNothing()
{
    const auto calls = std::make_shared<FakeDriveCalls>();
    calls->drives["/dev/sda"] = {};
    calls->notesCalls = false;
    TempSensorDiskLinux sensor(
        m_identity,
        std::make_unique<AtaDrive>(calls, calls->open("/dev/sda").descriptor, "status"));

    QCOMPARE(allocationsOf(sensor), 0L);
    QCOMPARE(sensor.successfulReads(), 100U);
    QCOMPARE(calls->drives["/dev/sda"].commands, 200);
    calls->drives["/dev/sda"].powerMode = 0;
    QCOMPARE(allocationsOf(sensor), 0L);
    QCOMPARE(calls->drives["/dev/sda"].wakeUps, 0);
}

void TestDriveAllocations::readingAnNvmeDriveAllocatesNothing()
{
    const auto calls = std::make_shared<FakeDriveCalls>();
    calls->files["temperature"] = "38850\n";
    calls->notesCalls = false;
    NvmeDrive drive;
    drive.temperatureFile = "temperature";
    TempSensorNvme sensor(drive, calls);

    QCOMPARE(allocationsOf(sensor), 0L);
    QCOMPARE(sensor.successfulReads(), 100U);
}

void TestDriveAllocations::theSystemsOwnCallsAllocateNothing()
{
    const auto calls = makeDriveCalls();
    const auto opened = calls->open("/dev/null");
    QVERIFY(opened.descriptor >= 0);
    TempSensorDiskLinux drive(m_identity,
                              std::make_unique<AtaDrive>(calls, opened.descriptor, "status"));
    NvmeDrive described;
    described.temperatureFile = "/proc/self/stat";
    TempSensorNvme nvme(described, calls);

    QCOMPARE(allocationsOf(drive), 0L);
    QCOMPARE(allocationsOf(nvme), 0L);
}

BRISORA_TEST_MAIN(TestDriveAllocations, QCoreApplication)

#include "test_drive_allocations.moc"
