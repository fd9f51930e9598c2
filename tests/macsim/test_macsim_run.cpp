#include <csignal>

#include <sys/types.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>

#include "macsim/tcpaddress.h"
#include "tests/support/testenvironment.h"

namespace {

const QString simulator = QStringLiteral(MACSIM_PROGRAM);
const QString caller = QStringLiteral(PORT_CALLER);
constexpr int patience = 20000; // milliseconds

struct Result {
    int code = -1;
    QString output;
    QString errors;
};

Result execute(const QStringList& arguments)
{
    QProcess process;
    process.start(simulator, arguments);
    if (!process.waitForFinished(patience)) {
        process.kill();
        process.waitForFinished();
        return {};
    }
    return { process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
             QString::fromUtf8(process.readAllStandardOutput()),
             QString::fromUtf8(process.readAllStandardError()) };
}

// Runs a command in a MacBookPro11,3.
Result runInside(const QStringList& command, const QStringList& options = {})
{
    return execute(QStringList { QStringLiteral("run"), QStringLiteral("--machine"),
                                 QStringLiteral("MacBookPro11,3") }
                   + options + QStringList { QStringLiteral("--") } + command);
}

Result runShell(const QString& script, const QStringList& options = {})
{
    return runInside({ QStringLiteral("sh"), QStringLiteral("-c"), script }, options);
}

QStringList contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly)
        ? QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts)
        : QStringList();
}

// The addresses and ports ("0100007F:9C40") at which a process listens for TCP, of
// what printListeners prints about it.
const QString printListeners
    = QStringLiteral("readlink /proc/$PPID/fd/*; cat /proc/net/tcp /proc/net/tcp6; ");

QStringList listeners(const QString& output)
{
    static const QRegularExpression entry(
        QStringLiteral("^ *\\d+: (\\S+) \\S+ 0A (?:\\S+ +){5}(\\d+) "),
        QRegularExpression::MultilineOption);
    QStringList result;
    for (auto match = entry.globalMatch(output); match.hasNext();) {
        const QRegularExpressionMatch socket = match.next();
        if (output.contains(QStringLiteral("socket:[%1]").arg(socket.captured(2)))) {
            result.append(socket.captured(1));
        }
    }
    return result;
}

QStringList leftovers()
{
    return QDir(QDir::tempPath()).entryList({ QStringLiteral("macsim-*") }, QDir::Dirs);
}

} // namespace

class RunTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { QCOMPARE(leftovers(), QStringList()); }
    void cleanup() { QCOMPARE(leftovers(), QStringList()); }

    void theExitCodeIsTheCommands_data()
    {
        QTest::addColumn<QString>("script");
        QTest::addColumn<int>("code");
        QTest::newRow("success") << QStringLiteral("exit 0") << 0;
        QTest::newRow("failure") << QStringLiteral("exit 37") << 37;
        QTest::newRow("terminated") << QStringLiteral("kill -TERM $$") << 128 + SIGTERM;
        QTest::newRow("killed") << QStringLiteral("kill -KILL $$") << 128 + SIGKILL;
    }
    void theExitCodeIsTheCommands()
    {
        QFETCH(QString, script);
        QFETCH(int, code);
        QCOMPARE(runShell(script).code, code);
    }

    void aCommandThatDoesntExistIsAnError()
    {
        const Result result = runInside({ QStringLiteral("/nowhere/at/all") });
        QCOMPARE(result.code, 127);
        QVERIFY(result.errors.contains(QStringLiteral("/nowhere/at/all")));
    }

    void wrongUseIsExplained_data()
    {
        QTest::addColumn<QString>("arguments");
        QTest::addColumn<int>("code");
        const auto row = [](const char* arguments, int code) {
            QTest::newRow(arguments) << QString::fromLatin1(arguments) << code;
        };
        row("", 2);
        row("dance", 2);
        row("run", 2);
        row("run --machine MacBookPro11,3", 2);
        row("run --machine MacBookPro11,3 true", 2);
        row("run -- true", 2);
        row("run --machine MacBookPro11,3 --speed 0 -- true", 2);
        row("run --machine MacBookPro11,3 --speed 1 --seed x -- true", 2);
        row("run --machine MacBookPro11,3 --load busy -- true", 2);
        row("run --machine MacBookPro11,3 --nonsense -- true", 2);
        row("run --machine PowerMac1,1 -- true", 125);
        row("run --machine MacBookPro11,3 --trace /proc/nowhere -- true", 125);
        row("run --machine MacBookPro11,3 --folder /proc/nowhere -- true", 125);
        row("run --machine MacBookPro11,3 --smcd /nowhere/at/all -- true", 125);
        row("run --machine MacBookPro11,3 --smcd /bin/true -- true", 125);
        row("ctl", 2);
        row("ctl --socket /nowhere/macsim.sock state", 1);
    }
    void wrongUseIsExplained()
    {
        QFETCH(QString, arguments);
        QFETCH(int, code);
        const Result result = execute(arguments.split(QLatin1Char(' '), Qt::SkipEmptyParts));
        QCOMPARE(result.code, code);
        QVERIFY(result.errors.startsWith(QStringLiteral("macsim: ")));
        QVERIFY(result.output.isEmpty());
    }

    void helpAndMachinesArePrinted()
    {
        QVERIFY(
            execute({ QStringLiteral("--help") }).output.contains(QStringLiteral("macsim ctl")));
        const Result machines = execute({ QStringLiteral("machines") });
        QCOMPARE(machines.code, 0);
        QVERIFY(machines.output.contains(QStringLiteral("MacBookPro11,3\n")));
    }

    void theCommandHasFoldersOfItsOwn()
    {
        const Result result = runShell(QStringLiteral(
            "for v in BRISORA_SYSROOT XDG_CONFIG_HOME XDG_DATA_HOME XDG_CACHE_HOME XDG_RUNTIME_DIR "
            "TMPDIR HOME; do eval d=\\$$v; echo $v $d $(stat -c %a $d); done; "
            "echo MACSIM_SOCKET $MACSIM_SOCKET $(stat -c %F $MACSIM_SOCKET); "
            "echo LD_LIBRARY_PATH $LD_LIBRARY_PATH; stat -c %a ${BRISORA_SYSROOT%/*}"));
        QCOMPARE(result.code, 0);
        const QStringList lines = result.output.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        QCOMPARE(lines.size(), 10);
        const QString root = lines.first().section(QLatin1Char(' '), 1, 1).chopped(8);
        const auto expected = [&root](const char* variable, const char* folder) {
            return QStringLiteral("%1 %2/%3")
                .arg(QLatin1String(variable), root, QLatin1String(folder));
        };
        QVERIFY(root.startsWith(QDir::tempPath() + QStringLiteral("/macsim-")));
        QCOMPARE(lines.at(0), expected("BRISORA_SYSROOT", "sysroot 700"));
        QCOMPARE(lines.at(1), expected("XDG_CONFIG_HOME", "config 700"));
        QCOMPARE(lines.at(2), expected("XDG_DATA_HOME", "data 700"));
        QCOMPARE(lines.at(3), expected("XDG_CACHE_HOME", "cache 700"));
        QCOMPARE(lines.at(4), expected("XDG_RUNTIME_DIR", "run 700"));
        QCOMPARE(lines.at(5), expected("TMPDIR", "tmp 700"));
        QCOMPARE(lines.at(6), expected("HOME", "home 700"));
        QCOMPARE(lines.at(7), expected("MACSIM_SOCKET", "macsim.sock socket"));
        const QString portFace = QFileInfo(QStringLiteral(PORT_DRIVER)).absolutePath();
        QVERIFY(lines.at(8).startsWith(QStringLiteral("LD_LIBRARY_PATH ") + portFace));
        QCOMPARE(lines.at(9), QStringLiteral("700"));
    }

    void noPortIsOpenedUnasked()
    {
        const Result result
            = runShell(printListeners + QStringLiteral("echo tcp ${MACSIM_TCP-unset}"));
        QCOMPARE(result.code, 0);
        QCOMPARE(listeners(result.output), QStringList());
        QVERIFY(result.output.endsWith(QStringLiteral("tcp unset\n")));
    }

    void aCommandUnderWineFindsAPortAndTheLibrary()
    {
        const QTemporaryDir folder;
        QFile library(folder.filePath(QStringLiteral("inpout32.dll")));
        QVERIFY(library.open(QIODevice::WriteOnly));

        const Result result = runShell(
            printListeners + QStringLiteral("echo; echo \"$MACSIM_TCP\"; printf %s \"$WINEPATH\""),
            { QStringLiteral("--wine"), folder.path() });

        QCOMPARE(result.code, 0);
        const QStringList lines = result.output.split(QLatin1Char('\n'));
        const auto address = macsim::TcpAddress::parse(lines.at(lines.size() - 2).toStdString());
        QVERIFY2(address, qPrintable(lines.at(lines.size() - 2)));
        QCOMPARE(listeners(result.output),
                 QStringList(
                     QStringLiteral("0100007F:%1")
                         .arg(QString::number(address->port, 16).toUpper(), 4, QLatin1Char('0'))));
        QCOMPARE(lines.last(),
                 QStringLiteral("Z:") + folder.path().replace(QLatin1Char('/'), QLatin1Char('\\')));
    }

    void aCommandUnderWineNeedsTheLibrary()
    {
        const QTemporaryDir folder;
        const Result result
            = runShell(QStringLiteral("true"), { QStringLiteral("--wine"), folder.path() });
        QCOMPARE(result.code, 125);
        QVERIFY(result.errors.contains(folder.filePath(QStringLiteral("inpout32.dll"))));
    }

    void aGivenFolderIsKept()
    {
        const QTemporaryDir given(QDir::tempPath() + QStringLiteral("/given-XXXXXX"));
        QVERIFY(QDir(given.path()).mkpath(QStringLiteral("config")));
        QFile settings(given.filePath(QStringLiteral("config/settings")));
        QVERIFY(settings.open(QIODevice::WriteOnly));
        settings.write("before\n");
        settings.close();
        const Result result = runShell(
            QStringLiteral("cat $XDG_CONFIG_HOME/settings; echo after > $XDG_CONFIG_HOME/settings"),
            { QStringLiteral("--folder"), given.path() });
        QCOMPARE(result.output, QStringLiteral("before\n"));
        QCOMPARE(contents(settings.fileName()), QStringList(QStringLiteral("after")));
        QVERIFY(QFileInfo::exists(given.filePath(QStringLiteral("sysroot/proc/cpuinfo"))));
        QVERIFY(!QFileInfo::exists(given.filePath(QStringLiteral("macsim.sock"))));
    }

    void theCommandHasTheStandardStreams()
    {
        QProcess process;
        process.start(simulator,
                      { QStringLiteral("run"), QStringLiteral("--machine"),
                        QStringLiteral("MacBookPro11,3"), QStringLiteral("--"),
                        QStringLiteral("cat") });
        process.write("through");
        process.closeWriteChannel();
        QVERIFY(process.waitForFinished(patience));
        QCOMPARE(process.readAllStandardOutput(), QByteArray("through"));
    }

    void theControllerAnswersThroughThePortDriver()
    {
        const QTemporaryDir folder;
        const QString trace = folder.filePath(QStringLiteral("trace"));
        const QString report = folder.filePath(QStringLiteral("report"));
        const Result result = runInside(
            { caller, QStringLiteral("read"), QStringLiteral("FNum"), QStringLiteral("1"),
              QStringLiteral("write"), QStringLiteral("FS! "), QStringLiteral("0001"),
              QStringLiteral("read"), QStringLiteral("FS! "), QStringLiteral("2") },
            { QStringLiteral("--trace"), trace, QStringLiteral("--report"), report });
        QCOMPARE(result.code, 0);
        QCOMPARE(result.output, QStringLiteral("02\n0001\n"));
        const QStringList lines = contents(trace);
        QCOMPARE(lines.size(), 5);
        const QStringList expected { QStringLiteral("event start MacBookPro11,3 load idle speed 1"),
                                     QStringLiteral("read \"FNum\" 02 ok"),
                                     QStringLiteral("write \"FS! \" 0001 ok"),
                                     QStringLiteral("read \"FS! \" 0001 ok"),
                                     QStringLiteral("event end 0") };
        for (int index = 0; index < lines.size(); ++index) {
            QCOMPARE(lines.at(index).section(QLatin1Char(' '), 1), expected.at(index));
        }
        QFile file(report);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QJsonObject state = QJsonDocument::fromJson(file.readAll()).object();
        QCOMPARE(state[QLatin1String("exitCode")].toInt(-1), 0);
        QCOMPARE(state[QLatin1String("controlBits")].toInt(), 1);
        QCOMPARE(
            state[QLatin1String("protocolErrors")].toObject()[QLatin1String("total")].toInt(-1), 0);
        QCOMPARE(state[QLatin1String("operations")].toObject()[QLatin1String("read")].toInt(), 2);
    }

    void aRefusedReadFailsTheCaller()
    {
        QCOMPARE(runInside({ caller, QStringLiteral("read"), QStringLiteral("ZZZZ"),
                             QStringLiteral("1") })
                     .code,
                 1);
    }

    void aForkedChildHasAConnectionOfItsOwn()
    {
        const Result result
            = runInside({ caller, QStringLiteral("status"), QStringLiteral("fork-status"),
                          QStringLiteral("read"), QStringLiteral("FNum"), QStringLiteral("1") });
        QCOMPARE(result.code, 0);
        QCOMPARE(result.output, QStringLiteral("open 1 status 0\nopen 1 status 0\n02\n"));
    }

    void controlRequestsChangeARunningMachine()
    {
        const Result result = runShell(
            QStringLiteral("M=%1; $M ctl set F0Mn 2710 && $M ctl get F0Mn && $M ctl state && "
                           "! $M ctl get ZZZZ 2>/dev/null && $M ctl power battery && "
                           "cat $BRISORA_SYSROOT/sys/class/power_supply/ADP1/online && "
                           "$M ctl --socket $MACSIM_SOCKET mark done")
                .arg(simulator));
        QCOMPARE(result.code, 0);
        QVERIFY(result.output.startsWith(QStringLiteral("2710\n{")));
        QVERIFY(result.output.endsWith(QStringLiteral("}\n0\n")));
    }

    void withoutASimulatorPortsReadZero()
    {
        for (const QByteArray& socket :
             { QByteArray(), QByteArray("/nowhere/macsim.sock"), QByteArray(200, 'x') }) {
            QProcess process;
            QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
            environment.insert(QStringLiteral("LD_LIBRARY_PATH"),
                               QFileInfo(QStringLiteral(PORT_DRIVER)).absolutePath());
            environment.insert(QStringLiteral("MACSIM_SOCKET"), QString::fromLatin1(socket));
            process.setProcessEnvironment(environment);
            process.start(caller, { QStringLiteral("status") });
            QVERIFY(process.waitForFinished(patience));
            QCOMPARE(process.readAllStandardOutput(), QByteArray("open 0 status 0\n"));
        }
    }

    void aProgramSurvivesTheEndOfTheSimulator()
    {
        // The caller runs on in the background while its simulator ends.
        const QTemporaryDir folder;
        const QString log = folder.filePath(QStringLiteral("log"));
        const Result result
            = runShell(QStringLiteral("(%1 status repeat-read FNum 1 20 > %2; echo ended $? >> %2; "
                                      "%1 status >> %2) & "
                                      "while ! grep -q read %2 2>/dev/null; do sleep 0.05; done")
                           .arg(caller, log));
        QCOMPARE(result.code, 0);
        QTRY_VERIFY_WITH_TIMEOUT(contents(log).contains(QStringLiteral("ended 1")), patience);
        QTRY_COMPARE_WITH_TIMEOUT(contents(log).last(), QStringLiteral("open 0 status 0"),
                                  patience);
    }

    void lingeringWaitsForTheLastPortUser()
    {
        const QTemporaryDir folder;
        const QString log = folder.filePath(QStringLiteral("log"));
        const Result result = runShell(
            QStringLiteral("(%1 repeat-read FNum 1 1 > %2; echo ended $? >> %2) & "
                           "while ! grep -q read %2 2>/dev/null; do sleep 0.05; done; exit 3")
                .arg(caller, log),
            { QStringLiteral("--linger"), QStringLiteral("15") });
        QCOMPARE(result.code, 3);
        QTRY_COMPARE_WITH_TIMEOUT(contents(log).last(), QStringLiteral("ended 0"), patience);
    }

    void anInterruptIsForwardedOnce_data()
    {
        QTest::addColumn<int>("number");
        QTest::newRow("interrupt") << SIGINT;
        QTest::newRow("terminate") << SIGTERM;
    }
    void anInterruptIsForwardedOnce()
    {
        QFETCH(int, number);
        const QTemporaryDir folder;
        const QString trace = folder.filePath(QStringLiteral("trace"));
        QProcess process;
        process.start(simulator,
                      { QStringLiteral("run"), QStringLiteral("--machine"),
                        QStringLiteral("MacBookPro11,3"), QStringLiteral("--trace"), trace,
                        QStringLiteral("--"), QStringLiteral("sh"), QStringLiteral("-c"),
                        QStringLiteral("n=0; trap 'n=$((n+1))' INT TERM; echo ready; "
                                       "while [ $n = 0 ]; do sleep 0.05; done; "
                                       "sleep 0.3; exit $((40+n))") });
        QVERIFY(waitForText(process, "ready"));
        ::kill(static_cast<pid_t>(process.processId()), number);
        QTest::qWait(50);
        ::kill(static_cast<pid_t>(process.processId()), number);
        QVERIFY(process.waitForFinished(patience));
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 41);
        QVERIFY(contents(trace).last().endsWith(QStringLiteral("event end 41")));
    }

    void aCommandEndsWithItsSimulator()
    {
        QProcess process;
        QTemporaryDir folder(QDir::tempPath() + QStringLiteral("/given-XXXXXX"));
        const QString log = folder.filePath(QStringLiteral("log"));
        process.start(simulator,
                      { QStringLiteral("run"), QStringLiteral("--machine"),
                        QStringLiteral("MacBookPro11,3"), QStringLiteral("--folder"), folder.path(),
                        QStringLiteral("--"), QStringLiteral("sh"), QStringLiteral("-c"),
                        QStringLiteral("trap 'echo asked > %1; exit 0' TERM; echo ready; "
                                       "while true; do sleep 0.05; done")
                            .arg(log) });
        QVERIFY(waitForText(process, "ready"));
        process.kill();
        QVERIFY(process.waitForFinished(patience));
        QTRY_COMPARE_WITH_TIMEOUT(contents(log), QStringList(QStringLiteral("asked")), patience);
    }

    void theStatusIsShownOnRequest()
    {
        const Result shown = runShell(QStringLiteral("sleep 1.3"), { QStringLiteral("--status") });
        QVERIFY2(shown.errors.contains(QRegularExpression(QStringLiteral(
                     "^load 3% \\| cpu 4\\d\\.\\d .*\\| fan0 2\\d{3}>2160 auto .*\\| bits 0000 "
                     "\\| errors 0\n$"))),
                 qPrintable(shown.errors));
        QCOMPARE(runShell(QStringLiteral("sleep 1.3"), { QStringLiteral("--quiet") }).errors,
                 QString());
        QCOMPARE(runShell(QStringLiteral("sleep 1.3")).errors, QString());
    }

private:
    static bool waitForText(QProcess& process, const QByteArray& text)
    {
        QByteArray seen;
        while (!seen.contains(text) && process.waitForReadyRead(patience)) {
            seen += process.readAllStandardOutput();
        }
        return seen.contains(text);
    }
};

BRISORA_TEST_MAIN(RunTest, QCoreApplication)

#include "test_macsim_run.moc"
