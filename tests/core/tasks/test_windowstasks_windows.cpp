#include <windows.h>
#include <objbase.h>
#include <taskschd.h>

#include <QtTest>

#include "core/tasks/taskexception.h"
#include "core/tasks/windowstasks.h"
#include "tests/support/testenvironment.h"

using namespace WindowsTasks;

namespace {

const QString name = QStringLiteral("Brisora test task");

template <typename Operation> QString failureOf(Operation operation)
{
    try {
        operation();
    } catch (const TaskException& error) {
        return QString::fromUtf8(error.what());
    }
    return QStringLiteral("none");
}

} // namespace

class WindowsTasksTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { CoInitializeEx(nullptr, COINIT_MULTITHREADED); }
    void cleanupTestCase() { CoUninitialize(); }

    void aTaskIsRegisteredReadBackAndDeleted()
    {
        TaskService service;
        QVERIFY(!service.taskExists(name));
        auto definition = service.newTaskDefinition();
        definition.setAuthor(QStringLiteral("Orvane Software"));
        static_cast<void>(definition.getTriggers().createTrigger(TASK_TRIGGER_DAILY));
        auto settings = definition.getSettings();
        settings.setDisallowStartIfOnBatteries(false);
        settings.bStopIfOnBatteries(false);
        TaskActionExec action(definition.getActions().addAction(TASK_ACTION_EXEC));
        action.setExe(QString::fromUtf8("C:\\Lüfter\\Brisora.exe"));
        action.setArguments(QStringLiteral("/minimized"));
        QCOMPARE(action.getExe(), QString::fromUtf8("C:\\Lüfter\\Brisora.exe"));
        QCOMPARE(action.getArgs(), QStringLiteral("/minimized"));
        QCOMPARE(definition.getAuthor(), QStringLiteral("Orvane Software"));
        QVERIFY(!settings.isStartDisallowedOnBatteries());
        QVERIFY(!settings.isStoppedOnBatteries());
        settings.setExecutionTimeLimit(QStringLiteral("PT0S"));
        QCOMPARE(settings.getExecutionTimeLimit(), QStringLiteral("PT0S"));

        service.registerTask(name, definition);
        service.registerTask(name, definition); // in place of the first

        TaskService another;
        QVERIFY(another.taskExists(name));
        QCOMPARE(another.getTask(name)->getName(), name);
        QCOMPARE(another.getTasks().size(), std::size_t { 1 });
        another.deleteTask(name);
        QVERIFY(!TaskService().taskExists(name));
    }

    // Wine's scheduler takes none of these, Windows' all.
    void whatTheSchedulerRefusesIsToldByItsCall()
    {
        TaskService service;
        auto definition = service.newTaskDefinition();
        const auto isTakenOrTold = [](const QString& failure, const char* call) {
            return failure == QLatin1String("none")
                || failure.startsWith(QLatin1String(call) + QLatin1String(" failed: "));
        };
        QVERIFY(isTakenOrTold(failureOf([&] { definition.setHighestPriviledges(true); }),
                              "IPrincipal::put_RunLevel"));
        QVERIFY(isTakenOrTold(failureOf([&] { definition.setLogonType(3); }),
                              "IPrincipal::put_LogonType"));
        QVERIFY(isTakenOrTold(failureOf([&] {
                                  static_cast<void>(
                                      definition.getTriggers().createTrigger(TASK_TRIGGER_LOGON));
                              }),
                              "ITriggerCollection::Create"));
    }

    void aDailyTriggerIsNoLogon()
    {
        TaskService service;
        const auto definition = service.newTaskDefinition();
        const auto daily = definition.getTriggers().createTrigger(TASK_TRIGGER_DAILY);
        QVERIFY(failureOf([&daily] {
                    TaskTriggerLogon { daily };
                }).startsWith(QLatin1String("ITrigger::QueryInterface failed: ")));
    }

    void aTaskThatIsNotThereCannotBeDeleted()
    {
        TaskService service;
        QVERIFY(failureOf([&service] {
                    service.deleteTask(name);
                }).startsWith(QLatin1String("ITaskFolder::DeleteTask failed: ")));
    }

    void emptyWrappersSayWhatIsMissing()
    {
        const TaskDefinition definition(nullptr);
        QCOMPARE(failureOf([&definition] { static_cast<void>(definition.getActions()); }),
                 QStringLiteral("TaskDefinition::getActions empty m_pComPtr"));
        TaskTriggers triggers(nullptr);
        QCOMPARE(failureOf([&triggers] { static_cast<void>(triggers.createTrigger(9)); }),
                 QStringLiteral("TaskTriggers::createTrigger empty m_pComPtr"));
        const TaskAction action(nullptr);
        QCOMPARE(failureOf([&action] { TaskActionExec { action }; }),
                 QStringLiteral("TaskActionExec::TaskActionExec empty m_pComPtr"));
    }

    void whatCannotBeRegisteredIsTold()
    {
        TaskService service;
        const auto definition = service.newTaskDefinition();
        QCOMPARE(failureOf([&] { service.registerTask(QString(), definition); }),
                 QStringLiteral("TaskService::registerTask - invalid task name"));
        const TaskDefinition empty(nullptr);
        QCOMPARE(failureOf([&] { service.registerTask(name, empty); }),
                 QStringLiteral("TaskService::registerTask - no task definition"));
    }
};

BRISORA_TEST_MAIN(WindowsTasksTest, QCoreApplication)
#include "test_windowstasks_windows.moc"
