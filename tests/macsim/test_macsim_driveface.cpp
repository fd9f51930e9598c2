#include <cmath>

#include <QCoreApplication>
#include <QFileInfo>

#include "app/sensors/drives/mounteddisks.h"
#include "app/sensors/drives/nvmedrives.h"
#include "macsim/run/driveface.h"
#include "tests/macsim/macbench.h"
#include "tests/support/testenvironment.h"

using namespace macsim;

namespace {

QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
}

// A machine's drive files, which take the place of the system's.
class Face {
public:
    explicit Face(const char* machine)
        : bench(QString::fromLatin1(machine))
        , face(bench.mac, m_root.path())
    {
        qputenv("BRISORA_SYSROOT", QFile::encodeName(m_root.path()));
    }
    ~Face() { qunsetenv("BRISORA_SYSROOT"); }
    Face(const Face&) = delete;
    Face& operator=(const Face&) = delete;

    [[nodiscard]] QString path(const char* file) const
    {
        return m_root.filePath(QLatin1String(file));
    }

    // As the program finds them: "sda", with a mark for those that it leaves out.
    [[nodiscard]] QStringList disks() const
    {
        QStringList names;
        for (const MountedDisk& disk : findMountedDisks(contents(path("proc/self/mountinfo")))) {
            names.append(disk.name + QLatin1String(disk.isUsb ? "(usb)" : "")
                         + QLatin1String(disk.isFixed ? "" : "(removable)"));
        }
        return names;
    }

    [[nodiscard]] static QStringList nvmeDrives()
    {
        QStringList keys;
        for (const NvmeDrive& drive : findNvmeDrives()) {
            keys.append(drive.identity.key());
        }
        return keys;
    }

private:
    QTemporaryDir m_root;

public:
    MacBench bench;
    const DriveFace face;
};

} // namespace

class DriveFaceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theProgramFindsTheDrives_data();
    void theProgramFindsTheDrives();
    void everyMachineHasAListOfMounts_data();
    void everyMachineHasAListOfMounts();
    void aVolumeLiesInItsPartition();
    void deviceFilesAreThere();
    void aDriveThatIsUnpluggedIsGone_data();
    void aDriveThatIsUnpluggedIsGone();
    void nvmeTemperaturesAreKeptUpToDate();
    void aFaceThatCanNotBeWrittenSaysSo();
};

void DriveFaceTest::theProgramFindsTheDrives_data()
{
    QTest::addColumn<QString>("machine");
    QTest::addColumn<QStringList>("disks");
    QTest::addColumn<QStringList>("nvmeDrives");
    QTest::newRow("iMac14,2") << QStringLiteral("iMac14,2")
                              << QStringList({ QStringLiteral("sda"), QStringLiteral("sdb"),
                                               QStringLiteral("sdc(usb)") })
                              << QStringList();
    QTest::newRow("MacBookPro11,3")
        << QStringLiteral("MacBookPro11,3") << QStringList(QStringLiteral("sda")) << QStringList();
    QTest::newRow("MacBook10,1") << QStringLiteral("MacBook10,1") << QStringList()
                                 << QStringList(
                                        QStringLiteral("APPLE SSD AP0256J (C02733602HXHNC31J)"));
    QTest::newRow("Macmini6,2") << QStringLiteral("Macmini6,2") << QStringList() << QStringList();
}

void DriveFaceTest::theProgramFindsTheDrives()
{
    QFETCH(QString, machine);
    const Face face(machine.toLatin1().constData());

    QVERIFY(face.face.create());

    QTEST(face.disks(), "disks");
    QTEST(Face::nvmeDrives(), "nvmeDrives");
}

void DriveFaceTest::everyMachineHasAListOfMounts_data()
{
    QTest::addColumn<QString>("machine");
    const QStringList names = MachineDescription::names();
    for (const QString& name : names) {
        QTest::newRow(qPrintable(name)) << name;
    }
}

void DriveFaceTest::everyMachineHasAListOfMounts()
{
    QFETCH(QString, machine);
    const Face face(machine.toLatin1().constData());
    QVERIFY(face.face.create());
    QVERIFY(contents(face.path("proc/self/mountinfo")).contains(" - proc proc rw\n"));
}

void DriveFaceTest::aVolumeLiesInItsPartition()
{
    const Face face("MacBookPro11,3");
    QVERIFY(face.face.create());
    const QByteArray mounts = contents(face.path("proc/self/mountinfo"));
    QVERIFY2(mounts.contains(" 8:1 / /boot/efi rw,relatime shared:1 - ext4 /dev/sda1 rw\n"),
             mounts.constData());
    QVERIFY(mounts.contains(" 253:0 / / rw,relatime shared:1 - ext4 /dev/dm-0 rw\n"));
    QCOMPARE(contents(face.path("sys/class/block/dm-0/slaves/sda2/dev")), QByteArray("8:2\n"));
}

void DriveFaceTest::deviceFilesAreThere()
{
    const Face face("iMac14,2");
    QVERIFY(face.face.create());
    QCOMPARE(QFileInfo(face.path("sys/class/block/sda1")).canonicalFilePath(),
             QFileInfo(face.path("sys/devices/pci0000:00/0000:00:1f.2/ata1/host0/target0:0:0/"
                                 "0:0:0:0/block/sda/sda1"))
                 .canonicalFilePath());
    for (const char* file : { "dev/sda", "dev/sda1", "dev/sdb", "dev/sdc1" }) {
        QCOMPARE(contents(face.path(file)), QByteArray());
    }
    QCOMPARE(contents(face.path("dev/sda3")), QByteArray("(missing)"));
}

void DriveFaceTest::aDriveThatIsUnpluggedIsGone_data()
{
    QTest::addColumn<QString>("machine");
    QTest::addColumn<QString>("drive");
    QTest::newRow("a disk") << QStringLiteral("iMac14,2") << QStringLiteral("sdb");
    QTest::newRow("a disk with a volume")
        << QStringLiteral("MacBookPro11,3") << QStringLiteral("sda");
    QTest::newRow("an NVMe drive") << QStringLiteral("MacBook10,1") << QStringLiteral("nvme0");
}

void DriveFaceTest::aDriveThatIsUnpluggedIsGone()
{
    QFETCH(QString, machine);
    QFETCH(QString, drive);
    Face face(machine.toLatin1().constData());
    QVERIFY(face.face.create());
    const QStringList before = face.disks() + Face::nvmeDrives();
    SimulatedDrive::Faults faults;
    faults.unplugged = true;

    face.bench.mac.drive(drive)->setFaults(faults);
    QVERIFY(face.face.setPlugged(drive, false));
    QVERIFY(face.face.refresh());

    QCOMPARE((face.disks() + Face::nvmeDrives()).size(), before.size() - 1);
    QVERIFY(!face.disks().contains(drive));
    QCOMPARE(contents(face.path("dev/") + drive), QByteArray("(missing)"));
    // And it comes back.
    face.bench.mac.drive(drive)->setFaults({});
    QVERIFY(face.face.setPlugged(drive, true));
    QCOMPARE(face.disks() + Face::nvmeDrives(), before);
}

void DriveFaceTest::nvmeTemperaturesAreKeptUpToDate()
{
    Face face("MacBook10,1");
    QVERIFY(face.face.create());
    const DriveDescription& drive = face.bench.mac.drive(QStringLiteral("nvme0"))->description();
    const QString file = QString::fromLocal8Bit(findNvmeDrives().at(0).temperatureFile);
    const auto told = [&file] { return contents(file).trimmed().toDouble() / 1000.0; };
    QVERIFY(std::abs(told() - face.bench.mac.temperature(drive)) < 0.51);

    QVERIFY(face.bench.ask({ QStringLiteral("load"), QStringLiteral("heavy") }));
    face.bench.passSeconds(1800);
    const double before = told();
    QVERIFY(face.face.refresh());

    QVERIFY(told() > before + 1.0);
    QVERIFY(std::abs(told() - face.bench.mac.temperature(drive)) < 0.51);
}

void DriveFaceTest::aFaceThatCanNotBeWrittenSaysSo()
{
    const MacBench bench(QStringLiteral("iMac14,2"));
    const DriveFace face(bench.mac, QStringLiteral("/proc/nowhere"));
    QVERIFY(!face.create());
}

BRISORA_TEST_MAIN(DriveFaceTest, QCoreApplication)

#include "test_macsim_driveface.moc"
