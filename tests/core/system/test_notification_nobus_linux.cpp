#include <cstdio>

#include <QSignalSpy>
#include <QtTest>

#include "core/system/darkmode.h"
#include "core/system/qsystemnotification.h"
#include "tests/support/logcapture.h"
#include "tests/support/testenvironment.h"

namespace {

int printedMessages = 0;

void countMessage(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    ++printedMessages;
    std::fprintf(stderr, "%d %s\n", int(type), qPrintable(text));
}

} // namespace

// A system without message buses: the test's surroundings have none.
class NotificationNoBusTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void nothingIsToldAndLittleIsLogged();
};

void NotificationNoBusTest::nothingIsToldAndLittleIsLogged()
{
    const LogCapture log;
    auto* const before = qInstallMessageHandler(countMessage);
    {
        QSystemNotification notification;
        const QSignalSpy asleep(&notification, &QSystemNotification::enterSleepMode);
        const QSignalSpy awake(&notification, &QSystemNotification::wakeUp);
        const QSignalSpy loggedOut(&notification, &QSystemNotification::userLoggedOut);
        const QSignalSpy look(&notification, &QSystemNotification::darkModeChanged);
        const QSignalSpy power(&notification, &QSystemNotification::powerSourceChanged);
        QTRY_COMPARE(log.lines().size(), 1);
        QVERIFY2(log.lines().constFirst().startsWith(
                     QLatin1String("info: The system's sleep can't be delayed: ")),
                 qPrintable(log.lines().constFirst()));
        notification.sleepPrepared();
        QVERIFY(!isDarkModeEnabled());
        QCoreApplication::processEvents();
        for (const QSignalSpy* spy : { &asleep, &awake, &loggedOut, &look, &power }) {
            QCOMPARE(spy->count(), 0);
        }
    }
    qInstallMessageHandler(before);
    QCOMPARE(log.lines().size(), 1);
    QCOMPARE(printedMessages, 0);
}

BRISORA_TEST_MAIN(NotificationNoBusTest, QCoreApplication)
#include "test_notification_nobus_linux.moc"
