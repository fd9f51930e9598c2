#include <climits>
#include <csignal>

#include <QCoreApplication>
#include <QElapsedTimer>

#include "tests/e2e/simulatedrun.h"
#include "tests/support/testenvironment.h"

class TestDeadController : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void a_dead_controller_does_not_hold_the_window_up_data();
    void a_dead_controller_does_not_hold_the_window_up();
    void the_program_ends_on_a_dead_controller();
};

namespace {

// What the event loop may stand still by itself on a loaded machine.
constexpr int ownStall = 1000; // milliseconds
// An exchange with a dead controller takes two seconds. An order waits for the one
// under way and for those that came before it, then for its own.
constexpr int longestOrder = 15000; // milliseconds
constexpr int deadTime = 4500; // milliseconds

const QStringList preset { QStringLiteral("1,3000"), QStringLiteral("2,TC0P,20,90") };

int stallOf(SimulatedRun& run, const char* what)
{
    const QString answer = run.ask(QStringLiteral("stall"));
    qInfo("%s: the event loop stood still for %s ms at most", what, qPrintable(answer));
    return answer.isEmpty() ? INT_MAX : answer.toInt();
}

} // namespace

void TestDeadController::a_dead_controller_does_not_hold_the_window_up_data()
{
    QTest::addColumn<QString>("fault");
    QTest::newRow("mute") << QStringLiteral("mute");
    QTest::newRow("busy") << QStringLiteral("busy");
}

void TestDeadController::a_dead_controller_does_not_hold_the_window_up()
{
    QFETCH(QString, fault);
    SimulatedRun run;
    run.storeActivePreset(preset);
    QVERIFY(run.start({}, SimulatedRun::steeredProgram()));
    QVERIFY(run.waitForLine(trace::wrote("F1Tg")) >= 0);
    QVERIFY(run.waitUntilLoaded());
    QVERIFY(stallOf(run, "working") < INT_MAX);

    QVERIFY(run.control({ QStringLiteral("fault"), fault }));
    // For a while in which reads fail one after the other.
    QElapsedTimer time;
    time.start();
    QVERIFY(run.waitFor([&run, &time] {
        return run.ask(QStringLiteral("values")).isNull() || time.hasExpired(deadTime);
    }));
    QVERIFY(run.isRunning());
    QVERIFY(stallOf(run, "dead") < ownStall);

    // An order waits for its own exchange and for its turn behind those of the tasks.
    QCOMPARE(run.ask(QStringLiteral("mode 0 1,3500"), longestOrder), QStringLiteral("ok"));
    QVERIFY(stallOf(run, "dead, with an order") <= longestOrder);

    const std::size_t beforeRecovery = run.here();
    QVERIFY(run.control({ QStringLiteral("fault"), QStringLiteral("none") }));
    QVERIFY(run.waitForLine(trace::wroteRpm("F0Tg", 3500), beforeRecovery, 60000) >= 0);
    QVERIFY(run.terminate());
    // A byte that got lost with the fault can leave the exchange out of step.
    QCOMPARE(run.leftovers(false), QStringList());
}

void TestDeadController::the_program_ends_on_a_dead_controller()
{
    SimulatedRun run;
    run.storeActivePreset(preset);
    QVERIFY(run.start());
    QVERIFY(run.waitForLine(trace::wrote("F1Tg")) >= 0);
    QVERIFY(run.control({ QStringLiteral("fault"), QStringLiteral("mute") }));

    QElapsedTimer time;
    time.start();
    run.sendSignal(SIGTERM);

    QVERIFY(run.waitForEnd());
    qInfo("Ended after %lld ms", time.elapsed());
    QCOMPARE(run.exitCode(), 0);
    QCOMPARE(run.storedSetting(QStringLiteral("ActivePreset")).toString(),
             QStringLiteral("Custom:0"));
}

BRISORA_TEST_MAIN(TestDeadController, QCoreApplication)

#include "test_deadcontroller.moc"
