#include <filesystem>
#include <system_error>

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include "tests/e2e/simulatedrun.h"
#include "tests/support/testenvironment.h"

class TestLogs : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void the_log_switch_writes_beside_the_program();
    void a_second_start_with_the_switch_leaves_the_first_ones_log();
    void a_log_that_cannot_be_opened_stops_nothing_data();
    void a_log_that_cannot_be_opened_stops_nothing();
};

namespace {

QString contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

// The program in a folder of the run's own; empty when that fails.
QString copiedProgram(const SimulatedRun& run)
{
    const QString copy = run.path(QStringLiteral("copy/brisora"));
    QDir().mkpath(run.path(QStringLiteral("copy")));
    std::error_code error;
    std::filesystem::create_hard_link(SimulatedRun::program().toStdString(), copy.toStdString(),
                                      error);
    return !error || QFile::copy(SimulatedRun::program(), copy) ? copy : QString();
}

} // namespace

void TestLogs::the_log_switch_writes_beside_the_program()
{
    SimulatedRun run;
    run.storeSetting(QStringLiteral("AppFirstRun"), 0);
    const QString program = copiedProgram(run);
    QVERIFY(!program.isEmpty());

    QVERIFY(run.start({ QStringLiteral("/log") }, program));
    QVERIFY(run.waitForLine(trace::wroteMask(0)) >= 0);
    QVERIFY(run.terminate());

    const QString log = contents(program + QStringLiteral(".log"));
    QVERIFY(log.contains(QLatin1String("MacBookPro11,3\r\n")));
    QVERIFY(log.contains(QLatin1String("stopAndWaitForFinished: Quit OK\r\n")));
    QVERIFY(!QFile::exists(run.path(QStringLiteral("tmp/Brisora.log"))));
    QCOMPARE(run.leftovers(), QStringList());
}

void TestLogs::a_second_start_with_the_switch_leaves_the_first_ones_log()
{
    SimulatedRun run;
    run.storeSetting(QStringLiteral("AppFirstRun"), 0);
    const QString program = copiedProgram(run);
    QVERIFY(run.start());
    QVERIFY(run.waitUntilLoaded());

    QCOMPARE(run.runBeside({ QStringLiteral("/log") }, program), 5);

    QVERIFY(contents(program + QStringLiteral(".log")).contains(QLatin1String("Qt 5.")));
    QVERIFY(run.terminate());
    QVERIFY(run.log().contains(QLatin1String("initialLoadThread")));
    QCOMPARE(run.leftovers(), QStringList());
}

void TestLogs::a_log_that_cannot_be_opened_stops_nothing_data()
{
    QTest::addColumn<bool>("besideProgram");
    QTest::newRow("in the folder of temporary files") << false;
    QTest::newRow("beside the program") << true;
}

void TestLogs::a_log_that_cannot_be_opened_stops_nothing()
{
    QFETCH(bool, besideProgram);
    SimulatedRun run;
    run.storeActivePreset({ QStringLiteral("1,3000"), QStringLiteral("0") });
    const QString program = copiedProgram(run);
    // A folder in its place can't be opened by anybody.
    QVERIFY(QDir().mkpath(besideProgram ? program + QStringLiteral(".log")
                                        : run.path(QStringLiteral("tmp/Brisora.log"))));
    const QStringList arguments
        = besideProgram ? QStringList { QStringLiteral("/log") } : QStringList();

    QVERIFY(run.start(arguments, program));

    QVERIFY(run.waitForLine(trace::wroteRpm("F0Tg", 3000)) >= 0);
    QVERIFY(run.terminate());
    QVERIFY(run.standardError().contains(QLatin1String("Brisora runs without a log: ")));
    QCOMPARE(run.leftovers(), QStringList());
}

BRISORA_TEST_MAIN(TestLogs, QCoreApplication)

#include "test_logs.moc"
