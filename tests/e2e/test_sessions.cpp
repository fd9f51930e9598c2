#include <QCoreApplication>

#include "tests/e2e/simulatedrun.h"
#include "tests/e2e/virtualdisplay.h"
#include "tests/e2e/xsessionmanager.h"
#include "tests/support/privatebus.h"
#include "tests/support/systemmocks.h"
#include "tests/support/testenvironment.h"

// The program at the end of the user's session, as desktops tell it.
class TestSessions : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void the_end_of_the_session_ends_the_program_data();
    void the_end_of_the_session_ends_the_program();
    void a_shutdown_without_a_session_manager_ends_the_program();
    void an_x_session_ends_the_program();
    void an_x_session_that_is_saved_or_goes_on_ends_nothing();

private:
    [[nodiscard]] bool startOnDisplay(SimulatedRun& run);

    VirtualDisplay m_display;
    std::unique_ptr<XSessionManager> m_xSession;
    std::unique_ptr<PrivateBus> m_systemBus;
    std::unique_ptr<PrivateBus> m_sessionBus;
    std::unique_ptr<LoginManagerMock> m_loginManager;
    std::unique_ptr<SessionManagerMock> m_sessionManager;
};

namespace {

const QString sensitiveMachine = QStringLiteral("iMac14,2");
const QString otherMachine = QStringLiteral("MacBookPro11,3");

bool startForced(SimulatedRun& run, const QString& machine)
{
    QStringList modes { QStringLiteral("1,2500") };
    if (machine == otherMachine) {
        modes.append(QStringLiteral("0"));
    }
    run.storeActivePreset(modes);
    return run.start() && run.waitForLine(trace::wroteRpm("F0Tg", 2500)) >= 0;
}

QStringList endFaults(SimulatedRun& run, bool isLogOff, bool areFansKept)
{
    QStringList faults;
    if (run.exitCode() != 0) {
        faults.append(QStringLiteral("exit code %1").arg(run.exitCode()));
    }
    const QString log = run.log();
    const int noted = log.indexOf(QLatin1String("slotUserLoggedOut"));
    const int asked = log.indexOf(QLatin1String("restore default control?"));
    if (asked < 0 || (noted >= 0) != isLogOff || noted > asked) {
        faults.append(QStringLiteral("the log-off is noted at %1, asked for at %2")
                          .arg(QString::number(noted), QString::number(asked)));
    }
    const bool isForced = run.report()[QLatin1String("controlBits")].toInt(-1) != 0;
    if (isForced != areFansKept || trace::givesBackLast(run.traceLog()) == areFansKept) {
        faults.append(QStringLiteral("the fans are %1")
                          .arg(isForced ? QStringLiteral("kept") : QStringLiteral("given back")));
    }
    return faults;
}

} // namespace

void TestSessions::initTestCase()
{
    const QString missing = VirtualDisplay::missingProgram();
    QVERIFY2(missing.isEmpty(), qPrintable(missing + QStringLiteral(" is not installed")));
    QVERIFY(m_display.start());
    m_systemBus = std::make_unique<PrivateBus>(PrivateBus::Kind::System);
    m_sessionBus = std::make_unique<PrivateBus>(PrivateBus::Kind::Session);
    m_xSession = std::make_unique<XSessionManager>();
}

void TestSessions::init()
{
    m_loginManager = std::make_unique<LoginManagerMock>(*m_systemBus);
    m_sessionManager = std::make_unique<SessionManagerMock>(*m_sessionBus);
}

void TestSessions::cleanup()
{
    m_loginManager.reset();
    m_sessionManager.reset();
}

void TestSessions::the_end_of_the_session_ends_the_program_data()
{
    QTest::addColumn<QString>("machine");
    QTest::addColumn<bool>("isShutdown");
    QTest::addColumn<bool>("areFansKept");
    QTest::newRow("log-off") << otherMachine << false << false;
    QTest::newRow("log-off, sensitive") << sensitiveMachine << false << true;
    QTest::newRow("shutdown, sensitive") << sensitiveMachine << true << false;
}

void TestSessions::the_end_of_the_session_ends_the_program()
{
    QFETCH(QString, machine);
    QFETCH(bool, isShutdown);
    QFETCH(bool, areFansKept);
    SimulatedRun run(machine);
    QVERIFY(startForced(run, machine));
    QVERIFY(run.waitFor([this] { return m_sessionManager->hasClient(); }));
    QVERIFY(run.waitFor([this] { return m_loginManager->heldLocks().size() == 2; }));

    if (isShutdown) {
        m_loginManager->prepareForShutdown(true);
    }
    m_sessionManager->endSession();

    QVERIFY(run.waitForEnd());
    QCOMPARE(endFaults(run, !isShutdown, areFansKept), QStringList());
}

void TestSessions::a_shutdown_without_a_session_manager_ends_the_program()
{
    m_sessionManager.reset();
    SimulatedRun run(sensitiveMachine);
    QVERIFY(startForced(run, sensitiveMachine));
    QVERIFY(run.waitFor([this] { return m_loginManager->heldLocks().size() == 2; }));

    m_loginManager->prepareForShutdown(true);

    QVERIFY(run.waitForEnd());
    QCOMPARE(endFaults(run, false, false), QStringList());
}

bool TestSessions::startOnDisplay(SimulatedRun& run)
{
    m_sessionManager.reset(); // only the other kind
    run.setVariable(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    run.setVariable(QStringLiteral("DISPLAY"), m_display.name());
    run.setVariable(QStringLiteral("SESSION_MANAGER"), m_xSession->address());
    return startForced(run, sensitiveMachine)
        && run.waitFor([this] { return m_xSession->hasIdleClient(); });
}

void TestSessions::an_x_session_ends_the_program()
{
    SimulatedRun run(sensitiveMachine);
    QVERIFY(startOnDisplay(run));
    m_xSession->saveYourself(true);
    QVERIFY(run.waitFor([this] { return m_xSession->hasIdleClient(); }));

    m_xSession->die();

    QVERIFY(run.waitForEnd());
    QCOMPARE(endFaults(run, true, true), QStringList());
}

void TestSessions::an_x_session_that_is_saved_or_goes_on_ends_nothing()
{
    SimulatedRun run(sensitiveMachine);
    QVERIFY(startOnDisplay(run));
    for (const bool sessionEnds : { false, true }) {
        m_xSession->saveYourself(sessionEnds);
        QVERIFY(run.waitFor([this] { return m_xSession->hasIdleClient(); }));
    }
    m_xSession->cancelShutdown();

    const std::size_t here = run.here();
    QVERIFY(
        run.waitFor([&] { return trace::count(run.traceLog(), trace::read("F0Ac"), here) >= 2; }));
    QVERIFY(run.isRunning());
    // An end that has nothing to do with the session is no log-off.
    QVERIFY(run.terminate());
    QCOMPARE(endFaults(run, false, false), QStringList());
}

BRISORA_TEST_MAIN(TestSessions, QCoreApplication)

#include "test_sessions.moc"
