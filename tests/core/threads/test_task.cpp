#include <atomic>
#include <stdexcept>
#include <thread>

#include <QCoreApplication>
#include <QFile>

#include "core/threads/event.h"
#include "core/threads/task.h"
#include "tests/support/logcapture.h"
#include "tests/support/testenvironment.h"

using Event = core::threads::event;
using core::threads::Task;

namespace {

constexpr std::uint32_t longTime = 20000;

} // namespace

class TestTask : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aTaskRunsOnAThreadOfItsOwn()
    {
        std::thread::id id;
        Task task;
        QVERIFY(!task.isRunning());
        QVERIFY(task.start("test", [&] { id = std::this_thread::get_id(); }));
        task.join();
        QVERIFY(id != std::thread::id());
        QVERIFY(id != std::this_thread::get_id());
        QVERIFY(!task.isRunning());
    }

    void aTaskRunsUntilItsBodyReturns()
    {
        Event started;
        Event go;
        Task task;
        QVERIFY(task.start("test", [&] {
            started.set();
            go.wait(longTime);
        }));
        QVERIFY(task.isRunning());
        QVERIFY(started.wait(longTime));
        QVERIFY(task.isRunning());
        go.set();
        QTRY_VERIFY(!task.isRunning());
        // join() after the end, twice, does no harm.
        task.join();
        task.join();
    }

    void aRunningTaskIsNotStartedAgain()
    {
        Event go;
        std::atomic<int> runs { 0 };
        Task task;
        const auto body = [&] {
            ++runs;
            go.wait(longTime);
        };
        QVERIFY(task.start("test", body));
        QVERIFY(!task.start("test", body));
        go.set();
        task.join();
        QCOMPARE(runs.load(), 1);
    }

    void anEndedTaskCanBeStartedAgain()
    {
        std::atomic<int> runs { 0 };
        Task task;
        for (int i = 1; i <= 20; ++i) {
            QVERIFY(task.start("test", [&] { ++runs; }));
            QTRY_VERIFY(!task.isRunning());
            QCOMPARE(runs.load(), i);
        }
    }

    void theDestructorWaitsForTheEnd()
    {
        Event started;
        std::atomic<bool> ended { false };
        {
            Task task;
            QVERIFY(task.start("test", [&] {
                started.set();
                std::this_thread::sleep_for(std::chrono::milliseconds(30));
                ended = true;
            }));
            QVERIFY(started.wait(longTime));
        }
        QVERIFY(ended);
    }

    void aTaskThatWasNeverStartedDoesNothing()
    {
        Task task;
        task.join();
        QVERIFY(!task.isRunning());
    }

    void anExceptionEndsTheTaskAndIsLogged()
    {
        const LogCapture log;
        Task task;
        QVERIFY(task.start("loading", [] { throw std::runtime_error("no memory"); }));
        task.join();
        QVERIFY(!task.isRunning());
        QVERIFY(task.start("other", [] { throw 1; }));
        task.join();
        QCOMPARE(
            log.lines(),
            QStringList({ QStringLiteral("error: Task loading ended with an exception: no memory"),
                          QStringLiteral("error: Task other ended with an unknown exception") }));
    }
};

BRISORA_TEST_MAIN(TestTask, QCoreApplication)

#include "test_task.moc"
