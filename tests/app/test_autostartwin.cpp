#include <QtTest>

#include "app/platform/autostartwin.h"
#include "tests/support/fakeautostartcalls.h"
#include "tests/support/logcapture.h"
#include "tests/support/testenvironment.h"

namespace {

const QString name = QStringLiteral("Brisora");
const QString executable = QStringLiteral("C:\\Program Files\\Brisora\\Brisora.exe");

} // namespace

class AutostartWinTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_record = {};
        m_warnings.clear();
    }

    void aTaskStartsTheProgramAtLogon();
    void enablingTwiceReplacesTheTask();
    void disablingRemovesTaskAndRunValue();
    void disablingWithoutATaskIsQuiet();
    void theRunValueGoesWhateverBecomesOfTheTask_data();
    void theRunValueGoesWhateverBecomesOfTheTask();
    void theSchedulersFailureIsTold();
    void aSchedulerThatDoesNotAnswerIsNoAutostart();
    void withoutASchedulerTheRunKeyServes();

private:
    AutostartWin make()
    {
        return AutostartWin(std::make_unique<FakeAutostartCalls>(m_record), executable,
                            [this](const QString& title, const QString& text) {
                                m_warnings.append(title + QLatin1Char('|') + text);
                            });
    }

    FakeAutostartCalls::Record m_record;
    QStringList m_warnings;
};

void AutostartWinTest::aTaskStartsTheProgramAtLogon()
{
    AutostartWin autostart = make();
    QVERIFY(!autostart.isEnabled());

    autostart.setEnabled(true);

    QVERIFY(autostart.isEnabled());
    QCOMPARE(m_record.tasks.keys(), QStringList { name });
    const LogonTask task = m_record.tasks[name];
    QCOMPARE(task.author, QStringLiteral("Orvane Software"));
    QVERIFY(task.highestRunLevel);
    QCOMPARE(task.logonType, 3);
    QCOMPARE(task.triggerType, 9);
    QVERIFY(!task.disallowStartIfOnBatteries);
    QVERIFY(!task.stopIfGoingOnBatteries);
    // No limit: else the scheduler would end the program on its third day.
    QCOMPARE(task.timeLimit, QStringLiteral("PT0S"));
    QCOMPARE(task.actionType, 0);
    QCOMPARE(task.program, executable);
    QCOMPARE(task.arguments, QStringLiteral("/minimized"));
    QVERIFY(m_record.runValues.isEmpty());
    QCOMPARE(m_warnings, QStringList());
}

void AutostartWinTest::enablingTwiceReplacesTheTask()
{
    AutostartWin autostart = make();
    autostart.setEnabled(true);
    autostart.setEnabled(true);
    QCOMPARE(m_record.tasks.size(), 1);
    QCOMPARE(m_record.calls.count(QStringLiteral("registerTask")), 2);
}

void AutostartWinTest::disablingRemovesTaskAndRunValue()
{
    AutostartWin autostart = make();
    autostart.setEnabled(true);
    m_record.runValues.insert(name, executable);

    autostart.setEnabled(false);

    QVERIFY(!autostart.isEnabled());
    QVERIFY(m_record.tasks.isEmpty());
    QVERIFY(m_record.runValues.isEmpty());
}

void AutostartWinTest::disablingWithoutATaskIsQuiet()
{
    AutostartWin autostart = make();
    m_record.runValues.insert(name, executable);
    const LogCapture log;

    autostart.setEnabled(false);

    QVERIFY(m_record.runValues.isEmpty());
    QCOMPARE(m_record.calls, QStringList { QStringLiteral("taskExists") });
    QCOMPARE(m_warnings, QStringList());
    QCOMPARE(log.lines(), QStringList());
}

void AutostartWinTest::theRunValueGoesWhateverBecomesOfTheTask_data()
{
    QTest::addColumn<QString>("failing");
    QTest::addColumn<QString>("reason");
    QTest::newRow("the task can't be deleted")
        << QStringLiteral("deleteTask")
        << QStringLiteral("ITaskFolder::DeleteTask failed: Access is denied.");
    QTest::newRow("the task can't be looked up")
        << QStringLiteral("taskExists") << QStringLiteral("ITaskService::Connect failed: none");
}

void AutostartWinTest::theRunValueGoesWhateverBecomesOfTheTask()
{
    QFETCH(QString, failing);
    QFETCH(QString, reason);
    AutostartWin autostart = make();
    autostart.setEnabled(true);
    m_record.runValues.insert(name, executable);
    m_record.failure = reason;
    m_record.failingCall = failing;

    autostart.setEnabled(false);

    QCOMPARE(m_warnings, QStringList { QStringLiteral("Exception|") + reason });
    QVERIFY(m_record.runValues.isEmpty());
    // The task still starts the program, and is shown.
    m_record.failure.clear();
    QVERIFY(autostart.isEnabled());
}

void AutostartWinTest::theSchedulersFailureIsTold()
{
    AutostartWin autostart = make();
    m_record.failure = QStringLiteral("RegisterTaskDefinition failed: Access is denied.");

    autostart.setEnabled(true);

    QCOMPARE(m_warnings,
             QStringList {
                 QStringLiteral("Exception|RegisterTaskDefinition failed: Access is denied.") });
    m_record.failure.clear();
    QVERIFY(!autostart.isEnabled());
}

void AutostartWinTest::aSchedulerThatDoesNotAnswerIsNoAutostart()
{
    AutostartWin autostart = make();
    autostart.setEnabled(true);
    m_record.failure = QStringLiteral("ITaskService::Connect failed: none");
    const LogCapture log;

    QVERIFY(!autostart.isEnabled());

    QCOMPARE(m_warnings, QStringList());
    QCOMPARE(log.lines().size(), 1);
}

void AutostartWinTest::withoutASchedulerTheRunKeyServes()
{
    m_record.hasTaskScheduler = false;
    AutostartWin autostart = make();
    QVERIFY(!autostart.isEnabled());

    autostart.setEnabled(true);

    QVERIFY(autostart.isEnabled());
    QCOMPARE(m_record.runValues[name],
             QStringLiteral("\"C:\\Program Files\\Brisora\\Brisora.exe\" /minimized"));
    autostart.setEnabled(false);
    QVERIFY(!autostart.isEnabled());
    QCOMPARE(m_record.calls, QStringList());
}

BRISORA_TEST_MAIN(AutostartWinTest, QCoreApplication)
#include "test_autostartwin.moc"
