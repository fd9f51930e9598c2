#include <QCoreApplication>

#include "tests/e2e/driverun.h"
#include "tests/support/testenvironment.h"

class TestDrives : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void drives_are_shown_data();
    void drives_are_shown();
    void a_drives_temperature_follows_the_load();
    void without_the_setting_the_controllers_drive_stays();
    void without_the_privilege_the_controllers_drive_stays();
    void a_drive_in_standby_is_not_woken();
    void a_drive_that_is_pulled_out_keeps_its_value();
};

namespace {

int numberIn(const QJsonObject& state, const char* name)
{
    return state[QLatin1String(name)].toInt(-1);
}

} // namespace

void TestDrives::drives_are_shown_data()
{
    QTest::addColumn<QString>("machine");
    QTest::addColumn<QStringList>("drives"); // in the order of the table
    QTest::addColumn<QString>("hidden");
    QTest::newRow("two ATA drives, and one on USB")
        << QStringLiteral("iMac14,2") << QStringList({ DriveRun::hdd(), DriveRun::ssd() })
        << QString();
    QTest::newRow("an ATA drive under an encrypted volume")
        << QStringLiteral("MacBookPro11,3")
        << QStringList(QStringLiteral("APPLE SSD SM0512F (S1K5NYAF403812)"))
        << QStringLiteral("TH0A");
    QTest::newRow("an NVMe drive")
        << QStringLiteral("MacBook10,1")
        << QStringList(QStringLiteral("APPLE SSD AP0256J (C02733602HXHNC31J)"))
        << QStringLiteral("TH0A");
}

void TestDrives::drives_are_shown()
{
    QFETCH(QString, machine);
    QFETCH(QStringList, drives);
    QFETCH(QString, hidden);
    DriveRun run(machine);
    QVERIFY(run.startSteered());

    for (const QString& key : qAsConst(drives)) {
        QVERIFY2(run.waitForValue(key), qPrintable(key));
        const double value = run.valueOf(key);
        QVERIFY2(value > 20.0 && value < 60.0, qPrintable(QString::number(value)));
    }
    // Last of all, whatever they are called.
    const QStringList sensors = run.ask(QStringLiteral("sensors")).split(QLatin1Char(';'));
    const QStringList last = sensors.mid(static_cast<int>(sensors.size() - drives.size()));
    for (int index = 0; index < drives.size(); ++index) {
        QVERIFY2(last.value(index).startsWith(drives.at(index)),
                 qPrintable(last.join(QLatin1Char(';'))));
    }
    QVERIFY(!sensors.join(QLatin1Char(';')).contains(QLatin1String("Portable Drive")));
    QVERIFY(hidden.isEmpty() || DriveRun::textOf(sensors.join(QLatin1Char(';')), hidden).isNull());

    QVERIFY(run.terminate());
    QVERIFY(run.log().contains(
        QStringLiteral("number of supported DISK sensors: %1\r\n").arg(drives.size())));
    QCOMPARE(run.leftovers(), QStringList());
}

void TestDrives::a_drives_temperature_follows_the_load()
{
    DriveRun run;
    run.setSpeed(200);
    QVERIFY(run.startSteered());
    QVERIFY(run.waitForValue(DriveRun::hdd()));
    const double cool = run.valueOf(DriveRun::hdd());

    QVERIFY(run.control({ QStringLiteral("load"), QStringLiteral("heavy") }));

    QVERIFY(run.waitFor([&run, cool] { return run.valueOf(DriveRun::hdd()) >= cool + 2.0; }));
    QVERIFY(run.terminate());
}

void TestDrives::without_the_setting_the_controllers_drive_stays()
{
    DriveRun run(QStringLiteral("MacBookPro11,3"));
    run.storeSetting(QStringLiteral("ShowSmartDrives"), 0);
    QVERIFY(run.startSteered());
    QVERIFY(run.waitUntilLoaded());

    const QString sensors = run.ask(QStringLiteral("sensors"));

    QCOMPARE(DriveRun::textOf(sensors, QStringLiteral("TH0A")), QStringLiteral("Apple SSD"));
    QVERIFY(!sensors.contains(QLatin1String("SM0512F")));
    QCOMPARE(trace::count(run.traceLog(), DriveRun::drive("sda open ok")), 0);
    QVERIFY(run.terminate());
}

void TestDrives::without_the_privilege_the_controllers_drive_stays()
{
    DriveRun run(QStringLiteral("MacBookPro11,3"));
    run.beforeStart({ QStringLiteral("drive"), QStringLiteral("sda"), QStringLiteral("forbid"),
                      QStringLiteral("commands") });
    QVERIFY(run.startSteered());
    QVERIFY(run.waitUntilLoaded());

    QCOMPARE(DriveRun::textOf(run.ask(QStringLiteral("sensors")), QStringLiteral("TH0A")),
             QStringLiteral("Apple SSD"));
    QVERIFY(run.terminate());
    QCOMPARE(run.log().count(QLatin1String("need the capability CAP_SYS_RAWIO")), 1);
}

void TestDrives::a_drive_in_standby_is_not_woken()
{
    DriveRun run;
    // The fan follows the drive, whose value counts as read all the time.
    run.storeActivePreset({ QStringLiteral("2,%1,20,90").arg(DriveRun::hdd()) });
    QVERIFY(run.startSteered());
    QVERIFY(run.waitForValue(DriveRun::hdd()));
    // A reading that is on its way wakes it once more.
    QVERIFY(run.waitFor([&run] {
        if (!run.driveState("sdb")[QLatin1String("standby")].toBool()) {
            return !run.tell("sdb standby");
        }
        return trace::count(run.traceLog(), DriveRun::drive("sdb check-power standby")) > 0;
    }));
    const QJsonObject before = run.driveState("sdb");
    const double value = run.valueOf(DriveRun::hdd());

    QVERIFY(run.waitFor([&run, &before] {
        return numberIn(run.driveState("sdb"), "powerChecks")
            >= numberIn(before, "powerChecks") + 3;
    }));

    const QJsonObject after = run.driveState("sdb");
    QVERIFY(after[QLatin1String("standby")].toBool());
    QCOMPARE(numberIn(after, "wakeUps"), numberIn(before, "wakeUps"));
    QCOMPARE(numberIn(after, "reads"), numberIn(before, "reads"));
    QCOMPARE(run.valueOf(DriveRun::hdd()), value);

    QVERIFY(run.tell("sdb wake"));
    QVERIFY(run.waitForLine(DriveRun::drive("sdb read-smart ok"), run.here()) >= 0);
    QVERIFY(run.terminate());
    QVERIFY(!run.log().contains(QLatin1String("has stopped reading")));
    QCOMPARE(run.leftovers(), QStringList());
}

void TestDrives::a_drive_that_is_pulled_out_keeps_its_value()
{
    DriveRun run;
    QVERIFY(run.startSteered());
    QVERIFY(run.waitForValue(DriveRun::hdd()));

    QVERIFY(run.tell("sdb unplug"));

    QVERIFY(run.waitForLine(DriveRun::drive("sdb check-power gone")) >= 0);
    QVERIFY(run.waitForLine(DriveRun::drive("sda read-smart ok"), run.here()) >= 0);
    QVERIFY(run.valueOf(DriveRun::hdd()) > 20.0);
    QVERIFY(run.terminate());
}

BRISORA_TEST_MAIN(TestDrives, QCoreApplication)

#include "test_drives.moc"
