#include <csignal>

#include <QCoreApplication>

#include "tests/e2e/simulatedrun.h"
#include "tests/e2e/virtualdisplay.h"
#include "tests/support/testenvironment.h"

class TestBoxes : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void a_refused_start_tells_why_and_ends_data();
    void a_refused_start_tells_why_and_ends();
    void a_known_virtual_machine_is_refused_silently();
    void skipcheck_goes_on_to_the_controller();
    void init_ends_without_a_box();

private:
    [[nodiscard]] bool waitForBox(SimulatedRun& run, const QString& title);

    VirtualDisplay m_display;
};

void TestBoxes::initTestCase()
{
    // Without a display none of this is tested, which must be seen.
    const QString missing = VirtualDisplay::missingProgram();
    QVERIFY2(missing.isEmpty(), qPrintable(missing + QStringLiteral(" is not installed")));
    QVERIFY(m_display.start());
}

bool TestBoxes::waitForBox(SimulatedRun& run, const QString& title)
{
    return run.waitFor([this, &run, &title] {
        return !m_display.findWindow(title).isEmpty() || !run.isRunning();
    });
}

void TestBoxes::a_refused_start_tells_why_and_ends_data()
{
    QTest::addColumn<QString>("machine");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<bool>("hasPortDriver");
    QTest::addColumn<QString>("title");
    QTest::addColumn<bool>("bySignal");
    QTest::addColumn<int>("code");

    const QStringList none;
    const QString product = QStringLiteral("Brisora 1.5.9");
    QTest::newRow("foreign hardware")
        << QStringLiteral("Generic-PC") << none << true << product << false << 3;
    QTest::newRow("foreign hardware, ended by a signal")
        << QStringLiteral("Generic-PC") << none << true << product << true << 3;
    QTest::newRow("virtual machine")
        << QStringLiteral("VMware7,1") << none << true << QStringLiteral("Brisora") << false << 3;
    QTest::newRow("no way to the controller") << QStringLiteral("MacBookPro11,3") << none << false
                                              << QStringLiteral("MacBookPro11,3") << false << 4;
    QTest::newRow("no way to the controller, ended by a signal")
        << QStringLiteral("MacBookPro11,3") << none << false << QStringLiteral("MacBookPro11,3")
        << true << 4;
    QTest::newRow("foreign hardware, not checked, without a way to a controller")
        << QStringLiteral("Generic-PC") << QStringList { QStringLiteral("/skipcheck") } << false
        << QStringLiteral("Brisora") << false << 4;
}

void TestBoxes::a_refused_start_tells_why_and_ends()
{
    QFETCH(QString, machine);
    QFETCH(QStringList, arguments);
    QFETCH(bool, hasPortDriver);
    QFETCH(QString, title);
    QFETCH(bool, bySignal);
    QFETCH(int, code);
    SimulatedRun run(machine);
    run.setVariable(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    run.setVariable(QStringLiteral("DISPLAY"), m_display.name());
    if (!hasPortDriver) {
        run.unsetVariable(QStringLiteral("LD_LIBRARY_PATH"));
    }
    QVERIFY(run.start(arguments));
    QVERIFY(waitForBox(run, title));
    QVERIFY(run.isRunning());

    if (bySignal) {
        run.sendSignal(SIGTERM);
    } else {
        // A box that has just appeared may not have the keyboard yet.
        QVERIFY(run.waitFor([this, &run] { return !run.isRunning() || !m_display.acceptBox(); }));
    }

    QVERIFY(run.waitForEnd());
    QCOMPARE(run.exitCode(), code);
    QCOMPARE(trace::count(run.traceLog(), trace::usedController()), 0);
    QVERIFY(!run.storedSetting(QStringLiteral("ActivePreset")).isValid());
    QCOMPARE(run.log().contains(QLatin1String("Using HAL")), code == 4);
}

void TestBoxes::a_known_virtual_machine_is_refused_silently()
{
    SimulatedRun run(QStringLiteral("VMware7,1"));
    run.storeSetting(QStringLiteral("NoVmWarning"), 1);

    // Without a display on which a box could be closed.
    QVERIFY(run.start());

    QVERIFY(run.waitForEnd());
    QCOMPARE(run.exitCode(), 3);
    QCOMPARE(trace::count(run.traceLog(), trace::usedController()), 0);
}

void TestBoxes::skipcheck_goes_on_to_the_controller()
{
    SimulatedRun run(QStringLiteral("Generic-PC"));
    run.storeSetting(QStringLiteral("AppFirstRun"), 0);

    QVERIFY(run.start({ QStringLiteral("/skipcheck") }));

    // Nobody answers on the ports, which is for the protocol to find out.
    QVERIFY(run.waitForLine([](const TraceLine& line) {
        return line.kind == TraceLine::Kind::Error && line.text.contains(QLatin1String("0304"));
    }) >= 0);
    QVERIFY(run.terminate());
    QVERIFY(run.log().contains(QLatin1String("Using inpout32 module")));
}

void TestBoxes::init_ends_without_a_box()
{
    SimulatedRun run;

    QVERIFY(run.start({ QStringLiteral("/init") }));

    QVERIFY(run.waitForEnd());
    QCOMPARE(run.exitCode(), 3);
    QCOMPARE(trace::count(run.traceLog(), trace::usedController()), 0);
}

BRISORA_TEST_MAIN(TestBoxes, QCoreApplication)

#include "test_boxes.moc"
