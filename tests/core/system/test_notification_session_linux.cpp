#include <QSignalSpy>
#include <QtTest>

#include "core/system/qsystemnotification.h"
#include "core/system/sessionend.h"
#include "tests/support/privatebus.h"
#include "tests/support/systemmocks.h"
#include "tests/support/testenvironment.h"

// The end of the session as the desktop's session manager and the login manager
// tell it.
class NotificationSessionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void withoutAListenerTheProgramIsNoClient();
    void aLogOffIsNotedBeforeAnybodyActs_data();
    void aLogOffIsNotedBeforeAnybodyActs();
    void theSessionManagerHearsThatItMayGoOn();
    void aQuestionAloneEndsNothing();
    void aShutdownIsNoLogOff();
    void aShutdownWaitsForThoseWhoAct();
    void afterAShutdownThatCameToNothingALogOffIsOne();
    void twoNotificationsBothHear();
    void whoNeedsNothingAnyMoreIsNoClient();

private:
    std::unique_ptr<PrivateBus> m_systemBus;
    std::unique_ptr<PrivateBus> m_sessionBus;
    std::unique_ptr<LoginManagerMock> m_loginManager;
    std::unique_ptr<SessionManagerMock> m_sessionManager;
};

namespace {

const QString noted = QStringLiteral("noted");
const QString acted = QStringLiteral("acted");

void noteLogOff(QSystemNotification& notification, QStringList& steps)
{
    QObject::connect(&notification, &QSystemNotification::userLoggedOut, &notification,
                     [&steps] { steps.append(noted); });
}

// As a window that closes.
void act(const std::shared_ptr<SessionEnd>& sessionEnd, QObject& context, QStringList& steps)
{
    QObject::connect(sessionEnd.get(), &SessionEnd::ending, &context,
                     [&steps] { steps.append(acted); });
}

} // namespace

void NotificationSessionTest::initTestCase()
{
    m_systemBus = std::make_unique<PrivateBus>(PrivateBus::Kind::System);
    m_sessionBus = std::make_unique<PrivateBus>(PrivateBus::Kind::Session);
}

void NotificationSessionTest::init()
{
    m_loginManager = std::make_unique<LoginManagerMock>(*m_systemBus);
    m_sessionManager = std::make_unique<SessionManagerMock>(*m_sessionBus);
}

void NotificationSessionTest::cleanup()
{
    m_loginManager.reset();
    m_sessionManager.reset();
}

// The first of all: later on the process has its connections.
void NotificationSessionTest::withoutAListenerTheProgramIsNoClient()
{
    const QStringList before = m_systemBus->visitors() + m_sessionBus->visitors();
    const QSystemNotification notification;
    QCoreApplication::processEvents();
    QCOMPARE(m_systemBus->visitors() + m_sessionBus->visitors(), before);
    QVERIFY(!m_sessionManager->hasClient());
}

void NotificationSessionTest::aLogOffIsNotedBeforeAnybodyActs_data()
{
    QTest::addColumn<bool>("isListenerFirst");
    QTest::newRow("the listener came first") << true;
    QTest::newRow("the window came first") << false;
}

void NotificationSessionTest::aLogOffIsNotedBeforeAnybodyActs()
{
    QFETCH(bool, isListenerFirst);
    QStringList steps;
    QSystemNotification notification;
    const auto sessionEnd = SessionEnd::shared();
    QObject window;
    if (isListenerFirst) {
        noteLogOff(notification, steps);
    }
    act(sessionEnd, window, steps);
    if (!isListenerFirst) {
        noteLogOff(notification, steps);
    }
    QTRY_VERIFY(m_sessionManager->hasClient());

    m_sessionManager->endSession();

    QTRY_COMPARE(steps, QStringList({ noted, acted }));
}

void NotificationSessionTest::theSessionManagerHearsThatItMayGoOn()
{
    const auto sessionEnd = SessionEnd::shared();
    int agreementsBefore = -1;
    QObject window;
    connect(sessionEnd.get(), &SessionEnd::ending, &window,
            [this, &agreementsBefore] { agreementsBefore = m_sessionManager->agreements(); });
    QTRY_VERIFY(m_sessionManager->hasClient());

    m_sessionManager->askForEnd();
    QTRY_COMPARE(m_sessionManager->agreements(), 1);
    QCOMPARE(agreementsBefore, -1);

    // It goes on when everything is done here.
    m_sessionManager->endSession();
    QTRY_COMPARE(m_sessionManager->agreements(), 2);
    QCOMPARE(agreementsBefore, 1);
}

void NotificationSessionTest::aQuestionAloneEndsNothing()
{
    QStringList steps;
    QSystemNotification notification;
    noteLogOff(notification, steps);
    QTRY_VERIFY(m_sessionManager->hasClient());

    m_sessionManager->askForEnd();

    QTRY_COMPARE(m_sessionManager->agreements(), 1);
    QCOMPARE(steps, QStringList());
}

void NotificationSessionTest::aShutdownIsNoLogOff()
{
    QStringList steps;
    QSystemNotification notification;
    noteLogOff(notification, steps);
    const auto sessionEnd = SessionEnd::shared();
    QObject window;
    act(sessionEnd, window, steps);
    QTRY_VERIFY(m_sessionManager->hasClient());

    m_loginManager->prepareForShutdown(true);
    QTRY_COMPARE(steps, QStringList { acted });

    m_sessionManager->endSession();
    QTRY_COMPARE(steps, QStringList({ acted, acted }));
}

void NotificationSessionTest::aShutdownWaitsForThoseWhoAct()
{
    const auto sessionEnd = SessionEnd::shared();
    const QStringList shutdownLock { QStringLiteral("shutdown") };
    QStringList locksMeanwhile;
    QObject window;
    connect(sessionEnd.get(), &SessionEnd::ending, &window,
            [this, &locksMeanwhile] { locksMeanwhile = m_loginManager->heldLocks(); });
    QTRY_COMPARE(m_loginManager->heldLocks(), shutdownLock);

    m_loginManager->prepareForShutdown(true);

    QTRY_COMPARE(m_loginManager->heldLocks(), QStringList());
    QCOMPARE(locksMeanwhile, shutdownLock);
}

void NotificationSessionTest::afterAShutdownThatCameToNothingALogOffIsOne()
{
    QStringList steps;
    QSystemNotification notification;
    noteLogOff(notification, steps);
    QTRY_VERIFY(m_sessionManager->hasClient());
    QTRY_COMPARE(m_loginManager->heldLocks().size(), 1);
    m_loginManager->prepareForShutdown(true);
    QTRY_COMPARE(m_loginManager->heldLocks().size(), 0);

    m_loginManager->prepareForShutdown(false);
    QTRY_COMPARE(m_loginManager->heldLocks().size(), 1);
    QCOMPARE(steps, QStringList());

    m_sessionManager->endSession();
    QTRY_COMPARE(steps, QStringList { noted });
}

void NotificationSessionTest::twoNotificationsBothHear()
{
    QSystemNotification first;
    QSystemNotification second;
    QSignalSpy one(&first, &QSystemNotification::userLoggedOut);
    QSignalSpy two(&second, &QSystemNotification::userLoggedOut);
    QTRY_VERIFY(m_sessionManager->hasClient());

    m_sessionManager->endSession();

    QTRY_COMPARE(one.count(), 1);
    QCOMPARE(two.count(), 1);
    // They are one client together.
    QCOMPARE(m_sessionManager->registrations(), 1);
}

void NotificationSessionTest::whoNeedsNothingAnyMoreIsNoClient()
{
    auto sessionEnd = SessionEnd::shared();
    QTRY_VERIFY(m_sessionManager->hasClient());
    QTRY_COMPARE(m_loginManager->heldLocks().size(), 1);
    sessionEnd.reset();

    QTRY_COMPARE(m_sessionManager->unregistrations(), 1);
    QVERIFY(!m_sessionManager->hasClient());
    QTRY_COMPARE(m_loginManager->heldLocks(), QStringList());
}

BRISORA_TEST_MAIN(NotificationSessionTest, QCoreApplication)
#include "test_notification_session_linux.moc"
