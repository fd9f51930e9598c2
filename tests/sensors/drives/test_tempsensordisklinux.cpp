#include <thread>

#include <QCoreApplication>
#include <QSemaphore>
#include <QtTest>

#include "app/sensors/drives/atadrive.h"
#include "app/sensors/drives/driveidentity.h"
#include "app/sensors/drives/nvmedrives.h"
#include "app/sensors/tempsensordisklinux.h"
#include "app/sensors/tempsensornvme.h"
#include "tests/sensors/drives/fakedrivecalls.h"
#include "tests/support/manualclock.h"
#include "tests/support/testenvironment.h"

namespace {

QString text(const char* value) { return QString::fromLatin1(value); }

constexpr const char* statusFile = "file status";
constexpr const char* powerCommand
    = "command /dev/sda [85 06 20 00 00 00 00 00 00 00 00 00 00 A0 E5 00] 0";
constexpr const char* readCommand
    = "command /dev/sda [85 08 0E 00 D0 00 01 00 01 00 4F 00 C2 A0 B0 00] 512";

// A sensor on the drive sda of a Linux.
class DriveUnderLinux {
public:
    DriveUnderLinux()
    {
        calls->drives["/dev/sda"] = {};
        sensor = std::make_unique<TempSensorDiskLinux>(
            DriveIdentity::parse(identifyBlock("Model", "Serial", solidState)),
            std::make_unique<AtaDrive>(calls, calls->open("/dev/sda").descriptor, "status"), clock);
        calls->calls.clear();
    }

    FakeDriveCalls::Drive& drive() { return calls->drives["/dev/sda"]; }

    ManualClock clock;
    const std::shared_ptr<FakeDriveCalls> calls = std::make_shared<FakeDriveCalls>();
    std::unique_ptr<TempSensorDiskLinux> sensor;
};

// An NVMe drive's sensor, and the file with its temperature.
class NvmeDriveUnderLinux {
public:
    NvmeDriveUnderLinux()
    {
        NvmeDrive drive;
        drive.identity.model = text("Model");
        drive.temperatureFile = "temperature";
        sensor = std::make_unique<TempSensorNvme>(drive, calls);
    }

    const std::shared_ptr<FakeDriveCalls> calls = std::make_shared<FakeDriveCalls>();
    std::unique_ptr<TempSensorNvme> sensor;
};

} // namespace

class TestTempSensorDiskLinux : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aReadingAsksForThePowerModeFirst();
    void aReadingIsStored();
    void aDriveInStandbyIsNotWoken_data();
    void aDriveInStandbyIsNotWoken();
    void aDriveThatTheKernelPutToSleepIsNotCalled_data();
    void aDriveThatTheKernelPutToSleepIsNotCalled();
    void standbyIsToldInTheFixedFormToo();
    void aDriveThatTakesItsTimeIsNotAskedTwice();
    void aDriveThatWasAsleepFromTheStartHasNoReading();
    void aDriveThatIsAwakeIsRead_data();
    void aDriveThatIsAwakeIsRead();
    void aDriveThatDoesNotTellIsLeftAlone();
    void aFailedReadingLeavesTheValue_data();
    void aFailedReadingLeavesTheValue();
    void aHangingDriveDelaysItsCallerAlone();
    void boundsAreThoseOfDrives();
    void anNvmeTemperatureIsStored_data();
    void anNvmeTemperatureIsStored();
    void nvmeDriveThatIsGoneKeepsItsValue();
    void nvmeDrivesAreReadByTheirFileAlone();
};

void TestTempSensorDiskLinux::aReadingAsksForThePowerModeFirst()
{
    const DriveUnderLinux machine;

    machine.sensor->UpdateValue();

    QCOMPARE(machine.calls->calls,
             QStringList({ text(statusFile), text(powerCommand), text(readCommand) }));
}

void TestTempSensorDiskLinux::aReadingIsStored()
{
    DriveUnderLinux machine;

    machine.sensor->UpdateValue();
    QCOMPARE(machine.sensor->value(), 38.0);
    machine.drive().smart = smartBlock(44);
    machine.sensor->UpdateValue();

    QCOMPARE(machine.sensor->value(), 44.0);
    QCOMPARE(machine.sensor->successfulReads(), 2U);
}

void TestTempSensorDiskLinux::aDriveInStandbyIsNotWoken_data()
{
    QTest::addColumn<int>("powerMode");
    QTest::newRow("standby") << 0x00;
    QTest::newRow("standby, the lighter one") << 0x01;
    QTest::newRow("stopped, the cache is awake") << 0x40;
}

void TestTempSensorDiskLinux::aDriveInStandbyIsNotWoken()
{
    QFETCH(int, powerMode);
    DriveUnderLinux machine;
    machine.sensor->UpdateValue();
    machine.drive().powerMode = static_cast<std::uint8_t>(powerMode);
    machine.drive().smart = smartBlock(50);
    machine.calls->calls.clear();

    for (int pass = 0; pass < 3; ++pass) {
        machine.sensor->UpdateValue();
    }

    QCOMPARE(machine.drive().wakeUps, 0);
    QCOMPARE(machine.calls->calls,
             QStringList({ text(statusFile), text(powerCommand), text(statusFile),
                           text(powerCommand), text(statusFile), text(powerCommand) }));
    QCOMPARE(machine.sensor->value(), 38.0);
    QCOMPARE(machine.sensor->successfulReads(), 4U);
}

void TestTempSensorDiskLinux::aDriveThatTheKernelPutToSleepIsNotCalled_data()
{
    QTest::addColumn<QByteArray>("status");
    QTest::addColumn<bool>("isCalled");
    QTest::newRow("suspended") << QByteArray("suspended\n") << false;
    QTest::newRow("going to sleep") << QByteArray("suspending\n") << false;
    QTest::newRow("active") << QByteArray("active\n") << true;
    QTest::newRow("unsupported") << QByteArray("unsupported\n") << true;
    QTest::newRow("not told") << QByteArray("") << true;
}

void TestTempSensorDiskLinux::aDriveThatTheKernelPutToSleepIsNotCalled()
{
    QFETCH(QByteArray, status);
    QFETCH(bool, isCalled);
    DriveUnderLinux machine;
    machine.sensor->UpdateValue();
    machine.drive().smart = smartBlock(50);
    machine.calls->files["status"] = status;
    machine.calls->calls.clear();

    machine.sensor->UpdateValue();

    QCOMPARE(machine.calls->calls.contains(text(powerCommand)), isCalled);
    QCOMPARE(machine.sensor->value(), isCalled ? 50.0 : 38.0);
    QCOMPARE(machine.sensor->successfulReads(), 2U);
}

void TestTempSensorDiskLinux::standbyIsToldInTheFixedFormToo()
{
    DriveUnderLinux machine;
    machine.drive().usesFixedSense = true;
    machine.sensor->UpdateValue();
    QCOMPARE(machine.sensor->value(), 38.0);
    machine.drive().powerMode = 0;

    machine.sensor->UpdateValue();

    QCOMPARE(machine.drive().wakeUps, 0);
    QCOMPARE(machine.sensor->successfulReads(), 2U);
}

void TestTempSensorDiskLinux::aDriveThatTakesItsTimeIsNotAskedTwice()
{
    DriveUnderLinux machine;
    machine.calls->onPowerCheck = [&machine] { machine.clock.advance(1001); };

    machine.sensor->UpdateValue();

    QCOMPARE(machine.calls->calls, QStringList({ text(statusFile), text(powerCommand) }));
    QCOMPARE(machine.sensor->successfulReads(), 0U);

    machine.calls->onPowerCheck = [&machine] { machine.clock.advance(1000); };
    machine.sensor->UpdateValue();
    QCOMPARE(machine.sensor->successfulReads(), 1U);
}

void TestTempSensorDiskLinux::aDriveThatWasAsleepFromTheStartHasNoReading()
{
    DriveUnderLinux machine;
    machine.drive().powerMode = 0;

    machine.sensor->UpdateValue();
    QCOMPARE(machine.sensor->successfulReads(), 0U);

    machine.drive().powerMode = 0xFF;
    machine.sensor->UpdateValue();
    QCOMPARE(machine.sensor->successfulReads(), 1U);
}

void TestTempSensorDiskLinux::aDriveThatIsAwakeIsRead_data()
{
    QTest::addColumn<int>("powerMode");
    QTest::newRow("active or idle") << 0xFF;
    QTest::newRow("idle") << 0x80;
    QTest::newRow("idle, slower") << 0x83;
    QTest::newRow("turning, with a cache") << 0x41;
}

void TestTempSensorDiskLinux::aDriveThatIsAwakeIsRead()
{
    QFETCH(int, powerMode);
    DriveUnderLinux machine;
    machine.drive().powerMode = static_cast<std::uint8_t>(powerMode);

    machine.sensor->UpdateValue();

    QCOMPARE(machine.sensor->value(), 38.0);
}

void TestTempSensorDiskLinux::aDriveThatDoesNotTellIsLeftAlone()
{
    DriveUnderLinux machine;
    machine.sensor->UpdateValue();
    machine.drive().tellsPowerMode = false;
    machine.calls->calls.clear();

    machine.sensor->UpdateValue();

    QCOMPARE(machine.calls->calls, QStringList({ text(statusFile), text(powerCommand) }));
    QCOMPARE(machine.sensor->successfulReads(), 1U);
}

void TestTempSensorDiskLinux::aFailedReadingLeavesTheValue_data()
{
    QTest::addColumn<int>("commandError");
    QTest::addColumn<int>("readError");
    QTest::newRow("the drive is gone") << ENODEV << 0;
    QTest::newRow("the drive refuses") << 0 << EIO;
    QTest::newRow("the kernel refuses") << 0 << EPERM;
}

void TestTempSensorDiskLinux::aFailedReadingLeavesTheValue()
{
    QFETCH(int, commandError);
    QFETCH(int, readError);
    DriveUnderLinux machine;
    machine.sensor->UpdateValue();
    machine.drive().smart = smartBlock(50);
    machine.drive().commandError = commandError;
    machine.drive().readError = readError;

    machine.sensor->UpdateValue();

    QCOMPARE(machine.sensor->value(), 38.0);
    QCOMPARE(machine.sensor->successfulReads(), 1U);
}

void TestTempSensorDiskLinux::aHangingDriveDelaysItsCallerAlone()
{
    DriveUnderLinux hanging;
    const DriveUnderLinux other;
    QSemaphore arrived;
    QSemaphore answers;
    hanging.calls->onRead = [&arrived, &answers] {
        arrived.release();
        answers.acquire();
    };
    std::thread caller([&hanging] { hanging.sensor->UpdateValue(); });
    arrived.acquire();

    // Meanwhile everybody else goes on.
    other.sensor->UpdateValue();
    QCOMPARE(other.sensor->value(), 38.0);
    QCOMPARE(hanging.sensor->value(), 0.0);
    QCOMPARE(hanging.sensor->successfulReads(), 0U);

    answers.release();
    caller.join();
    QCOMPARE(hanging.sensor->value(), 38.0);
}

void TestTempSensorDiskLinux::boundsAreThoseOfDrives()
{
    const DriveUnderLinux machine;
    QCOMPARE(machine.sensor->getMinTemperature(), 42);
    QCOMPARE(machine.sensor->getMaxTemperature(), 70);
    const NvmeDriveUnderLinux nvme;
    QCOMPARE(nvme.sensor->getMinTemperature(), 42);
    QCOMPARE(nvme.sensor->getMaxTemperature(), 70);
}

void TestTempSensorDiskLinux::anNvmeTemperatureIsStored_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::addColumn<double>("value");
    QTest::newRow("thousandths of a degree") << QByteArray("38850\n") << 38.85;
    QTest::newRow("empty") << QByteArray("") << 0.0;
    QTest::newRow("no number") << QByteArray("hot\n") << 0.0;
    QTest::newRow("cut by its length") << QByteArray("00000000000000038850\n") << 0.0;
    QTest::newRow("absolute zero") << QByteArray("-273150\n") << 0.0;
    QTest::newRow("zero") << QByteArray("0\n") << 0.0;
    QTest::newRow("hotter than any drive") << QByteArray("150000\n") << 0.0;
    QTest::newRow("the largest number") << QByteArray("2147483647\n") << 0.0;
}

void TestTempSensorDiskLinux::anNvmeTemperatureIsStored()
{
    QFETCH(QByteArray, contents);
    QFETCH(double, value);
    const NvmeDriveUnderLinux machine;
    machine.calls->files["temperature"] = contents;

    machine.sensor->UpdateValue();

    QCOMPARE(machine.sensor->value(), value);
    QCOMPARE(machine.sensor->successfulReads(), value == 0.0 ? 0U : 1U);
}

void TestTempSensorDiskLinux::nvmeDriveThatIsGoneKeepsItsValue()
{
    const NvmeDriveUnderLinux machine;
    machine.calls->files["temperature"] = "38850\n";
    machine.sensor->UpdateValue();
    machine.calls->files.clear();

    machine.sensor->UpdateValue();

    QCOMPARE(machine.sensor->value(), 38.85);
    QCOMPARE(machine.sensor->successfulReads(), 1U);
}

void TestTempSensorDiskLinux::nvmeDrivesAreReadByTheirFileAlone()
{
    const NvmeDriveUnderLinux machine;

    machine.sensor->UpdateValue();

    QCOMPARE(machine.calls->calls, QStringList(text("file temperature")));
}

BRISORA_TEST_MAIN(TestTempSensorDiskLinux, QCoreApplication)

#include "test_tempsensordisklinux.moc"
