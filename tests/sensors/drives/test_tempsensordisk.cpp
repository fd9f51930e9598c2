#include <thread>

#include <QCoreApplication>
#include <QSemaphore>
#include <QtTest>

#include "app/sensors/drives/driveidentity.h"
#include "app/sensors/tempsensordisk_win.h"
#include "tests/sensors/drives/fakestoragecalls.h"
#include "tests/support/testenvironment.h"

namespace {

QString text(const char* value) { return QString::fromLatin1(value); }

// A sensor on disk 2 of a Windows.
class DriveUnderWindows {
public:
    explicit DriveUnderWindows(std::uint16_t rotationRate = turnsAt5400)
    {
        calls->drives[2] = {};
        auto* handle = calls->createFile(text("\\\\.\\PHYSICALDRIVE2"), 0, 0, 0, 0);
        sensor = std::make_unique<TempSensorDiskWin>(
            DriveIdentity::parse(identifyBlock("Model", "Serial", rotationRate)), calls, handle, 2);
        calls->calls.clear();
    }

    FakeStorageCalls::Drive& drive() { return calls->drives[2]; }

    const std::shared_ptr<FakeStorageCalls> calls = std::make_shared<FakeStorageCalls>();
    std::unique_ptr<TempSensorDiskWin> sensor;
};

} // namespace

class TestTempSensorDisk : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void boundsDependOnTheKindOfDrive_data();
    void boundsDependOnTheKindOfDrive();
    void keysAreComparedExactly();
    void aReadingIsOneCall();
    void aReadingIsStored();
    void aReadingWithoutATemperatureLeavesTheValue_data();
    void aReadingWithoutATemperatureLeavesTheValue();
    void aFailedReadingLeavesTheValue();
    void aDriveInStandbyIsNotWoken();
    void aDriveThatWasAsleepFromTheStartHasNoReading();
    void aDriveThatDoesNotTellItsPowerIsRead();
    void withoutAHandleNothingIsCalled();
    void theHandleIsClosedWithTheSensor();
    void aHangingDriveDelaysItsCallerAlone();
};

void TestTempSensorDisk::boundsDependOnTheKindOfDrive_data()
{
    QTest::addColumn<int>("rotationRate");
    QTest::addColumn<int>("max");
    QTest::newRow("solid state") << 1 << 70;
    QTest::newRow("turning") << 5400 << 52;
}

void TestTempSensorDisk::boundsDependOnTheKindOfDrive()
{
    QFETCH(int, rotationRate);
    DriveUnderWindows machine(static_cast<std::uint16_t>(rotationRate));
    machine.drive().smart = smartBlock(65);

    machine.sensor->UpdateValue();

    QCOMPARE(machine.sensor->getMinTemperature(), 42);
    QTEST(machine.sensor->getMaxTemperature(), "max");
}

void TestTempSensorDisk::keysAreComparedExactly()
{
    const DriveUnderWindows machine;
    QVERIFY(machine.sensor->isKeyEqual(text("Model (Serial)")));
    QVERIFY(!machine.sensor->isKeyEqual(text("Model (serial)")));
}

void TestTempSensorDisk::aReadingIsOneCall()
{
    const DriveUnderWindows machine;

    machine.sensor->UpdateValue();

    QCOMPARE(machine.calls->calls,
             QStringList({
                 text("power \\\\.\\PHYSICALDRIVE2"),
                 text("control \\\\.\\PHYSICALDRIVE2 0007C088 "
                      "[00 02 00 00 D0 01 01 4F C2 A0 B0 00 02 00 00 00 00 00 00 00 00 00 00 00 00 "
                      "00 00 00 00 00 00 00 00] 528"),
             }));
}

void TestTempSensorDisk::aReadingIsStored()
{
    DriveUnderWindows machine;

    machine.sensor->UpdateValue();
    QCOMPARE(machine.sensor->value(), 38.0);
    machine.drive().smart = smartBlock(41);
    machine.sensor->UpdateValue();

    QCOMPARE(machine.sensor->value(), 41.0);
    QCOMPARE(machine.sensor->successfulReads(), 2U);
}

void TestTempSensorDisk::aReadingWithoutATemperatureLeavesTheValue_data()
{
    QTest::addColumn<int>("attribute");
    QTest::newRow("0 degrees, and another attribute behind it") << 194;
    QTest::newRow("no attribute") << 193;
}

void TestTempSensorDisk::aReadingWithoutATemperatureLeavesTheValue()
{
    QFETCH(int, attribute);
    DriveUnderWindows machine;
    machine.sensor->UpdateValue();
    DriveBlock block {};
    setAttribute(block, 0, static_cast<std::uint8_t>(attribute), 0);
    setAttribute(block, 1, attribute == 194 ? 190 : 191, 40);
    machine.drive().smart = block;

    machine.sensor->UpdateValue();

    QCOMPARE(machine.sensor->value(), 38.0);
    QCOMPARE(machine.sensor->successfulReads(), 1U);
}

void TestTempSensorDisk::aFailedReadingLeavesTheValue()
{
    DriveUnderWindows machine;
    machine.sensor->UpdateValue();
    machine.drive().smart = smartBlock(50);
    machine.drive().reads = false;

    machine.sensor->UpdateValue();

    QCOMPARE(machine.sensor->value(), 38.0);
    QCOMPARE(machine.sensor->successfulReads(), 1U);
}

void TestTempSensorDisk::aDriveInStandbyIsNotWoken()
{
    DriveUnderWindows machine;
    machine.sensor->UpdateValue();
    machine.drive().isOn = false;
    machine.drive().isInStandby = true;
    machine.calls->calls.clear();

    machine.sensor->UpdateValue();

    QCOMPARE(machine.drive().wakeUps, 0);
    QCOMPARE(machine.calls->calls, QStringList(text("power \\\\.\\PHYSICALDRIVE2")));
    QCOMPARE(machine.sensor->value(), 38.0);
    QCOMPARE(machine.sensor->successfulReads(), 2U);
}

void TestTempSensorDisk::aDriveThatWasAsleepFromTheStartHasNoReading()
{
    DriveUnderWindows machine;
    machine.drive().isOn = false;

    machine.sensor->UpdateValue();
    QCOMPARE(machine.sensor->successfulReads(), 0U);

    machine.drive().isOn = true;
    machine.sensor->UpdateValue();
    QCOMPARE(machine.sensor->successfulReads(), 1U);
}

void TestTempSensorDisk::aDriveThatDoesNotTellItsPowerIsRead()
{
    DriveUnderWindows machine;
    machine.drive().isOn = std::nullopt;

    machine.sensor->UpdateValue();

    QCOMPARE(machine.sensor->value(), 38.0);
}

void TestTempSensorDisk::withoutAHandleNothingIsCalled()
{
    const auto calls = std::make_shared<FakeStorageCalls>();
    {
        TempSensorDiskWin sensor(DriveIdentity::parse(identifyBlock("Model", "Serial")), calls,
                                 nullptr, 0);
        sensor.UpdateValue();
        QCOMPARE(sensor.successfulReads(), 0U);
    }
    QCOMPARE(calls->calls, QStringList());
}

void TestTempSensorDisk::theHandleIsClosedWithTheSensor()
{
    DriveUnderWindows machine;

    machine.sensor.reset();

    QCOMPARE(machine.calls->calls, QStringList(text("close \\\\.\\PHYSICALDRIVE2")));
}

void TestTempSensorDisk::aHangingDriveDelaysItsCallerAlone()
{
    DriveUnderWindows hanging;
    const DriveUnderWindows other;
    hanging.sensor->UpdateValue();
    QSemaphore arrived;
    QSemaphore answers;
    hanging.calls->onRead = [&arrived, &answers] {
        arrived.release();
        answers.acquire();
    };
    hanging.drive().smart = smartBlock(41);
    std::thread caller([&hanging] { hanging.sensor->UpdateValue(); });
    arrived.acquire();

    // Meanwhile everybody else goes on.
    other.sensor->UpdateValue();
    QCOMPARE(other.sensor->value(), 38.0);
    QCOMPARE(hanging.sensor->value(), 38.0);
    QCOMPARE(hanging.sensor->successfulReads(), 1U);

    answers.release();
    caller.join();
    QCOMPARE(hanging.sensor->value(), 41.0);
}

BRISORA_TEST_MAIN(TestTempSensorDisk, QCoreApplication)

#include "test_tempsensordisk.moc"
