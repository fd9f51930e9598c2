#include <windows.h>

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QSignalSpy>
#include <QWidget>
#include <QtTest>

#include "core/settings/qsettingscache.h"
#include "core/system/qsystemnotification.h"
#include "core/widgets/qmainwindowex.h"
#include "tests/support/testenvironment.h"

// Sleep, wake and the session's end: the messages are sent as the system sends them,
// to the windows.
class NotificationMessagesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void messagesAreTold_data();
    void messagesAreTold();
    void messagesGoOn();
    void aLogOffIsNotedBeforeTheWindowCloses_data();
    void aLogOffIsNotedBeforeTheWindowCloses();
    void aShutdownClosesTheWindowWithoutALogOff();
    void twoNotificationsBothHear();
    void aNotificationThatIsGoneHearsNothing();
};

namespace {

// A window of the program as the system knows it; it need not be shown.
class NativeWindow {
public:
    NativeWindow() { m_widget.winId(); }

    LRESULT send(UINT message, WPARAM wParam, LPARAM lParam)
    {
        return SendMessageW(reinterpret_cast<HWND>(m_widget.winId()), message, wParam, lParam);
    }

private:
    QWidget m_widget;
};

// Notes, in order, that it was told of the log-off and that its window closed.
class ClosingWindow final : public QMainWindowEx {
public:
    ClosingWindow(QSettingsCache& settings, QStringList& steps)
        : QMainWindowEx(settings)
        , m_steps(steps)
    {
    }

protected:
    void onClose() override { m_steps.append(QStringLiteral("closed")); }

private:
    QStringList& m_steps;
};

void noteLogOff(QSystemNotification& notification, QStringList& steps)
{
    QObject::connect(&notification, &QSystemNotification::userLoggedOut, &notification,
                     [&steps] { steps.append(QStringLiteral("logged out")); });
}

} // namespace

void NotificationMessagesTest::messagesAreTold_data()
{
    QTest::addColumn<unsigned>("message");
    QTest::addColumn<unsigned>("first");
    QTest::addColumn<unsigned>("second");
    QTest::addColumn<QString>("told");
    const unsigned power = WM_POWERBROADCAST;
    const unsigned end = WM_QUERYENDSESSION;
    const auto row = [](const char* name, unsigned message, unsigned first, unsigned second,
                        const char* told) {
        QTest::newRow(name) << message << first << second << QString::fromLatin1(told);
    };
    row("suspend", power, PBT_APMSUSPEND, 0, "sleep");
    row("resume", power, PBT_APMRESUMEAUTOMATIC, 0, "wake");
    row("resume by the user", power, PBT_APMRESUMESUSPEND, 0, "");
    row("power status", power, PBT_APMPOWERSTATUSCHANGE, 0, "");
    row("log-off", end, 0, ENDSESSION_LOGOFF, "log-off");
    row("log-off for a restart of the program", end, 0, ENDSESSION_LOGOFF | ENDSESSION_CLOSEAPP,
        "");
    row("critical log-off", end, 0, ENDSESSION_LOGOFF | ENDSESSION_CRITICAL, "");
    row("shutdown", end, 0, 0, "");
}

void NotificationMessagesTest::messagesAreTold()
{
    QFETCH(unsigned, message);
    QFETCH(unsigned, first);
    QFETCH(unsigned, second);
    QStringList told;
    QSystemNotification notification;
    connect(&notification, &QSystemNotification::enterSleepMode, &notification,
            [&told] { told.append(QStringLiteral("sleep")); });
    connect(&notification, &QSystemNotification::wakeUp, &notification,
            [&told] { told.append(QStringLiteral("wake")); });
    connect(&notification, &QSystemNotification::userLoggedOut, &notification,
            [&told] { told.append(QStringLiteral("log-off")); });
    NativeWindow window;

    window.send(message, first, static_cast<LPARAM>(second));
    // The session goes on after all.
    window.send(WM_ENDSESSION, FALSE, 0);

    QTEST(told.join(QLatin1Char(' ')), "told");
}

void NotificationMessagesTest::messagesGoOn()
{
    QSystemNotification notification;
    QSignalSpy asleep(&notification, &QSystemNotification::enterSleepMode);
    QSignalSpy loggedOut(&notification, &QSystemNotification::userLoggedOut);
    const auto isTaken = [](const char* eventType, UINT message, WPARAM first, LPARAM second) {
        MSG event = {};
        event.message = message;
        event.wParam = first;
        event.lParam = second;
        long result = 0;
        return QAbstractEventDispatcher::instance()->filterNativeEvent(eventType, &event, &result);
    };
    const auto logOff = static_cast<LPARAM>(ENDSESSION_LOGOFF);

    QVERIFY(!isTaken("windows_generic_MSG", WM_POWERBROADCAST, PBT_APMSUSPEND, 0));
    QVERIFY(!isTaken("windows_generic_MSG", WM_QUERYENDSESSION, 0, logOff));
    QCOMPARE(asleep.count(), 1);
    QCOMPARE(loggedOut.count(), 1);

    // What comes by another way is told there.
    QVERIFY(!isTaken("windows_dispatcher_MSG", WM_POWERBROADCAST, PBT_APMSUSPEND, 0));
    QVERIFY(!isTaken("windows_dispatcher_MSG", WM_QUERYENDSESSION, 0, logOff));
    QCOMPARE(asleep.count(), 1);
    QCOMPARE(loggedOut.count(), 1);
}

void NotificationMessagesTest::aLogOffIsNotedBeforeTheWindowCloses_data()
{
    QTest::addColumn<bool>("isListenerFirst");
    QTest::newRow("the listener came first") << true;
    QTest::newRow("the window came first") << false;
}

void NotificationMessagesTest::aLogOffIsNotedBeforeTheWindowCloses()
{
    QFETCH(bool, isListenerFirst);
    QSettingsCache settings(QStringLiteral("Orvane Software"), QStringLiteral("Brisora"));
    QStringList steps;
    QSystemNotification notification;
    if (isListenerFirst) {
        noteLogOff(notification, steps);
    }
    ClosingWindow window(settings, steps);
    if (!isListenerFirst) {
        noteLogOff(notification, steps);
    }
    // The filters of the sleep come later in any case.
    QSignalSpy asleep(&notification, &QSystemNotification::enterSleepMode);

    SendMessageW(reinterpret_cast<HWND>(window.winId()), WM_QUERYENDSESSION, 0,
                 static_cast<LPARAM>(ENDSESSION_LOGOFF));

    QCOMPARE(steps, QStringList({ QStringLiteral("logged out"), QStringLiteral("closed") }));
    NativeWindow().send(WM_ENDSESSION, FALSE, 0);
}

void NotificationMessagesTest::aShutdownClosesTheWindowWithoutALogOff()
{
    QSettingsCache settings(QStringLiteral("Orvane Software"), QStringLiteral("Brisora"));
    QStringList steps;
    QSystemNotification notification;
    noteLogOff(notification, steps);
    ClosingWindow window(settings, steps);

    SendMessageW(reinterpret_cast<HWND>(window.winId()), WM_QUERYENDSESSION, 0, 0);

    QCOMPARE(steps, QStringList { QStringLiteral("closed") });
    NativeWindow().send(WM_ENDSESSION, FALSE, 0);
}

void NotificationMessagesTest::twoNotificationsBothHear()
{
    QSystemNotification first;
    QSystemNotification second;
    QSignalSpy firstSleep(&first, &QSystemNotification::enterSleepMode);
    QSignalSpy secondSleep(&second, &QSystemNotification::enterSleepMode);
    QSignalSpy firstLogOff(&first, &QSystemNotification::userLoggedOut);
    QSignalSpy secondLogOff(&second, &QSystemNotification::userLoggedOut);

    NativeWindow window;
    window.send(WM_POWERBROADCAST, PBT_APMSUSPEND, 0);
    window.send(WM_QUERYENDSESSION, 0, static_cast<LPARAM>(ENDSESSION_LOGOFF));
    window.send(WM_ENDSESSION, FALSE, 0);

    for (const QSignalSpy* spy : { &firstSleep, &secondSleep, &firstLogOff, &secondLogOff }) {
        QCOMPARE(spy->count(), 1);
    }
}

void NotificationMessagesTest::aNotificationThatIsGoneHearsNothing()
{
    int heard = 0;
    {
        QSystemNotification notification;
        for (const auto signal :
             { &QSystemNotification::enterSleepMode, &QSystemNotification::userLoggedOut }) {
            connect(&notification, signal, this, [&heard] { ++heard; });
        }
    }
    QSystemNotification other;
    QSignalSpy asleep(&other, &QSystemNotification::enterSleepMode);

    NativeWindow window;
    window.send(WM_POWERBROADCAST, PBT_APMSUSPEND, 0);
    window.send(WM_QUERYENDSESSION, 0, static_cast<LPARAM>(ENDSESSION_LOGOFF));
    window.send(WM_ENDSESSION, FALSE, 0);

    QCOMPARE(asleep.count(), 1);
    QCOMPARE(heard, 0);
}

BRISORA_TEST_MAIN(NotificationMessagesTest, QApplication)
#include "test_notification_messages_windows.moc"
