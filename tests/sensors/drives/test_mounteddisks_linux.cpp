#include <QCoreApplication>
#include <QtTest>

#include "app/sensors/drives/mounteddisks.h"
#include "tests/sensors/drives/systemtree_linux.h"
#include "tests/support/testenvironment.h"

namespace {

const QString sata = QStringLiteral("/sys/devices/pci0000:00/0000:00:1f.2/ata1/host0/block/");
const QString usb = QStringLiteral("/sys/devices/pci0000:00/0000:00:14.0/usb2/2-1/host6/block/");
const QString virtualDevices = QStringLiteral("/sys/devices/virtual/block/");

// sda with two partitions, sdb with one, and what else the kernel lists.
class Machine : public SystemTree {
public:
    Machine()
    {
        addDevice(sata + QStringLiteral("sda"), "8:0");
        addPartition(sata + QStringLiteral("sda/sda1"), "8:1");
        addPartition(sata + QStringLiteral("sda/sda2"), "8:2");
        addDevice(sata + QStringLiteral("sdb"), "8:16");
        addPartition(sata + QStringLiteral("sdb/sdb1"), "8:17");
        addDevice(virtualDevices + QStringLiteral("loop0"), "7:0");
    }

    void addVolume(const char* name, const QByteArray& number, const QStringList& places)
    {
        const QString place = virtualDevices + QLatin1String(name);
        addDevice(place, number);
        for (const QString& below : places) {
            addLayer(place, below);
        }
    }
};

QByteArray mounted(const QByteArray& number, const QByteArray& source = "/dev/whatever")
{
    return "36 35 " + number + " / /mnt rw,noatime shared:1 master:2 - ext4 " + source
        + " rw,errors=continue\n";
}

QStringList namesOf(const std::vector<MountedDisk>& disks)
{
    QStringList names;
    for (const MountedDisk& disk : disks) {
        names.append(disk.name);
    }
    return names;
}

QStringList list(const char* names)
{
    return QString::fromLatin1(names).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

} // namespace

class TestMountedDisks : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void disksLieUnderFileSystems_data();
    void disksLieUnderFileSystems();
    void disksLieUnderLayers();
    void layersThatLieOnEachOtherEnd();
    void fileSystemsWithNumbersOfTheirOwnAreFoundByPath_data();
    void fileSystemsWithNumbersOfTheirOwnAreFoundByPath();
    void aFileSystemOnSeveralDisksTellsThemAll();
    void fixedDisksAreTold_data();
    void fixedDisksAreTold();
    void usbDisksAreTold();
    void oddListsAreTaken_data();
    void oddListsAreTaken();
    void withoutBlockDevicesThereIsNone();
};

void TestMountedDisks::disksLieUnderFileSystems_data()
{
    QTest::addColumn<QByteArray>("mountInfo");
    QTest::addColumn<QStringList>("disks");
    QTest::newRow("a partition") << mounted("8:2") << list("sda");
    QTest::newRow("a whole disk") << mounted("8:16") << list("sdb");
    QTest::newRow("two partitions of one") << mounted("8:1") + mounted("8:2") << list("sda");
    QTest::newRow("two disks") << mounted("8:17") + mounted("8:1") << list("sdb sda");
    QTest::newRow("no device") << mounted("0:21", "proc") << list("");
    QTest::newRow("an unknown device") << mounted("8:99") << list("");
    QTest::newRow("a loop device") << mounted("7:0") << list("");
}

void TestMountedDisks::disksLieUnderFileSystems()
{
    QFETCH(QByteArray, mountInfo);
    const Machine machine;
    QTEST(namesOf(findMountedDisks(mountInfo)), "disks");
}

void TestMountedDisks::disksLieUnderLayers()
{
    Machine machine;
    // An encrypted partition, a volume over that and another disk, an array.
    machine.addVolume("dm-0", "253:0", { sata + QStringLiteral("sda/sda2") });
    machine.addVolume("dm-1", "253:1",
                      { virtualDevices + QStringLiteral("dm-0"), sata + QStringLiteral("sdb") });
    machine.addVolume("md0", "9:0",
                      { sata + QStringLiteral("sda/sda1"), sata + QStringLiteral("sdb/sdb1") });

    QCOMPARE(namesOf(findMountedDisks(mounted("253:0"))), list("sda"));
    QCOMPARE(namesOf(findMountedDisks(mounted("253:1"))), list("sda sdb"));
    QCOMPARE(namesOf(findMountedDisks(mounted("9:0"))), list("sda sdb"));
}

void TestMountedDisks::layersThatLieOnEachOtherEnd()
{
    Machine machine;
    machine.addVolume("dm-0", "253:0", {});
    machine.addVolume("dm-1", "253:1", { virtualDevices + QStringLiteral("dm-0") });
    machine.addLayer(virtualDevices + QStringLiteral("dm-0"),
                     virtualDevices + QStringLiteral("dm-1"));

    QCOMPARE(namesOf(findMountedDisks(mounted("253:1"))), list(""));
}

void TestMountedDisks::fileSystemsWithNumbersOfTheirOwnAreFoundByPath_data()
{
    QTest::addColumn<QByteArray>("source");
    QTest::addColumn<QStringList>("disks");
    QTest::newRow("a partition") << QByteArray("/dev/sda2") << list("sda");
    QTest::newRow("a name of a volume") << QByteArray("/dev/mapper/crypt") << list("sdb");
    QTest::newRow("a name with a blank") << QByteArray("/dev/mapper/my\\040crypt") << list("sdb");
    QTest::newRow("no such device") << QByteArray("/dev/sdz1") << list("");
    QTest::newRow("a way out of the folder") << QByteArray("/dev/../../..") << list("");
    QTest::newRow("no path") << QByteArray("sda2") << list("");
}

void TestMountedDisks::fileSystemsWithNumbersOfTheirOwnAreFoundByPath()
{
    QFETCH(QByteArray, source);
    Machine machine;
    machine.addVolume("dm-0", "253:0", { sata + QStringLiteral("sdb/sdb1") });
    machine.addFile(QStringLiteral("/dev/sda2"), "");
    machine.addFile(QStringLiteral("/dev/dm-0"), "");
    machine.addLink(QStringLiteral("/dev/mapper/crypt"), QStringLiteral("/dev/dm-0"));
    machine.addLink(QStringLiteral("/dev/mapper/my crypt"), QStringLiteral("/dev/dm-0"));

    QTEST(namesOf(findMountedDisks(mounted("0:40", source))), "disks");
}

void TestMountedDisks::aFileSystemOnSeveralDisksTellsThemAll()
{
    Machine machine;
    machine.addFile(QStringLiteral("/dev/sda2"), "");
    machine.addFolder(QStringLiteral("/sys/fs/btrfs/features"));
    const QString devices = QStringLiteral("/sys/fs/btrfs/5c6b/devices/");
    machine.addLink(devices + QStringLiteral("sda2"), sata + QStringLiteral("sda/sda2"));
    machine.addLink(devices + QStringLiteral("sdb1"), sata + QStringLiteral("sdb/sdb1"));

    QCOMPARE(namesOf(findMountedDisks(mounted("0:40", "/dev/sda2"))), list("sda sdb"));
}

void TestMountedDisks::fixedDisksAreTold_data()
{
    QTest::addColumn<QByteArray>("removable");
    QTest::addColumn<bool>("isFixed");
    QTest::newRow("fixed") << QByteArray("0") << true;
    QTest::newRow("removable") << QByteArray("1") << false;
    QTest::newRow("not told") << QByteArray("") << false;
}

void TestMountedDisks::fixedDisksAreTold()
{
    QFETCH(QByteArray, removable);
    QFETCH(bool, isFixed);
    Machine machine;
    machine.addDevice(sata + QStringLiteral("sdc"), "8:32", removable.constData());

    const std::vector<MountedDisk> expected {
        { QStringLiteral("sdc"), machine.path() + QStringLiteral("/dev/sdc"), isFixed, false,
          machine.path() + QStringLiteral("/sys/class/block/sdc/device/power/runtime_status") }
    };
    QCOMPARE(findMountedDisks(mounted("8:32")), expected);
}

void TestMountedDisks::usbDisksAreTold()
{
    Machine machine;
    machine.addDevice(usb + QStringLiteral("sdc"), "8:32");
    machine.addPartition(usb + QStringLiteral("sdc/sdc1"), "8:33");

    const std::vector<MountedDisk> expected {
        { QStringLiteral("sdc"), machine.path() + QStringLiteral("/dev/sdc"), true, true,
          machine.path() + QStringLiteral("/sys/class/block/sdc/device/power/runtime_status") }
    };
    QCOMPARE(findMountedDisks(mounted("8:33")), expected);
}

void TestMountedDisks::oddListsAreTaken_data()
{
    QTest::addColumn<QByteArray>("mountInfo");
    QTest::addColumn<QStringList>("disks");
    QTest::newRow("empty") << QByteArray() << list("");
    QTest::newRow("an empty line") << QByteArray("\n\n") + mounted("8:1") << list("sda");
    QTest::newRow("few words") << QByteArray("36 35\n") << list("");
    QTest::newRow("no dash") << QByteArray("36 35 8:1 / /mnt rw\n") << list("");
    QTest::newRow("a dash too early") << QByteArray("36 - 8:1 / /mnt rw\n") << list("");
    QTest::newRow("nothing behind the dash") << QByteArray("36 35 8:1 / /mnt rw -") << list("sda");
    QTest::newRow("no optional words")
        << QByteArray("36 35 8:1 / /mnt rw - ext4 /dev/sda1 rw") << list("sda");
    QTest::newRow("half an escape")
        << QByteArray("36 35 0:9 / /mnt rw - btrfs /dev/\\04 rw") << list("");
}

void TestMountedDisks::oddListsAreTaken()
{
    QFETCH(QByteArray, mountInfo);
    const Machine machine;
    QTEST(namesOf(findMountedDisks(mountInfo)), "disks");
}

void TestMountedDisks::withoutBlockDevicesThereIsNone()
{
    const SystemTree empty;
    QVERIFY(findMountedDisks(mounted("8:1", "/dev/sda1")).empty());
}

BRISORA_TEST_MAIN(TestMountedDisks, QCoreApplication)

#include "test_mounteddisks_linux.moc"
