#include <QDir>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <QtTest>

#include "core/system/darkmode.h"
#include "core/system/qsystemnotification.h"
#include "tests/support/privatebus.h"
#include "tests/support/systemmocks.h"
#include "tests/support/testenvironment.h"

// The power source and the look as the desktop's services tell them.
class NotificationWatchersTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void withoutAListenerNobodyIsAsked();
    void aChangeOfThePowerSourceIsTold();
    void aPowerSourceThatIsLostIsTold();
    void withoutAChangeOfTheSourceNothingIsTold();
    void aPowerServiceThatComesLaterIsHeard();
    void aChangeOfTheLookIsTold();
    void otherSettingsAreNoChangeOfTheLook();
    void aPortalThatAnswersLateIsHeardAllTheSame();
    void twoNotificationsBothHear();

private:
    void setOnline(const char* online);
    void removeSupplies();

    std::unique_ptr<QTemporaryDir> m_root;
    std::unique_ptr<PrivateBus> m_systemBus;
    std::unique_ptr<PrivateBus> m_sessionBus;
};

void NotificationWatchersTest::initTestCase()
{
    m_systemBus = std::make_unique<PrivateBus>(PrivateBus::Kind::System);
    m_sessionBus = std::make_unique<PrivateBus>(PrivateBus::Kind::Session);
}

void NotificationWatchersTest::init()
{
    m_root = std::make_unique<QTemporaryDir>();
    qputenv("BRISORA_SYSROOT", QFile::encodeName(m_root->path()));
    setOnline("1");
}

void NotificationWatchersTest::setOnline(const char* online)
{
    const QDir supply(m_root->filePath(QStringLiteral("sys/class/power_supply/ADP1")));
    QVERIFY(supply.mkpath(QStringLiteral(".")));
    for (const auto& [name, value] :
         { std::pair(QStringLiteral("type"), "Mains"), { QStringLiteral("online"), online } }) {
        QFile file(supply.filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(value);
    }
}

void NotificationWatchersTest::removeSupplies()
{
    QVERIFY(QDir(m_root->filePath(QStringLiteral("sys"))).removeRecursively());
}

// The first of all: later on the process has its connections.
void NotificationWatchersTest::withoutAListenerNobodyIsAsked()
{
    const PortalMock portal(*m_sessionBus);
    const QStringList before = m_systemBus->visitors() + m_sessionBus->visitors();
    int reads = 0;
    const QSystemNotification notification(nullptr, [&reads] {
        ++reads;
        return System::PowerSourceAC;
    });
    QCoreApplication::processEvents();

    QCOMPARE(m_systemBus->visitors() + m_sessionBus->visitors(), before);
    QCOMPARE(reads, 0);
}

void NotificationWatchersTest::aChangeOfThePowerSourceIsTold()
{
    PowerServiceMock service(*m_systemBus);
    QSystemNotification notification;
    QSignalSpy changes(&notification, &QSystemNotification::powerSourceChanged);

    setOnline("0");
    service.tell(true);
    QTRY_COMPARE(changes.count(), 1);
    QCOMPARE(changes[0][0].value<System::PowerSource>(), System::PowerSourceBattery);

    // The service may leave the value out.
    setOnline("1");
    service.tellThatItChanged();
    QTRY_COMPARE(changes.count(), 2);
    QCOMPARE(changes[1][0].value<System::PowerSource>(), System::PowerSourceAC);
}

void NotificationWatchersTest::aPowerSourceThatIsLostIsTold()
{
    PowerServiceMock service(*m_systemBus);
    QSystemNotification notification;
    QSignalSpy changes(&notification, &QSystemNotification::powerSourceChanged);

    removeSupplies();
    service.tell(true);

    QTRY_COMPARE(changes.count(), 1);
    QCOMPARE(changes[0][0].toInt(), 2);
}

void NotificationWatchersTest::withoutAChangeOfTheSourceNothingIsTold()
{
    PowerServiceMock service(*m_systemBus);
    System::PowerSource source = System::PowerSourceAC;
    int reads = 0;
    QSystemNotification notification(nullptr, [&] {
        ++reads;
        return source;
    });
    QSignalSpy changes(&notification, &QSystemNotification::powerSourceChanged);
    QCOMPARE(reads, 1);

    // Whatever the service says: the kernel decides. Another property is no reason to
    // look.
    service.tell(true);
    service.tellOfTheLid();
    service.tellOfTheLid();
    service.tell(false);
    QTRY_COMPARE(reads, 3);
    QCOMPARE(changes.count(), 0);

    source = System::PowerSourceBattery;
    service.tell(true);
    QTRY_COMPARE(changes.count(), 1);
    QCOMPARE(reads, 4);
}

void NotificationWatchersTest::aPowerServiceThatComesLaterIsHeard()
{
    QSystemNotification notification;
    QSignalSpy changes(&notification, &QSystemNotification::powerSourceChanged);
    PowerServiceMock service(*m_systemBus);

    setOnline("0");
    service.tell(true);

    QTRY_COMPARE(changes.count(), 1);
}

void NotificationWatchersTest::aChangeOfTheLookIsTold()
{
    PortalMock portal(*m_sessionBus);
    QVERIFY(!isDarkModeEnabled());
    QSystemNotification notification;
    QSignalSpy changes(&notification, &QSystemNotification::darkModeChanged);

    portal.change(1);
    QTRY_COMPARE(changes.count(), 1);
    QVERIFY(isDarkModeEnabled());

    portal.change(1);
    portal.change(2);
    QTRY_COMPARE(changes.count(), 2);
    QVERIFY(!isDarkModeEnabled());
    // No wish at all is light as well.
    portal.change(0);
    portal.change(1);
    QTRY_COMPARE(changes.count(), 3);
}

void NotificationWatchersTest::otherSettingsAreNoChangeOfTheLook()
{
    PortalMock portal(*m_sessionBus);
    QSystemNotification notification;
    QSignalSpy changes(&notification, &QSystemNotification::darkModeChanged);

    portal.tell(QStringLiteral("org.freedesktop.appearance"), QStringLiteral("contrast"), 1);
    portal.tell(QStringLiteral("org.example.appearance"), QStringLiteral("color-scheme"), 1);
    portal.change(0);
    portal.change(1);

    QTRY_COMPARE(changes.count(), 1);
}

void NotificationWatchersTest::aPortalThatAnswersLateIsHeardAllTheSame()
{
    PortalMock portal(*m_sessionBus);
    portal.setScheme(1, 4.0); // of seconds, for each answer
    QSystemNotification notification;
    QElapsedTimer start;
    start.start();
    QSignalSpy changes(&notification, &QSystemNotification::darkModeChanged);
    QVERIFY(start.elapsed() < 3000); // nobody waits for it

    QTRY_COMPARE_WITH_TIMEOUT(changes.count(), 1, 15000);
    QVERIFY(isDarkModeEnabled());
}

void NotificationWatchersTest::twoNotificationsBothHear()
{
    PowerServiceMock service(*m_systemBus);
    PortalMock portal(*m_sessionBus);
    QSystemNotification first;
    QSystemNotification second;
    QSignalSpy onePower(&first, &QSystemNotification::powerSourceChanged);
    QSignalSpy twoPower(&second, &QSystemNotification::powerSourceChanged);
    QSignalSpy oneLook(&first, &QSystemNotification::darkModeChanged);
    QSignalSpy twoLook(&second, &QSystemNotification::darkModeChanged);

    setOnline("0");
    service.tell(true);
    portal.change(1);

    for (const QSignalSpy* spy : { &onePower, &twoPower, &oneLook, &twoLook }) {
        QTRY_COMPARE(spy->count(), 1);
    }
}

BRISORA_TEST_MAIN(NotificationWatchersTest, QCoreApplication)
#include "test_notification_watchers_linux.moc"
