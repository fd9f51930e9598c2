#include <climits>

#include <QCoreApplication>

#include "tests/e2e/simulatedrun.h"
#include "tests/support/testenvironment.h"

class TestFaults : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void a_slow_controller_is_controlled_all_the_same();
    void lost_bytes_are_never_seen_as_values_data();
    void lost_bytes_are_never_seen_as_values();
};

namespace {

// What the event loop may stand still for an order to a controller that answers;
// milliseconds.
constexpr int orderStall = 3000;

const QStringList preset { QStringLiteral("1,3000"), QStringLiteral("2,TC0P,20,90") };

int stallOf(SimulatedRun& run, const char* what)
{
    const QString answer = run.ask(QStringLiteral("stall"));
    qInfo("%s: the event loop stood still for %s ms at most", what, qPrintable(answer));
    return answer.isEmpty() ? INT_MAX : answer.toInt();
}

// Nothing that a person would call wrong: speeds that were never turned,
// temperatures that were never felt.
QStringList absurdities(const QString& values)
{
    QStringList result;
    const QStringList parts = values.split(QLatin1Char(';'));
    for (const QString& part : parts) {
        const QStringList words = part.split(QLatin1Char(' '));
        if (words.value(0) == QLatin1String("fan")) {
            const int current = words.value(1).toInt();
            const bool limitsRight = words.value(2) == QLatin1String("2160")
                ? words.value(3) == QLatin1String("6156")
                : words.value(2) == QLatin1String("2000")
                    && words.value(3) == QLatin1String("5700");
            if ((current != 65535 && (current < 1900 || current > 6200)) || !limitsRight) {
                result.append(part);
            }
        } else if (const double celsius = words.value(1).toDouble();
                   celsius != 0.0 && !(celsius > 15.0 && celsius < 105.0)) {
            result.append(part);
        }
    }
    return result;
}

} // namespace

void TestFaults::a_slow_controller_is_controlled_all_the_same()
{
    SimulatedRun run;
    run.storeActivePreset(preset);
    QVERIFY(run.start({}, SimulatedRun::steeredProgram()));
    QVERIFY(run.waitForLine(trace::wrote("F1Tg")) >= 0);
    QVERIFY(run.control({ QStringLiteral("fault"), QStringLiteral("slow"), QStringLiteral("5") }));
    static_cast<void>(stallOf(run, "working"));

    const std::size_t before = run.here();
    QCOMPARE(run.ask(QStringLiteral("mode 0 1,3500")), QStringLiteral("ok"));
    QVERIFY(run.waitForLine(trace::wroteRpm("F0Tg", 3500), before) >= 0);
    QVERIFY(stallOf(run, "slow, with an order") < orderStall);

    QCOMPARE(absurdities(run.ask(QStringLiteral("values"))), QStringList());
    QVERIFY(run.terminate());
    QCOMPARE(run.leftovers(), QStringList());
}

void TestFaults::lost_bytes_are_never_seen_as_values_data()
{
    QTest::addColumn<QString>("every");
    QTest::addColumn<bool>("writesGetThrough");
    // A read takes six bytes, and a seventh for the lost one: every write then
    // loses the same byte, and it may be one of the value, which is not sent again.
    QTest::newRow("in step with the reads") << QStringLiteral("7") << false;
    QTest::newRow("out of step with them") << QStringLiteral("11") << true;
}

void TestFaults::lost_bytes_are_never_seen_as_values()
{
    QFETCH(QString, every);
    QFETCH(bool, writesGetThrough);
    SimulatedRun run;
    run.storeActivePreset(preset);
    QVERIFY(run.start({}, SimulatedRun::steeredProgram()));
    QVERIFY(run.waitForLine(trace::wrote("F1Tg")) >= 0);
    QVERIFY(run.waitUntilLoaded());

    QVERIFY(run.control({ QStringLiteral("fault"), QStringLiteral("lose"), every }));
    const std::size_t before = run.here();
    QCOMPARE(run.ask(QStringLiteral("mode 0 1,3500")), QStringLiteral("ok"));
    QStringList wrong;
    QVERIFY(run.waitFor(
        [&run, &wrong, before] {
            wrong += absurdities(run.ask(QStringLiteral("values")));
            return trace::count(run.traceLog(), trace::read("F0Ac"), before) >= 3;
        },
        60000));
    QCOMPARE(wrong, QStringList());
    if (writesGetThrough) {
        QVERIFY(run.waitForLine(trace::wroteRpm("F0Tg", 3500), before, 60000) >= 0);
    }

    const std::size_t beforeRecovery = run.here();
    QVERIFY(run.control({ QStringLiteral("fault"), QStringLiteral("none") }));
    // What got lost is written again as soon as it can be.
    QVERIFY(writesGetThrough
            || run.waitForLine(trace::wroteRpm("F0Tg", 3500), beforeRecovery) >= 0);
    QVERIFY(run.terminate());
    QVERIFY(!run.log().contains(QLatin1String("skipping sensor")));
    QCOMPARE(run.leftovers(false), QStringList());
}

BRISORA_TEST_MAIN(TestFaults, QCoreApplication)

#include "test_faults.moc"
