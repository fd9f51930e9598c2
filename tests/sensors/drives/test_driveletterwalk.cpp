#include <QCoreApplication>
#include <QtTest>

#include "app/sensors/drives/driveletterwalk.h"
#include "tests/sensors/drives/fakestoragecalls.h"
#include "tests/support/logcapture.h"
#include "tests/support/testenvironment.h"

namespace {

QString text(const char* value) { return QString::fromLatin1(value); }

// A Windows on which the walk is done.
class Walk {
public:
    Walk()
    {
        calls->volumes['C'] = {};
        calls->drives[0] = {};
    }

    void run(bool showSmartDrives = true)
    {
        sensors = DriveLetterWalk(calls, showSmartDrives).run();
    }

    [[nodiscard]] QStringList names() const
    {
        QStringList result;
        for (const auto& sensor : sensors) {
            result.append(sensor->displayName());
        }
        return result;
    }

    LogCapture log;
    const std::shared_ptr<FakeStorageCalls> calls = std::make_shared<FakeStorageCalls>();
    TempSensorDisk::List sensors;
};

using Change = void (*)(FakeStorageCalls& calls);

} // namespace

Q_DECLARE_METATYPE(Change)

class TestDriveLetterWalk : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyCallIsMadeAsTheSystemWantsIt();
    void everyStepIsLogged();
    void theSensorIsTheDrive();
    void aStepThatFailsEndsTheLetter_data();
    void aStepThatFailsEndsTheLetter();
    void aFailureDoesNotEndTheWalk();
    void lettersWithoutADriveAreNotAsked();
    void twoVolumesOnOneDiskGiveOneSensor();
    void aDiskThatFailedIsNotTriedAgain();
    void aVolumeOnSeveralDisksCountsForTheFirst();
    void aUsbDriveIsSeenAndSkipped();
    void aDriveThatDoesNotTellItsBusIsTaken();
    void withoutTheSettingNoDriveIsTouched();
    void handlesAreClosedByWhoOwnsThem();
    void drivesThatCameToNothingStayOpen_data();
    void drivesThatCameToNothingStayOpen();
    void namesAreLoggedInOneLine();
    void everyLetterIsWalked();
};

void TestDriveLetterWalk::everyCallIsMadeAsTheSystemWantsIt()
{
    Walk walk;
    walk.calls->volumes['C'].disk = 3;
    walk.calls->drives[3] = {};

    walk.run();

    QCOMPARE(
        walk.calls->calls,
        QStringList({
            text("type C:\\"),
            text("open \\\\.\\C: C0000000 3 3 4"),
            text("control \\\\.\\C: 00560000 [] 32"),
            text("open \\\\.\\PHYSICALDRIVE3 C0000000 3 3 4"),
            text("control \\\\.\\PHYSICALDRIVE3 002D1400 "
                 "[00 00 00 00 00 00 00 00 00 00 00 00] 551"),
            text("control \\\\.\\PHYSICALDRIVE3 00074080 [] 24"),
            text("control \\\\.\\PHYSICALDRIVE3 0007C084 "
                 "[00 00 00 00 D8 01 01 4F C2 A0 B0 00 03 00 00 00 00 00 00 00 00 00 00 00 00 00 "
                 "00 00 00 00 00 00 00] 17"),
            text("control \\\\.\\PHYSICALDRIVE3 0007C088 "
                 "[00 02 00 00 00 01 01 00 00 A0 EC 00 03 00 00 00 00 00 00 00 00 00 00 00 00 00 "
                 "00 00 00 00 00 00 00] 528"),
            text("close \\\\.\\C:"),
        }));
    // 551 in the second word.
    QCOMPARE(walk.calls->propertyReplyBefore.toHex(),
             QByteArray("0000000027020000") + QByteArray(48, '0'));
}

void TestDriveLetterWalk::everyStepIsLogged()
{
    Walk walk;
    walk.calls->volumes['A'].driveType = 2;

    walk.run();

    QCOMPARE(walk.log.lines(),
             QStringList({
                 text("info: Loading available SMART drives"),
                 text("info: GetLogicalDrives returned 5"),
                 text("info: Checking drive A:\\"),
                 text("info: The drive is NOT fixed (2)"),
                 text("info: Checking drive C:\\"),
                 text("info: Drive is fixed"),
                 text("info: Phisical disk number: 0"),
                 text("info: Adding drive \\\\.\\PHYSICALDRIVE0"),
                 text("info: Adding drive Model"),
             }));
}

void TestDriveLetterWalk::theSensorIsTheDrive()
{
    Walk walk;
    walk.calls->drives[0].identify = identifyBlock("APPLE SSD SM0512F", "S1K5NYAF", solidState);

    walk.run();

    QCOMPARE(walk.sensors.size(), std::size_t(1));
    const TemperatureSensorAbstract& sensor = *walk.sensors.front();
    QCOMPARE(sensor.displayName(), text("APPLE SSD SM0512F"));
    QCOMPARE(sensor.key(), text("APPLE SSD SM0512F (S1K5NYAF)"));
    QCOMPARE(sensor.type(), SensorType::ssd);
    QCOMPARE(sensor.group(), QString());
    QCOMPARE(sensor.value(), 0.0);
    QVERIFY(!sensor.isHidden());
}

void TestDriveLetterWalk::aStepThatFailsEndsTheLetter_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<QString>("line");
    const auto row = [](const char* name, Change change, const char* line) {
        QTest::newRow(name) << change << text(line);
    };
    row(
        "volume", [](FakeStorageCalls& calls) { calls.volumes['C'].opens = false; },
        "info: Failed to open mounted volume \\\\.\\C:, GetLastError() = 2");
    row(
        "extents", [](FakeStorageCalls& calls) { calls.volumes['C'].hasExtents = false; },
        "warning: Failed to get IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS");
    row(
        "drive", [](FakeStorageCalls& calls) { calls.drives[0].opens = false; },
        "info: Failed to open device \\\\.\\PHYSICALDRIVE0, GetLastError() = 2");
    row(
        "version", [](FakeStorageCalls& calls) { calls.drives[0].answersVersion = false; },
        "warning: Failed to get SMART_GET_VERSION, GetLastError() = 1");
    row(
        "capabilities", [](FakeStorageCalls& calls) { calls.drives[0].capabilities = 0xFB; },
        "warning: CAP_SMART_CMD doesn't present (251)");
    row(
        "enabling", [](FakeStorageCalls& calls) { calls.drives[0].enables = false; },
        "warning: Smart is not enabled, GetLastError() = 31");
    row(
        "identifying", [](FakeStorageCalls& calls) { calls.drives[0].identifies = false; },
        "warning: readSmartIdentify failed, GetLastError() = 1117");
}

void TestDriveLetterWalk::aStepThatFailsEndsTheLetter()
{
    QFETCH(Change, change);
    QFETCH(QString, line);
    Walk walk;
    change(*walk.calls);

    walk.run();

    QVERIFY(walk.sensors.empty());
    QCOMPARE(walk.log.lines().last(), line);
    QVERIFY(!walk.calls->openHandles().contains(text("\\\\.\\C:")));
}

void TestDriveLetterWalk::aFailureDoesNotEndTheWalk()
{
    Walk walk;
    walk.calls->drives[0].identifies = false;
    walk.calls->volumes['D'].disk = 1;
    walk.calls->drives[1].identify = identifyBlock("Second", "2");

    walk.run();

    QCOMPARE(walk.names(), QStringList(text("Second")));
}

void TestDriveLetterWalk::lettersWithoutADriveAreNotAsked()
{
    Walk walk;
    walk.calls->volumes.clear();

    walk.run();

    QVERIFY(walk.calls->calls.isEmpty());
    QVERIFY(walk.log.contains(text("info: GetLogicalDrives returned 0")));
}

void TestDriveLetterWalk::twoVolumesOnOneDiskGiveOneSensor()
{
    Walk walk;
    walk.calls->volumes['D'] = {};

    walk.run();

    QCOMPARE(walk.sensors.size(), std::size_t(1));
    QCOMPARE(walk.log.count(text("info: Phisical disk number: 0")), 2);
    QCOMPARE(walk.log.lines().last(), text("info: Phisical disk number: 0"));
    QCOMPARE(walk.calls->calls.last(), text("close \\\\.\\D:"));
}

void TestDriveLetterWalk::aDiskThatFailedIsNotTriedAgain()
{
    Walk walk;
    walk.calls->volumes['D'] = {};
    walk.calls->drives[0].opens = false;

    walk.run();

    QCOMPARE(walk.calls->calls.filter(text("PHYSICALDRIVE")).size(), 1);
}

void TestDriveLetterWalk::aVolumeOnSeveralDisksCountsForTheFirst()
{
    Walk walk;
    walk.calls->volumes['C'].hasMoreExtents = true;
    walk.calls->drives[1].identify = identifyBlock("Second", "2");

    walk.run();

    QCOMPARE(walk.names(), QStringList(text("Model")));
}

void TestDriveLetterWalk::aUsbDriveIsSeenAndSkipped()
{
    Walk walk;
    walk.calls->volumes['D'] = {};
    walk.calls->drives[0].busType = 7;

    walk.run();

    QVERIFY(walk.sensors.empty());
    QCOMPARE(walk.log.count(text("info: Skipping USB drive")), 1);
    QVERIFY(walk.calls->calls.filter(text(" 00074080 ")).isEmpty());
}

void TestDriveLetterWalk::aDriveThatDoesNotTellItsBusIsTaken()
{
    Walk walk;
    walk.calls->drives[0].busType = 7;
    walk.calls->drives[0].answersProperty = false;

    walk.run();

    QCOMPARE(walk.sensors.size(), std::size_t(1));
}

void TestDriveLetterWalk::withoutTheSettingNoDriveIsTouched()
{
    Walk walk;
    walk.calls->volumes['D'].disk = 1;
    walk.calls->drives[1].busType = 7;

    walk.run(false);

    QVERIFY(walk.sensors.empty());
    QCOMPARE(walk.calls->calls.filter(text("control \\\\.\\PHYSICALDRIVE")),
             walk.calls->calls.filter(text(" 002D1400 ")));
    QCOMPARE(walk.log.lines().last(), text("info: Skipping USB drive"));
}

void TestDriveLetterWalk::handlesAreClosedByWhoOwnsThem()
{
    Walk walk;
    walk.calls->volumes['D'].disk = 1;
    walk.calls->drives[1] = {};

    walk.run();
    QCOMPARE(walk.calls->openHandles(),
             QStringList({ text("\\\\.\\PHYSICALDRIVE0"), text("\\\\.\\PHYSICALDRIVE1") }));
    walk.sensors.clear();

    QCOMPARE(walk.calls->openHandles(), QStringList());
}

void TestDriveLetterWalk::drivesThatCameToNothingStayOpen_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<bool>("showSmartDrives");
    const auto row = [](const char* name, Change change, bool showSmartDrives = true) {
        QTest::newRow(name) << change << showSmartDrives;
    };
    row("USB", [](FakeStorageCalls& calls) { calls.drives[0].busType = 7; });
    row(
        "setting", [](FakeStorageCalls&) {}, false);
    row("version", [](FakeStorageCalls& calls) { calls.drives[0].answersVersion = false; });
    row("capabilities", [](FakeStorageCalls& calls) { calls.drives[0].capabilities = 3; });
    row("enabling", [](FakeStorageCalls& calls) { calls.drives[0].enables = false; });
    row("identifying", [](FakeStorageCalls& calls) { calls.drives[0].identifies = false; });
}

void TestDriveLetterWalk::drivesThatCameToNothingStayOpen()
{
    QFETCH(Change, change);
    QFETCH(bool, showSmartDrives);
    Walk walk;
    change(*walk.calls);

    walk.run(showSmartDrives);

    QCOMPARE(walk.calls->openHandles(), QStringList(text("\\\\.\\PHYSICALDRIVE0")));
}

void TestDriveLetterWalk::namesAreLoggedInOneLine()
{
    Walk walk;
    walk.calls->drives[0].identify = identifyBlock("Mo\ndel", "1");

    walk.run();

    QCOMPARE(walk.log.lines().last(), text("info: Adding drive Mo\\ndel"));
}

void TestDriveLetterWalk::everyLetterIsWalked()
{
    Walk walk;
    walk.calls->volumes.clear();
    for (int index = 0; index < 26; ++index) {
        walk.calls->volumes[static_cast<char>('A' + index)].disk
            = static_cast<std::uint32_t>(index);
        walk.calls->drives[index].identify = identifyBlock("Model", QByteArray::number(index));
    }

    walk.run();

    QCOMPARE(walk.sensors.size(), std::size_t(26));
    QCOMPARE(walk.sensors.back()->key(), text("Model (25)"));
}

BRISORA_TEST_MAIN(TestDriveLetterWalk, QCoreApplication)

#include "test_driveletterwalk.moc"
