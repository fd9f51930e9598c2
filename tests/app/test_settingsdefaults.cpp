#include <QtTest>

#include "app/settingsdefaults.h"
#include "app/settingskeys.h"
#include "app/sysinfo/sysinfo.h"
#include "core/settings/qsettingscache.h"
#include "tests/support/fakemachineidentity.h"
#include "tests/support/testenvironment.h"

class SettingsDefaultsTest : public QObject {
    Q_OBJECT

private:
    static void applyOn(const QString& model, QSettingsCache& settings)
    {
        FakeMachineIdentity identity(model);
        const SystemInfo systemInfo(identity);
        applySettingsDefaults(settings, systemInfo);
    }

private Q_SLOTS:
    void init();
    void firstRunDefaultsFollowTheModel_data();
    void firstRunDefaultsFollowTheModel();
    void storedChoicesStay();
    void externalGpuIsSwitchedOffOnAMachineThatCantHaveOne();
    void keysOfEarlierReleasesAreRemoved();
};

void SettingsDefaultsTest::init()
{
    QSettings(QStringLiteral("Orvane Software"), QStringLiteral("Brisora")).clear();
}

void SettingsDefaultsTest::firstRunDefaultsFollowTheModel_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<int>("smartDrives");
    QTest::addColumn<int>("externalGpu");

    QTest::newRow("MacBook") << "MacBook10,1" << 1 << 0;
    QTest::newRow("MacBookAir") << "MacBookAir9,1" << 1 << 0;
    QTest::newRow("MacBookPro before 81") << "MacBookPro7,1" << 1 << 0;
    QTest::newRow("MacBookPro from 81") << "MacBookPro8,1" << 1 << 1;
    QTest::newRow("iMac before 121") << "iMac11,3" << 1 << 0;
    QTest::newRow("iMac from 121") << "iMac12,1" << 1 << 1;
    QTest::newRow("iMacPro") << "iMacPro1,1" << 0 << 1;
    QTest::newRow("Macmini before 51") << "Macmini4,1" << 1 << 0;
    QTest::newRow("Macmini from 51") << "Macmini5,1" << 1 << 1;
    QTest::newRow("MacPro before 61") << "MacPro5,1" << 1 << 0;
    QTest::newRow("MacPro from 61") << "MacPro6,1" << 1 << 1;
    QTest::newRow("Xserve") << "Xserve3,1" << 1 << 0;
    QTest::newRow("ADP") << "ADP3,2" << 0 << 0;
    QTest::newRow("unknown family") << "PowerBook5,1" << 1 << 0;
}

void SettingsDefaultsTest::firstRunDefaultsFollowTheModel()
{
    QFETCH(QString, model);
    QSettingsCache settings(QStringLiteral("Orvane Software"), QStringLiteral("Brisora"));

    applyOn(model, settings);

    QCOMPARE(settings.getInt(SettingsKeys::fahrenheit, -1), 0);
    QCOMPARE(settings.getInt(SettingsKeys::preciseTemperature, -1), 0);
    QCOMPARE(settings.getInt(SettingsKeys::showNvmeDrives, -1), 1);
    QTEST(settings.getInt(SettingsKeys::showSmartDrives, -1), "smartDrives");
    QTEST(settings.getInt(SettingsKeys::showEGpuTemp, -1), "externalGpu");
}

void SettingsDefaultsTest::storedChoicesStay()
{
    {
        QSettings storage(QStringLiteral("Orvane Software"), QStringLiteral("Brisora"));
        storage.setValue(SettingsKeys::fahrenheit, 1);
        storage.setValue(SettingsKeys::preciseTemperature, 1);
        storage.setValue(SettingsKeys::showSmartDrives, 0);
        storage.setValue(SettingsKeys::showNvmeDrives, 0);
        storage.setValue(SettingsKeys::showEGpuTemp, 0);
    }
    QSettingsCache settings(QStringLiteral("Orvane Software"), QStringLiteral("Brisora"));

    applyOn(QStringLiteral("MacBookPro11,3"), settings);

    QCOMPARE(settings.getInt(SettingsKeys::fahrenheit), 1);
    QCOMPARE(settings.getInt(SettingsKeys::preciseTemperature), 1);
    QCOMPARE(settings.getInt(SettingsKeys::showSmartDrives), 0);
    QCOMPARE(settings.getInt(SettingsKeys::showNvmeDrives), 0);
    QCOMPARE(settings.getInt(SettingsKeys::showEGpuTemp), 0);
}

void SettingsDefaultsTest::externalGpuIsSwitchedOffOnAMachineThatCantHaveOne()
{
    QSettings(QStringLiteral("Orvane Software"), QStringLiteral("Brisora"))
        .setValue(SettingsKeys::showEGpuTemp, 1);
    QSettingsCache settings(QStringLiteral("Orvane Software"), QStringLiteral("Brisora"));

    applyOn(QStringLiteral("MacPro5,1"), settings);

    QCOMPARE(settings.getInt(SettingsKeys::showEGpuTemp, -1), 0);
}

void SettingsDefaultsTest::keysOfEarlierReleasesAreRemoved()
{
    const QStringList oldKeys { QStringLiteral("Fans"), QStringLiteral("Machine"),
                                QStringLiteral("CPU"), QStringLiteral("TempSensors"),
                                QStringLiteral("ShowGpuTemp") };
    {
        QSettings storage(QStringLiteral("Orvane Software"), QStringLiteral("Brisora"));
        for (const QString& key : oldKeys) {
            storage.setValue(key, 1);
        }
        storage.setValue(SettingsKeys::activePreset, QStringLiteral("Predefined:1"));
    }
    {
        QSettingsCache settings(QStringLiteral("Orvane Software"), QStringLiteral("Brisora"));
        applyOn(QStringLiteral("MacPro5,1"), settings);
    }

    const QSettings storage(QStringLiteral("Orvane Software"), QStringLiteral("Brisora"));
    for (const QString& key : oldKeys) {
        QVERIFY2(!storage.contains(key), qPrintable(key));
    }
    QCOMPARE(storage.value(SettingsKeys::activePreset).toString(), QStringLiteral("Predefined:1"));
}

BRISORA_TEST_MAIN(SettingsDefaultsTest, QCoreApplication)
#include "test_settingsdefaults.moc"
