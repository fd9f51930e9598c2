#include <QCoreApplication>

#include "app/sensors/drives/driveidentity.h"
#include "app/sensors/tempsensordisk.h"
#include "app/sensors/tempsensorprovider.h"
#include "app/settingskeys.h"
#include "resources/resources.h"
#include "tests/sensors/sensormachine.h"
#include "tests/support/logcapture.h"
#include "tests/support/testenvironment.h"

namespace {

QString text(const char* value) { return QString::fromLatin1(value); }

class TestDrive final : public TempSensorDisk {
public:
    TestDrive(const char* model, const char* serial, SensorType type, double value)
        : TempSensorDisk(identityOf(model, serial), type)
    {
        storeValue(value);
    }

    void UpdateValue() override { storeValue(value() + 1.0); }

private:
    static DriveIdentity identityOf(const char* model, const char* serial)
    {
        DriveIdentity identity;
        identity.model = text(model);
        identity.serial = text(serial);
        return identity;
    }
};

// A machine with drives.
class DriveMachine : public SensorMachine {
public:
    DriveMachine()
    {
        controller->setTemperature("TH0A", 40.0); // of type ssd
        controller->setTemperature("TW0P", 35.0); // "Airport Proximity"
    }

    TempSensorDisk::List loadDrives(bool showSmartDrives, bool showNvmeDrives)
    {
        loads.append({ showSmartDrives, showNvmeDrives });
        TempSensorDisk::List drives;
        for (const char* model : models) {
            drives.push_back(std::make_unique<TestDrive>(model, "1", SensorType::hdd, 38.0));
        }
        return drives;
    }

    QVector<QPair<bool, bool>> loads;
    std::vector<const char*> models;
    TemperatureSensorProvider provider { info, settings, [this](bool smart, bool nvme) {
                                            return loadDrives(smart, nvme);
                                        } };
};

QStringList namesOf(const std::vector<TemperatureSensorAbstract*>& sensors)
{
    QStringList result;
    for (const TemperatureSensorAbstract* sensor : sensors) {
        result.append(sensor->displayName());
    }
    return result;
}

} // namespace

class TestTempSensorProviderDrives : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { initResources(); }

    void theSettingsDecideWhatIsLoaded_data();
    void theSettingsDecideWhatIsLoaded();
    void drivesStandBehindEverythingElse();
    void aDriveHidesTheControllersDrives();
    void withoutADriveTheControllersDrivesStay();
    void hiddenSensorsAreStillUpdated();
    void drivesAreFoundByTheirKeys();
    void drivesAreCountedInTheLog();
    void theAverageComesAfterTheDrives();
    void theReportTellsTheDrives();
    void unloadingDestroysTheDrives();
    void aReloadReadsTheSettingsAgain();
};

void TestTempSensorProviderDrives::theSettingsDecideWhatIsLoaded_data()
{
    QTest::addColumn<QVariant>("smart");
    QTest::addColumn<QVariant>("nvme");
    QTest::addColumn<bool>("showSmart");
    QTest::addColumn<bool>("showNvme");
    QTest::newRow("both") << QVariant(1) << QVariant(1) << true << true;
    QTest::newRow("SMART alone") << QVariant(1) << QVariant(0) << true << false;
    QTest::newRow("NVMe alone") << QVariant(0) << QVariant(1) << false << true;
    QTest::newRow("neither") << QVariant(0) << QVariant(0) << false << false;
    QTest::newRow("not stored") << QVariant() << QVariant() << false << false;
    QTest::newRow("another number") << QVariant(2) << QVariant(-1) << false << false;
}

void TestTempSensorProviderDrives::theSettingsDecideWhatIsLoaded()
{
    QFETCH(QVariant, smart);
    QFETCH(QVariant, nvme);
    QFETCH(bool, showSmart);
    QFETCH(bool, showNvme);
    DriveMachine machine;
    if (smart.isValid()) {
        machine.settings.setInt(SettingsKeys::showSmartDrives, smart.toInt());
        machine.settings.setInt(SettingsKeys::showNvmeDrives, nvme.toInt());
    }

    machine.provider.load(machine.service.get());

    QCOMPARE(machine.loads, (QVector<QPair<bool, bool>> { { showSmart, showNvme } }));
}

void TestTempSensorProviderDrives::drivesStandBehindEverythingElse()
{
    DriveMachine machine;
    machine.models = { "Second drive", "APPLE HDD" };

    machine.provider.load(machine.service.get());

    QCOMPARE(namesOf(machine.provider.getSensors()),
             QStringList({ text("Airport Proximity"), text("APPLE HDD"), text("Second drive") }));
}

void TestTempSensorProviderDrives::aDriveHidesTheControllersDrives()
{
    DriveMachine machine;
    machine.models = { "Another drive altogether" };

    machine.provider.load(machine.service.get());

    QVERIFY(machine.provider.getSensorByKey(text("TH0A")) == nullptr);
    QVERIFY(machine.provider.getSensorByKey(text("TW0P")) != nullptr);
    QVERIFY(machine.provider.getTechInfo(machine.service.get())
                .contains(text("TH0A (Apple SSD) - 40, 40 [H]\n")));
}

void TestTempSensorProviderDrives::withoutADriveTheControllersDrivesStay()
{
    DriveMachine machine;
    machine.settings.setInt(SettingsKeys::showSmartDrives, 1);

    machine.provider.load(machine.service.get());

    QVERIFY(machine.provider.getSensorByKey(text("TH0A")) != nullptr);
}

void TestTempSensorProviderDrives::hiddenSensorsAreStillUpdated()
{
    DriveMachine machine;
    machine.provider.load(machine.service.get());
    TemperatureSensorAbstract* hidden = machine.provider.getSensorByKey(text("TH0A"));
    QVERIFY(hidden != nullptr);
    hidden->setHidden(true);

    hidden->UpdateValue();

    QCOMPARE(hidden->value(), 40.0);
}

void TestTempSensorProviderDrives::drivesAreFoundByTheirKeys()
{
    DriveMachine machine;
    machine.models = { "APPLE HDD" };
    machine.provider.load(machine.service.get());

    QVERIFY(machine.provider.getSensorByKey(text("APPLE HDD (1)")) != nullptr);
    QCOMPARE(machine.provider.getSensorDisplayNameByKey(text("APPLE HDD (1)")), text("APPLE HDD"));
    QVERIFY(machine.provider.getSensorByKey(text("Apple HDD (1)")) == nullptr);
}

void TestTempSensorProviderDrives::drivesAreCountedInTheLog()
{
    DriveMachine machine;
    machine.models = { "First", "Second" };
    const LogCapture log;

    machine.provider.load(machine.service.get());

    const QStringList counts = log.lines().filter(text("number of supported"));
    QCOMPARE(counts.value(0), text("info: InitialLoadThread: number of supported SMC sensors: 2"));
    QCOMPARE(counts.value(1), text("info: InitialLoadThread: number of supported DISK sensors: 2"));
}

void TestTempSensorProviderDrives::theAverageComesAfterTheDrives()
{
    DriveMachine machine;
    machine.controller->setTemperature("TC1C", 50.0);
    QStringList linesBefore;
    const LogCapture log;
    TemperatureSensorProvider provider(machine.info, machine.settings,
                                       [&linesBefore, &log](bool, bool) {
                                           linesBefore = log.lines();
                                           return TempSensorDisk::List();
                                       });

    provider.load(machine.service.get());

    const QString average = text("info: Using TC1C sensor for CPU Core average");
    QVERIFY(!linesBefore.isEmpty());
    QVERIFY(!linesBefore.contains(average));
    QVERIFY(log.contains(average));
}

void TestTempSensorProviderDrives::theReportTellsTheDrives()
{
    DriveMachine machine;
    machine.models = { "First", "Second %1" };
    machine.provider.load(machine.service.get());
    machine.provider.getSensorByKey(text("First (1)"))->UpdateValue();

    QVERIFY(machine.provider.getTechInfo(machine.service.get())
                .endsWith(text("Disk drives:\nFirst - 39\nSecond %1 - 38\n")));
}

void TestTempSensorProviderDrives::unloadingDestroysTheDrives()
{
    DriveMachine machine;
    machine.models = { "First" };
    machine.provider.load(machine.service.get());

    machine.provider.unload();

    QVERIFY(machine.provider.getSensors().empty());
    QVERIFY(machine.provider.getTechInfo(machine.service.get()).endsWith(text("Disk drives:\n")));
}

void TestTempSensorProviderDrives::aReloadReadsTheSettingsAgain()
{
    DriveMachine machine;
    machine.settings.setInt(SettingsKeys::showSmartDrives, 1);
    machine.models = { "First" };
    machine.provider.load(machine.service.get());
    const std::uint32_t id = machine.provider.getSensorByKey(text("First (1)"))->id();

    machine.settings.setInt(SettingsKeys::showSmartDrives, 0);
    machine.models = {};
    machine.provider.unload();
    machine.provider.load(machine.service.get());
    QVERIFY(!machine.loads.last().first);
    QVERIFY(machine.provider.getSensorByKey(text("TH0A")) != nullptr);

    machine.models = { "First" };
    machine.provider.unload();
    machine.provider.load(machine.service.get());
    QVERIFY(machine.provider.getSensorByKey(text("First (1)"))->id() > id);
}

BRISORA_TEST_MAIN(TestTempSensorProviderDrives, QCoreApplication)

#include "test_tempsensorprovider_drives.moc"
