#include <QtTest>

#include "app/platform/processrun.h"
#include "tests/support/fakewindowscalls.h"
#include "tests/support/logcapture.h"
#include "tests/support/testenvironment.h"

namespace {

constexpr std::uint32_t untouched = 1234;
const QString program = QStringLiteral("C:\\Program Files\\Brisora\\AppleSMC.exe");

} // namespace

class ProcessRunTest : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<FakeWindowsCalls::Record> m_windows;

    int run(std::uint32_t timeout, std::uint32_t* exitCode)
    {
        FakeWindowsCalls calls(*m_windows);
        return static_cast<int>(
            runProcess(calls, program, QStringLiteral("/alt /install"), 16, timeout, exitCode));
    }

private Q_SLOTS:
    void init() { m_windows = std::make_unique<FakeWindowsCalls::Record>(); }

    void aCommandLineHasThePathInQuotes_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("arguments");
        QTest::addColumn<QString>("commandLine");
        QTest::newRow("plain") << QStringLiteral("C:\\a.exe") << QStringLiteral("/b")
                               << QStringLiteral("\"C:\\a.exe\" /b");
        QTest::newRow("blanks") << QStringLiteral("C:\\a b\\c d.exe") << QStringLiteral("/e /f")
                                << QStringLiteral("\"C:\\a b\\c d.exe\" /e /f");
        QTest::newRow("no arguments")
            << QStringLiteral("C:\\a.exe") << QString() << QStringLiteral("\"C:\\a.exe\" ");
        QTest::newRow("other letters") << QStringLiteral("C:\\Lüfter ж.exe") << QStringLiteral("/ß")
                                       << QStringLiteral("\"C:\\Lüfter ж.exe\" /ß");
        QTest::newRow("a placeholder in the name")
            << QStringLiteral("C:\\%1.exe") << QStringLiteral("%2")
            << QStringLiteral("\"C:\\%1.exe\" %2");
    }
    void aCommandLineHasThePathInQuotes()
    {
        QFETCH(QString, path);
        QFETCH(QString, arguments);
        QTEST(commandLineOf(path, arguments), "commandLine");
    }

    void aCommandLineIsCut_data()
    {
        QTest::addColumn<int>("length");
        QTest::addColumn<int>("expected");
        QTest::newRow("short") << 100 << 100;
        QTest::newRow("one less") << 2046 << 2046;
        QTest::newRow("just fits") << 2047 << 2047;
        QTest::newRow("one more") << 2048 << 2047;
        QTest::newRow("long") << 5000 << 2047;
    }
    void aCommandLineIsCut()
    {
        QFETCH(int, length);
        QFETCH(int, expected);
        const QString start = QLatin1Char('"') + program + QLatin1String("\" ");
        const QString arguments(length - start.size(), QLatin1Char('x'));
        QCOMPARE(commandLineOf(program, arguments), (start + arguments).left(expected));
    }

    void theProgramIsStartedByItsPath()
    {
        QCOMPARE(run(WindowsCalls::noTimeout, nullptr), 0);
        QCOMPARE(m_windows->starts.size(), 1);
        QCOMPARE(m_windows->starts[0].program, program);
        QCOMPARE(m_windows->starts[0].commandLine,
                 QStringLiteral("\"C:\\Program Files\\Brisora\\AppleSMC.exe\" /alt /install"));
        QCOMPARE(m_windows->starts[0].creationFlags, 16U);
    }

    void theWaitFollowsTheTimeout_data()
    {
        QTest::addColumn<unsigned>("timeout");
        QTest::addColumn<bool>("asked"); // for the exit code
        QTest::addColumn<int>("waitResult");
        QTest::addColumn<int>("result");
        QTest::addColumn<QStringList>("calls");
        const QString create = QStringLiteral("create");
        const QString cursor = QStringLiteral("end busy cursor");
        const QString code = QStringLiteral("exit code");
        const QString close = QStringLiteral("close");
        const QStringList unawaited { create, close };
        const QStringList awaited { create, cursor, QStringLiteral("wait 500"), close };
        const QStringList whole { create, cursor, QStringLiteral("wait 500"), code, close };
        const QStringList forEver { create, cursor, QStringLiteral("wait 4294967295"), code,
                                    close };
        QTest::newRow("none") << 0U << false << 0 << 1 << unawaited;
        QTest::newRow("none, exit code asked") << 0U << true << 0 << 1 << unawaited;
        QTest::newRow("none, failing") << 0U << true << -1 << 1 << unawaited;
        QTest::newRow("ended") << 500U << false << 0 << 0 << awaited;
        QTest::newRow("ended, exit code asked") << 500U << true << 0 << 0 << whole;
        QTest::newRow("timed out") << 500U << false << 258 << 258 << awaited;
        QTest::newRow("timed out, exit code asked") << 500U << true << 258 << 258 << whole;
        QTest::newRow("failed") << 500U << false << -1 << -1 << awaited;
        QTest::newRow("failed, exit code asked") << 500U << true << -1 << -1 << whole;
        QTest::newRow("for ever") << WindowsCalls::noTimeout << true << 0 << 0 << forEver;
    }
    void theWaitFollowsTheTimeout()
    {
        QFETCH(unsigned, timeout);
        QFETCH(bool, asked);
        QFETCH(int, waitResult);
        m_windows->waitResult = waitResult;
        m_windows->exitCode = 259;
        const LogCapture log;
        std::uint32_t exitCode = untouched;

        QTEST(run(timeout, asked ? &exitCode : nullptr), "result");

        QTEST(m_windows->calls, "calls");
        QCOMPARE(exitCode, asked && timeout != 0 ? 259U : untouched);
        QCOMPARE(log.lines(), QStringList());
    }

    void aProgramThatCannotBeStartedGivesZero_data()
    {
        QTest::addColumn<unsigned>("timeout");
        QTest::newRow("not awaited") << 0U;
        QTest::newRow("awaited") << 500U;
        QTest::newRow("awaited for ever") << WindowsCalls::noTimeout;
    }
    void aProgramThatCannotBeStartedGivesZero()
    {
        QFETCH(unsigned, timeout);
        m_windows->canCreate = false;
        m_windows->error = 2;
        m_windows->waitResult = -1;
        const LogCapture log;
        std::uint32_t exitCode = untouched;

        QCOMPARE(run(timeout, &exitCode), 0);

        QCOMPARE(m_windows->calls, QStringList { QStringLiteral("create") });
        QCOMPARE(exitCode, untouched);
        QCOMPARE(log.lines(),
                 QStringList { QStringLiteral("error: %1 can't be started: %2")
                                   .arg(program, qt_error_string(2)) });
    }
};

BRISORA_TEST_MAIN(ProcessRunTest, QCoreApplication)
#include "test_processrun.moc"
