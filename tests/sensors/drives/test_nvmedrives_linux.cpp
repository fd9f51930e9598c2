#include <QCoreApplication>
#include <QtTest>

#include "app/sensors/drives/nvmedrives.h"
#include "app/sensors/tempsensordisk.h"
#include "tests/sensors/drives/systemtree_linux.h"
#include "tests/support/testenvironment.h"

namespace {

QString text(const char* value) { return QString::fromLatin1(value); }

void addMonitor(SystemTree& tree, const char* name, const QString& controller,
                const QByteArray& kind = "nvme\n")
{
    const QString place = controller + QLatin1Char('/') + QLatin1String(name);
    tree.addFile(place + text("/name"), kind);
    tree.addFile(place + text("/temp1_input"), "38850\n");
    tree.addLink(place + text("/device"), controller);
    tree.addLink(text("/sys/class/hwmon/") + QLatin1String(name), place);
}

const QString controller = QStringLiteral("/sys/devices/pci0000:00/0000:01:00.0/nvme/nvme0");
const QString pciDevice = QStringLiteral("/sys/devices/pci0000:00/0000:01:00.0");

} // namespace

class TestNvmeDrives : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aDriveIsFound_data();
    void aDriveIsFound();
    void otherMonitorsAreNoDrives();
    void withoutMonitorsThereIsNone();
    void theSystemsOwnLoadReadsIt();
    void withoutTheSettingItIsNotLoaded();
};

void TestNvmeDrives::aDriveIsFound_data()
{
    QTest::addColumn<QString>("parent");
    QTest::newRow("below the drive") << controller;
    QTest::newRow("below the PCI device") << pciDevice;
}

void TestNvmeDrives::aDriveIsFound()
{
    QFETCH(QString, parent);
    SystemTree tree;
    tree.addFile(controller + text("/model"), "APPLE SSD AP0512M                       \n");
    tree.addFile(controller + text("/serial"), "C02913600BZ    \n");
    addMonitor(tree, "hwmon3", parent);

    const auto drives = findNvmeDrives();

    QCOMPARE(drives.size(), std::size_t(1));
    QCOMPARE(drives[0].identity.key(), text("APPLE SSD AP0512M (C02913600BZ)"));
    QCOMPARE(QString::fromLocal8Bit(drives[0].temperatureFile),
             tree.path() + parent + text("/hwmon3/temp1_input"));
}

void TestNvmeDrives::otherMonitorsAreNoDrives()
{
    SystemTree tree;
    addMonitor(tree, "hwmon0", text("/sys/devices/virtual/thermal"), "coretemp\n");
    tree.addFolder(text("/sys/class/hwmon/hwmon1"));

    QVERIFY(findNvmeDrives().empty());
}

void TestNvmeDrives::withoutMonitorsThereIsNone()
{
    const SystemTree empty;
    QVERIFY(findNvmeDrives().empty());
}

void TestNvmeDrives::theSystemsOwnLoadReadsIt()
{
    SystemTree tree;
    tree.addFile(controller + text("/model"), "Model\n");
    addMonitor(tree, "hwmon3", controller);

    const auto sensors = TempSensorDisk::loadAvailableSensors(false, true);

    QCOMPARE(sensors.size(), std::size_t(1));
    sensors[0]->UpdateValue();
    QCOMPARE(sensors[0]->value(), 38.85);
}

void TestNvmeDrives::withoutTheSettingItIsNotLoaded()
{
    SystemTree tree;
    addMonitor(tree, "hwmon3", controller);

    QVERIFY(TempSensorDisk::loadAvailableSensors(false, false).empty());
}

BRISORA_TEST_MAIN(TestNvmeDrives, QCoreApplication)

#include "test_nvmedrives_linux.moc"
