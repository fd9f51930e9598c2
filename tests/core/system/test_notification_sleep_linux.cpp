#include <optional>

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QtTest>

#include "core/system/qsystemnotification.h"
#include "tests/support/privatebus.h"
#include "tests/support/systemmocks.h"
#include "tests/support/testenvironment.h"

// Sleep and wake as the login manager tells them.
class NotificationSleepTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void withoutAListenerNobodyIsAsked();
    void sleepAndWakeAreTold();
    void aManagerThatIsGoneTellsOfTheWake();
    void theSleepWaitsUntilItIsPrepared();
    void theSleepWaitsForThreeSecondsAtMost();
    void afterTheWakeTheNextSleepWaitsAgain();
    void aPreparationThatComesTooLateKeepsTheNextSleepWaiting();
    void whoOnlyListensToTheWakeHoldsNothingUp();
    void twoNotificationsBothHear();
    void aNotificationThatIsGoneHoldsNothingUp();

private:
    [[nodiscard]] QStringList locks() const { return m_loginManager->heldLocks(); }

    std::unique_ptr<PrivateBus> m_bus;
    std::unique_ptr<LoginManagerMock> m_loginManager;
};

namespace {

const QStringList none;
const QStringList sleepLock { QStringLiteral("sleep") };

// Counts what it hears.
struct Listener {
    explicit Listener(QSystemNotification& notification)
        : asleep(&notification, &QSystemNotification::enterSleepMode)
        , awake(&notification, &QSystemNotification::wakeUp)
    {
    }

    QSignalSpy asleep;
    QSignalSpy awake;
};

} // namespace

void NotificationSleepTest::initTestCase()
{
    m_bus = std::make_unique<PrivateBus>(PrivateBus::Kind::System);
}

void NotificationSleepTest::init() { m_loginManager = std::make_unique<LoginManagerMock>(*m_bus); }

void NotificationSleepTest::cleanup() { m_loginManager.reset(); }

// The first of all: later on the process has its connection.
void NotificationSleepTest::withoutAListenerNobodyIsAsked()
{
    const QStringList before = m_bus->visitors();
    QSystemNotification notification;
    notification.sleepPrepared();
    QCoreApplication::processEvents();

    QCOMPARE(m_bus->visitors(), before);
    QCOMPARE(locks(), none);
}

void NotificationSleepTest::sleepAndWakeAreTold()
{
    QSystemNotification notification;
    const Listener listener(notification);
    QTRY_COMPARE(locks(), sleepLock);

    m_loginManager->prepareForSleep(true);
    QTRY_COMPARE(listener.asleep.count(), 1);
    QCOMPARE(listener.awake.count(), 0);

    m_loginManager->prepareForSleep(false);
    QTRY_COMPARE(listener.awake.count(), 1);
    QCOMPARE(listener.asleep.count(), 1);
}

void NotificationSleepTest::aManagerThatIsGoneTellsOfTheWake()
{
    QSystemNotification notification;
    const Listener listener(notification);
    QTRY_COMPARE(locks(), sleepLock);
    m_loginManager->prepareForSleep(true);
    QTRY_COMPARE(listener.asleep.count(), 1);

    m_loginManager.reset();

    QTRY_COMPARE(listener.awake.count(), 1);
}

void NotificationSleepTest::theSleepWaitsUntilItIsPrepared()
{
    QSystemNotification notification;
    const Listener listener(notification);
    QTRY_COMPARE(locks(), sleepLock);
    m_loginManager->prepareForSleep(true);
    QTRY_COMPARE(listener.asleep.count(), 1);
    QCOMPARE(locks(), sleepLock);
    QElapsedTimer sincePreparation;
    sincePreparation.start();

    notification.sleepPrepared();

    QTRY_COMPARE(locks(), none);
    QVERIFY(sincePreparation.elapsed() < 2000);
}

void NotificationSleepTest::theSleepWaitsForThreeSecondsAtMost()
{
    QSystemNotification notification;
    const Listener listener(notification);
    QTRY_COMPARE(locks(), sleepLock);
    QElapsedTimer sinceSignal;
    QObject::connect(&notification, &QSystemNotification::enterSleepMode, &notification,
                     [&sinceSignal] { sinceSignal.start(); });

    m_loginManager->prepareForSleep(true);

    QTRY_COMPARE_WITH_TIMEOUT(locks(), none, 10000);
    QVERIFY(sinceSignal.isValid());
    QVERIFY2(sinceSignal.elapsed() > 2800, qPrintable(QString::number(sinceSignal.elapsed())));
}

void NotificationSleepTest::afterTheWakeTheNextSleepWaitsAgain()
{
    QSystemNotification notification;
    const Listener listener(notification);
    QTRY_COMPARE(locks(), sleepLock);
    for (int sleeps = 1; sleeps <= 2; ++sleeps) {
        m_loginManager->prepareForSleep(true);
        QTRY_COMPARE(listener.asleep.count(), sleeps);
        notification.sleepPrepared();
        QTRY_COMPARE(locks(), none);

        m_loginManager->prepareForSleep(false);
        QTRY_COMPARE(locks(), sleepLock);
    }
}

void NotificationSleepTest::aPreparationThatComesTooLateKeepsTheNextSleepWaiting()
{
    QSystemNotification notification;
    const Listener listener(notification);
    QTRY_COMPARE(locks(), sleepLock);
    m_loginManager->prepareForSleep(true);
    QTRY_COMPARE(listener.asleep.count(), 1);
    m_loginManager->prepareForSleep(false);
    QTRY_COMPARE(listener.awake.count(), 1);
    QTRY_COMPARE(locks(), sleepLock);

    notification.sleepPrepared();

    // Had it been given back, it would be by the next sleep.
    m_loginManager->prepareForSleep(true);
    QTRY_COMPARE(listener.asleep.count(), 2);
    QCOMPARE(locks(), sleepLock);
}

void NotificationSleepTest::whoOnlyListensToTheWakeHoldsNothingUp()
{
    QSystemNotification notification;
    QSignalSpy awake(&notification, &QSystemNotification::wakeUp);

    m_loginManager->prepareForSleep(true);
    m_loginManager->prepareForSleep(false);
    QTRY_COMPARE(awake.count(), 1);

    QCOMPARE(locks(), none);
}

void NotificationSleepTest::twoNotificationsBothHear()
{
    QSystemNotification first;
    QSystemNotification second;
    const Listener one(first);
    const Listener two(second);
    QTRY_COMPARE(locks(), sleepLock + sleepLock);

    m_loginManager->prepareForSleep(true);
    QTRY_COMPARE(one.asleep.count(), 1);
    QTRY_COMPARE(two.asleep.count(), 1);

    first.sleepPrepared();
    QTRY_COMPARE(locks(), sleepLock);
    second.sleepPrepared();
    QTRY_COMPARE(locks(), none);
}

void NotificationSleepTest::aNotificationThatIsGoneHoldsNothingUp()
{
    std::optional<QSystemNotification> notification(std::in_place);
    std::optional<Listener> listener(std::in_place, *notification);
    QTRY_COMPARE(locks(), sleepLock);

    listener.reset();
    notification.reset();

    QTRY_COMPARE(locks(), none);
    // Neither does one that is gone before it has been answered.
    QSignalSpy(std::make_unique<QSystemNotification>().get(), &QSystemNotification::enterSleepMode);
    QSystemNotification other;
    const Listener otherListener(other);
    QTRY_COMPARE(locks(), sleepLock);
}

BRISORA_TEST_MAIN(NotificationSleepTest, QCoreApplication)
#include "test_notification_sleep_linux.moc"
