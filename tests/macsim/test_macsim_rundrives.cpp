#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include "tests/support/testenvironment.h"

namespace {

const QString simulator = QStringLiteral(MACSIM_PROGRAM);
const QString caller = QStringLiteral(DRIVE_CALLER);
constexpr int patience = 20000; // milliseconds

// What a shell prints inside a machine with the drives sda, sdb and, on USB, sdc. In
// the script, "ask" is the drive caller, "tell" changes the machine, and "until_file"
// and "until_traced" wait for a file and for a text in the trace.
QStringList linesOf(const QString& script)
{
    const QTemporaryDir folder;
    const QString trace = folder.filePath(QStringLiteral("trace"));
    const QString functions
        = QStringLiteral("ask() { %1 \"$@\"; }; tell() { %2 ctl drive \"$@\"; }; "
                         "until_file() { until [ -e \"$1\" ]; do sleep 0.02; done; }; "
                         "until_traced() { until grep -q \"$1\" %3; do sleep 0.02; done; }; ")
              .arg(caller, simulator, trace);
    QProcess process;
    process.start(simulator,
                  { QStringLiteral("run"), QStringLiteral("--machine"), QStringLiteral("iMac14,2"),
                    QStringLiteral("--trace"), trace, QStringLiteral("--"), QStringLiteral("sh"),
                    QStringLiteral("-c"), functions + script });
    if (!process.waitForFinished(patience)) {
        process.kill();
        process.waitForFinished();
        return { QStringLiteral("(no end)") };
    }
    return QString::fromUtf8(process.readAllStandardOutput())
        .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

QStringList list(const char* lines)
{
    return QString::fromLatin1(lines).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

} // namespace

class RunDrivesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theMachinesDrivesAreFound();
    void aDriveAnswers();
    void aDriveInStandbyIsWokenByAReading();
    void whatIsWrongWithADriveIsSeen_data();
    void whatIsWrongWithADriveIsSeen();
    void aDriveThatHangsIsGivenUpInTime();
    void aDriveThatIsLateAnswers();
    void aDriveThatHangsDelaysNoOther();
    void aDriveThatIsPulledOutFailsWhoHoldsIt();
    void otherFilesAreLeftAlone();
    void withoutASimulatorDrivesAreNotOpened();
    void theTraceTellsTheCommands();
};

void RunDrivesTest::theMachinesDrivesAreFound()
{
    QCOMPARE(linesOf(QStringLiteral("ask disks")), list("sda sdb sdc(usb)"));
}

void RunDrivesTest::aDriveAnswers()
{
    const QStringList lines
        = linesOf(QStringLiteral("ask open sda identify sda identify sdb power sdb celsius sdb "
                                 "enable sdb"));
    QCOMPARE(lines.size(), 6);
    QCOMPARE(lines.mid(0, 4),
             list("ok\n"
                  "APPLE SSD SM0128F (S1K4NYAF215377)\n"
                  "APPLE HDD ST1000DM003 (Z1D4LM2P)\n"
                  "awake"));
    QVERIFY2(lines.at(4).toInt() > 25 && lines.at(4).toInt() < 60, qPrintable(lines.at(4)));
    QCOMPARE(lines.at(5), QStringLiteral("ok"));
}

void RunDrivesTest::aDriveInStandbyIsWokenByAReading()
{
    const QStringList lines = linesOf(QStringLiteral(
        "tell sdb standby; ask power sdb identify sdb power sdb celsius sdb power sdb"));
    QCOMPARE(lines.size(), 5);
    QCOMPARE(lines.at(0), QStringLiteral("standby"));
    QCOMPARE(lines.at(2), QStringLiteral("standby"));
    QCOMPARE(lines.at(4), QStringLiteral("awake"));
}

void RunDrivesTest::whatIsWrongWithADriveIsSeen_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QStringList>("lines");
    const auto row = [](const char* script, const char* lines) {
        QTest::newRow(script) << QString::fromLatin1(script) << list(lines);
    };
    row("tell sdb fail; ask celsius sdb identify sdb power sdb", "status 2\nstatus 2\n-");
    row("tell sdb forbid open; ask open sdb open sda", "Permission denied\nok");
    row("tell sdb forbid commands; ask open sdb celsius sdb", "ok\nOperation not permitted");
    row("tell sdb unplug; ask disks open sdb", "sda sdc(usb)\nNo such file or directory");
    row("tell sdb unplug; tell sdb plug; ask disks identify sdb",
        "sda sdb sdc(usb)\nAPPLE HDD ST1000DM003 (Z1D4LM2P)");
    row("tell sdb fail; tell sdb heal; ask power sdb", "awake");
}

void RunDrivesTest::whatIsWrongWithADriveIsSeen()
{
    QFETCH(QString, script);
    QTEST(linesOf(script), "lines");
}

void RunDrivesTest::aDriveThatHangsIsGivenUpInTime()
{
    QElapsedTimer timer;
    timer.start();
    // As the kernel tells it: the host adapter's code for "timed out".
    QCOMPARE(linesOf(QStringLiteral("tell sdb hang; ask patience 300 celsius sdb power sdb")),
             list("host 3\n-"));
    QVERIFY(timer.elapsed() >= 600);
}

void RunDrivesTest::aDriveThatIsLateAnswers()
{
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(linesOf(QStringLiteral("tell sdb hang 700; ask power sdb")), list("awake"));
    QVERIFY(timer.elapsed() >= 700);
}

void RunDrivesTest::aDriveThatHangsDelaysNoOther()
{
    // The second caller has its answer while the first still waits.
    QCOMPARE(linesOf(QStringLiteral("tell sdb hang; (ask patience 2000 celsius sdb) & "
                                    "until_traced hangs; ask power sda; wait")),
             list("awake\nhost 3"));
}

void RunDrivesTest::aDriveThatIsPulledOutFailsWhoHoldsIt()
{
    QCOMPARE(linesOf(QStringLiteral("ask hold sdb power sdb mark $HOME/held wait $HOME/gone "
                                    "power sdb enable sdb & until_file $HOME/held; "
                                    "tell sdb unplug; touch $HOME/gone; wait")),
             list("awake\n-\nNo such device"));
}

void RunDrivesTest::otherFilesAreLeftAlone()
{
    QCOMPARE(linesOf(QStringLiteral("head -c 5 /proc/self/stat > /dev/null && "
                                    "cat $BRISORA_SYSROOT/sys/class/dmi/id/product_name; "
                                    "echo made > $HOME/file; cat $HOME/file; "
                                    "cmp /proc/self/mountinfo "
                                    "$BRISORA_SYSROOT/proc/self/mountinfo && echo same")),
             list("iMac14,2\nmade\nsame"));
}

void RunDrivesTest::withoutASimulatorDrivesAreNotOpened()
{
    QCOMPARE(linesOf(QStringLiteral("MACSIM_SOCKET=/nowhere/macsim.sock; export MACSIM_SOCKET; "
                                    "ask open sda")),
             list("No such device or address"));
}

void RunDrivesTest::theTraceTellsTheCommands()
{
    const QTemporaryDir folder;
    const QString trace = folder.filePath(QStringLiteral("trace"));
    QProcess process;
    process.start(simulator,
                  { QStringLiteral("run"), QStringLiteral("--machine"), QStringLiteral("iMac14,2"),
                    QStringLiteral("--trace"), trace, QStringLiteral("--"), caller,
                    QStringLiteral("open"), QStringLiteral("sdb"), QStringLiteral("identify"),
                    QStringLiteral("sdb"), QStringLiteral("power"), QStringLiteral("sdb"),
                    QStringLiteral("celsius"), QStringLiteral("sdb") });
    QVERIFY(process.waitForFinished(patience));
    QFile file(trace);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QStringList events;
    const QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    for (const QString& line : lines) {
        if (line.contains(QLatin1String(" event drive "))
            && !line.endsWith(QLatin1String("open ok"))) {
            events.append(line.section(QLatin1Char(' '), 2));
        }
    }
    QCOMPARE(events,
             list("drive sdb identify ok\ndrive sdb check-power awake\ndrive sdb read-smart ok"));
}

BRISORA_TEST_MAIN(RunDrivesTest, QCoreApplication)

#include "test_macsim_rundrives.moc"
