#include <QCoreApplication>

#include "tests/e2e/driverun.h"
#include "tests/support/testenvironment.h"

class TestHangingDrives : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void a_hanging_drive_delays_readings_alone();
    void a_reload_waits_for_a_hanging_drive_by_itself();
    void a_drive_that_never_answers_does_not_hold_up_the_end();
    void closing_the_program_is_quiet_about_it_data();
    void closing_the_program_is_quiet_about_it();
};

void TestHangingDrives::a_hanging_drive_delays_readings_alone()
{
    DriveRun run;
    QVERIFY(run.startSteered());
    QVERIFY(run.waitForValue(DriveRun::hdd()));
    QVERIFY(!run.ask(QStringLiteral("stall")).isNull());

    QVERIFY(run.tell("sdb hang 5000"));
    const int hangs = run.waitForLine(DriveRun::drive("sdb check-power hangs"));
    QVERIFY(hangs >= 0);
    const auto fromHang = static_cast<std::size_t>(hangs);
    QCOMPARE(run.ask(QStringLiteral("mode 0 1,2000")), QStringLiteral("ok"));

    const int controlled = run.waitForLine(trace::wroteRpm("F0Tg", 2000), fromHang);
    QVERIFY(controlled >= 0);
    const int answered = run.waitForLine(DriveRun::drive("sdb check-power awake"), fromHang);
    QVERIFY(answered >= 0);
    QVERIFY(run.tell("sdb heal"));

    const TraceLog& log = run.traceLog();
    // The fan was controlled while nothing was read.
    QVERIFY2(controlled < answered,
             qPrintable(QStringLiteral("%1 %2").arg(controlled).arg(answered)));
    const auto isReading
        = [](const TraceLine& line) { return line.isRead("F0Ac") || line.isRead("TA0p"); };
    const int firstReading = trace::indexOf(log, isReading, fromHang);
    QVERIFY(firstReading < 0 || firstReading > answered);
    const qint64 waited
        = log[static_cast<std::size_t>(answered)].milliseconds - log[fromHang].milliseconds;
    QVERIFY2(waited >= 4990 && waited < 9000, qPrintable(QString::number(waited)));
    const int stall = run.ask(QStringLiteral("stall")).toInt();
    qInfo("The event loop stood still for %d ms at most", stall);
    QVERIFY(stall < 1500);
    // Readings go on after it.
    QVERIFY(run.waitForLine(isReading, static_cast<std::size_t>(answered)) >= 0);
    QVERIFY(run.terminate());
    QCOMPARE(run.leftovers(), QStringList());
}

void TestHangingDrives::a_reload_waits_for_a_hanging_drive_by_itself()
{
    DriveRun run;
    QVERIFY(run.startSteered());
    QVERIFY(run.waitForValue(DriveRun::hdd()));
    QVERIFY(run.tell("sdb hang 5000"));
    QVERIFY(run.waitForLine(DriveRun::drive("sdb check-power hangs")) >= 0);
    const std::size_t asked = run.here();
    QVERIFY(!run.ask(QStringLiteral("stall")).isNull());

    QCOMPARE(run.ask(QStringLiteral("reload")), QStringLiteral("ok"));
    QCOMPARE(run.ask(QStringLiteral("mode 0 1,2000")), QStringLiteral("ok"));

    // Nobody waits for the drive but the task that reads it.
    const int controlled = run.waitForLine(trace::wroteRpm("F0Tg", 2000), asked);
    QVERIFY(controlled >= 0);
    QVERIFY(run.tell("sdb heal"));
    const int answered = run.waitForLine(DriveRun::drive("sdb check-power awake"), asked);
    QVERIFY(answered > controlled);
    QVERIFY(run.log().contains(
        QLatin1String("The tasks can't be paused, the sensors are loaded later")));
    QVERIFY(run.waitForLine(DriveRun::drive("sdb identify ok"), static_cast<std::size_t>(answered))
            >= 0);
    QVERIFY(run.waitForValue(DriveRun::hdd()));
    const int stall = run.ask(QStringLiteral("stall")).toInt();
    qInfo("The event loop stood still for %d ms at most", stall);
    QVERIFY(stall < 1500);
    QVERIFY(run.terminate());
    QCOMPARE(run.leftovers(), QStringList());
}

void TestHangingDrives::a_drive_that_never_answers_does_not_hold_up_the_end()
{
    DriveRun run;
    run.storeActivePreset({ QStringLiteral("1,2000") });
    QVERIFY(run.startSteered());
    QVERIFY(run.waitForLine(trace::wroteRpm("F0Tg", 2000)) >= 0);
    QVERIFY(run.waitForValue(DriveRun::hdd()));

    QVERIFY(run.tell("sdb hang"));
    const int hangs = run.waitForLine(DriveRun::drive("sdb check-power hangs"));
    QVERIFY(hangs >= 0);
    const std::size_t asked = run.here();

    QVERIFY(run.terminate());
    QVERIFY(run.waitForLine(trace::wroteMask(0), asked) >= 0);
    QVERIFY(trace::givesBackLast(run.traceLog()));
    QCOMPARE(run.leftovers(), QStringList());
}

void TestHangingDrives::closing_the_program_is_quiet_about_it_data()
{
    QTest::addColumn<QString>("hang");
    QTest::newRow("answers late") << QStringLiteral("sdb hang 5000");
    QTest::newRow("never answers") << QStringLiteral("sdb hang");
}

void TestHangingDrives::closing_the_program_is_quiet_about_it()
{
    QFETCH(QString, hang);
    DriveRun run;
    QVERIFY(run.startSteered());
    QVERIFY(run.waitForValue(DriveRun::hdd()));
    QVERIFY(run.tell(qPrintable(hang)));
    QVERIFY(run.waitForLine(DriveRun::drive("sdb check-power hangs")) >= 0);

    QCOMPARE(run.ask(QStringLiteral("exit")), QStringLiteral("ok"));

    // A box would keep the program.
    QVERIFY(run.waitForEnd());
    QCOMPARE(run.exitCode(), 0);
    QVERIFY(!run.log().contains(QLatin1String("ERROR")));
    QCOMPARE(run.leftovers(), QStringList());
}

BRISORA_TEST_MAIN(TestHangingDrives, QCoreApplication)

#include "test_hangingdrives.moc"
