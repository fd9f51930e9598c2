#include <optional>
#include <vector>

#include <windows.h>

#include <QGuiApplication>
#include <QSettings>
#include <QSignalSpy>
#include <QtTest>

#include "core/system/qsystemnotification.h"
#include "tests/support/testenvironment.h"

// The power source and the look. The theme is the one in the registry, which is the
// test's own.
class NotificationWatchersTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void theWindowForThePowerSourceIsMadeForAListener();
    void aChangeOfThePowerSourceIsTold();
    void withoutAChangeOfTheSourceNothingIsTold();
    void otherMessagesDoNotConcernThePowerSource();

    void aChangeOfTheLookIsTold();
    void otherValuesAreNoChangeOfTheLook();
    void withoutTheKeyNothingIsWatched();

    void twoNotificationsBothHear();
    void aNotificationThatIsGoneHearsNothing();
};

namespace {

const wchar_t* const powerWindowClass = L"OrvaneBatteryWatcherClass";

const QString themeKey
    = QStringLiteral("HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Themes\\"
                     "Personalize");

void setTheme(const QString& name, const QVariant& value)
{
    QSettings theme(themeKey, QSettings::NativeFormat);
    if (value.isValid()) {
        theme.setValue(name, value);
    } else {
        theme.remove(name);
    }
}

void setLight(const QVariant& light) { setTheme(QStringLiteral("AppsUseLightTheme"), light); }

// The hidden windows of the process for the power source.
std::vector<HWND> powerWindows()
{
    std::vector<HWND> result;
    HWND window = nullptr;
    while ((window = FindWindowExW(nullptr, window, powerWindowClass, nullptr)) != nullptr) {
        DWORD process = 0;
        GetWindowThreadProcessId(window, &process);
        if (process == GetCurrentProcessId()) {
            result.push_back(window);
        }
    }
    return result;
}

LRESULT tellPowerSetting(HWND window)
{
    return SendMessageW(window, WM_POWERBROADCAST, PBT_POWERSETTINGCHANGE, 0);
}

} // namespace

void NotificationWatchersTest::init() { setLight(1); }

void NotificationWatchersTest::theWindowForThePowerSourceIsMadeForAListener()
{
    std::optional<QSystemNotification> notification(std::in_place);
    QCOMPARE(powerWindows().size(), std::size_t(0));

    std::optional<QSignalSpy> changes(std::in_place, &*notification,
                                      &QSystemNotification::powerSourceChanged);
    const QSignalSpy second(&*notification, &QSystemNotification::powerSourceChanged);
    const std::vector<HWND> windows = powerWindows();
    QCOMPARE(windows.size(), std::size_t(1));
    wchar_t title[32] {};
    GetWindowTextW(windows[0], title, 32);
    QCOMPARE(QString::fromWCharArray(title), QStringLiteral("Battery Watcher"));
    QVERIFY(IsWindowVisible(windows[0]) == 0);

    changes.reset();
    notification.reset();
    QCOMPARE(powerWindows().size(), std::size_t(0));
}

void NotificationWatchersTest::aChangeOfThePowerSourceIsTold()
{
    System::PowerSource source = System::PowerSourceAC;
    QSystemNotification notification(nullptr, [&source] { return source; });
    QSignalSpy changes(&notification, &QSystemNotification::powerSourceChanged);
    QCOMPARE(powerWindows().size(), std::size_t(1));

    source = System::PowerSourceUnknown;
    QCOMPARE(tellPowerSetting(powerWindows()[0]), LRESULT(1));

    QCOMPARE(changes.count(), 1);
    QCOMPARE(changes[0][0].toInt(), 2);
}

void NotificationWatchersTest::withoutAChangeOfTheSourceNothingIsTold()
{
    System::PowerSource source = System::PowerSourceBattery;
    QSystemNotification notification(nullptr, [&source] { return source; });
    QSignalSpy changes(&notification, &QSystemNotification::powerSourceChanged);
    QCOMPARE(powerWindows().size(), std::size_t(1));

    for (int repetition = 0; repetition < 3; ++repetition) {
        QCOMPARE(tellPowerSetting(powerWindows()[0]), LRESULT(1));
    }
    QCOMPARE(changes.count(), 0);

    source = System::PowerSourceAC;
    tellPowerSetting(powerWindows()[0]);
    tellPowerSetting(powerWindows()[0]);
    QCOMPARE(changes.count(), 1);
}

void NotificationWatchersTest::otherMessagesDoNotConcernThePowerSource()
{
    System::PowerSource source = System::PowerSourceBattery;
    QSystemNotification notification(nullptr, [&source] { return source; });
    QSignalSpy changes(&notification, &QSystemNotification::powerSourceChanged);
    QCOMPARE(powerWindows().size(), std::size_t(1));
    source = System::PowerSourceAC;

    const HWND window = powerWindows()[0];
    SendMessageW(window, WM_POWERBROADCAST, PBT_APMPOWERSTATUSCHANGE, 0);
    SendMessageW(window, WM_POWERBROADCAST, PBT_APMSUSPEND, 0);
    // The system's own answer: agreed.
    QCOMPARE(SendMessageW(window, WM_QUERYENDSESSION, 0, 0), LRESULT(1));

    QCOMPARE(changes.count(), 0);
}

void NotificationWatchersTest::aChangeOfTheLookIsTold()
{
    QSystemNotification notification;
    QSignalSpy changes(&notification, &QSystemNotification::darkModeChanged);
    QThread* thread = nullptr;
    connect(&notification, &QSystemNotification::darkModeChanged, &notification,
            [&thread] { thread = QThread::currentThread(); });

    setLight(0);
    QTRY_COMPARE(changes.count(), 1);
    QCOMPARE(thread, QThread::currentThread());

    setLight(1);
    QTRY_COMPARE(changes.count(), 2);

    setLight(0);
    QTRY_COMPARE(changes.count(), 3);
    // A value that is gone counts as light.
    setLight(QVariant());
    QTRY_COMPARE(changes.count(), 4);
}

void NotificationWatchersTest::otherValuesAreNoChangeOfTheLook()
{
    QSystemNotification notification;
    QSignalSpy changes(&notification, &QSystemNotification::darkModeChanged);

    setTheme(QStringLiteral("EnableTransparency"), 0);
    setLight(2);
    setLight(QVariant());
    setTheme(QStringLiteral("EnableTransparency"), 1);
    setLight(0);

    QTRY_COMPARE(changes.count(), 1);
}

void NotificationWatchersTest::withoutTheKeyNothingIsWatched()
{
    QSettings(themeKey.left(themeKey.lastIndexOf(QLatin1Char('\\'))), QSettings::NativeFormat)
        .remove(QStringLiteral("Personalize"));
    QSystemNotification without;
    QSignalSpy never(&without, &QSystemNotification::darkModeChanged);
    setLight(1);
    QSystemNotification with;
    QSignalSpy changes(&with, &QSystemNotification::darkModeChanged);

    setLight(0);

    QTRY_COMPARE(changes.count(), 1);
    QCOMPARE(never.count(), 0);
}

void NotificationWatchersTest::twoNotificationsBothHear()
{
    System::PowerSource source = System::PowerSourceAC;
    const auto read = [&source] { return source; };
    QSystemNotification first(nullptr, read);
    QSystemNotification second(nullptr, read);
    QSignalSpy firstPower(&first, &QSystemNotification::powerSourceChanged);
    QSignalSpy secondPower(&second, &QSystemNotification::powerSourceChanged);
    QSignalSpy firstLook(&first, &QSystemNotification::darkModeChanged);
    QSignalSpy secondLook(&second, &QSystemNotification::darkModeChanged);

    QCOMPARE(powerWindows().size(), std::size_t(2));
    source = System::PowerSourceBattery;
    for (HWND window : powerWindows()) {
        tellPowerSetting(window);
    }
    setLight(0);

    QCOMPARE(firstPower.count(), 1);
    QCOMPARE(secondPower.count(), 1);
    QTRY_COMPARE(firstLook.count(), 1);
    QTRY_COMPARE(secondLook.count(), 1);
}

void NotificationWatchersTest::aNotificationThatIsGoneHearsNothing()
{
    int heard = 0;
    {
        QSystemNotification notification;
        connect(&notification, &QSystemNotification::darkModeChanged, this, [&heard] { ++heard; });
    }
    QSystemNotification other;
    QSignalSpy look(&other, &QSystemNotification::darkModeChanged);

    setLight(0);

    QTRY_COMPARE(look.count(), 1);
    QCOMPARE(heard, 0);
}

BRISORA_TEST_MAIN(NotificationWatchersTest, QGuiApplication)
#include "test_notification_watchers_windows.moc"
