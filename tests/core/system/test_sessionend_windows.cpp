#include <windows.h>

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QSignalSpy>
#include <QtTest>

#include "core/settings/qsettingscache.h"
#include "core/system/sessionend.h"
#include "core/widgets/qmainwindowex.h"
#include "tests/support/testenvironment.h"

namespace {

class TrayWindow final : public QMainWindowEx {
public:
    using QMainWindowEx::QMainWindowEx;

    int closeCount = 0;

protected:
    bool closeToTray() const override { return true; }
    void onClose() override { ++closeCount; }
};

} // namespace

class SessionEndTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theEndIsToldByItsQueryAlone_data();
    void theEndIsToldByItsQueryAlone();
    void theQueryClosesAHiddenWindowOnce();
    void otherMessagesCloseNothing();

private:
    QSettingsCache m_settings { QStringLiteral("Orvane Software"), QStringLiteral("Brisora") };
};

void SessionEndTest::theEndIsToldByItsQueryAlone_data()
{
    QTest::addColumn<QByteArray>("eventType");
    QTest::addColumn<unsigned>("message");
    QTest::addColumn<int>("ends");
    const QByteArray generic("windows_generic_MSG");
    QTest::newRow("the query") << generic << 17U << 1;
    QTest::newRow("the end itself") << generic << unsigned(WM_ENDSESSION) << 0;
    QTest::newRow("a close") << generic << unsigned(WM_CLOSE) << 0;
    QTest::newRow("another kind of event") << QByteArray("windows_dispatcher_MSG") << 17U << 0;
    QTest::newRow("no kind of event") << QByteArray() << 17U << 0;
}

void SessionEndTest::theEndIsToldByItsQueryAlone()
{
    QFETCH(QByteArray, eventType);
    QFETCH(unsigned, message);
    MSG event = {};
    event.message = message;
    const auto sessionEnd = SessionEnd::shared();
    const QSignalSpy ends(sessionEnd.get(), &SessionEnd::ending);
    long result = 0;

    const bool isTaken
        = QAbstractEventDispatcher::instance()->filterNativeEvent(eventType, &event, &result);

    QTEST(ends.count(), "ends");
    QVERIFY(!isTaken); // others hear of it as well
}

void SessionEndTest::theQueryClosesAHiddenWindowOnce()
{
    TrayWindow window(m_settings);
    window.show();
    window.close(); // into the tray
    QVERIFY(!window.isVisible());
    QCOMPARE(window.closeCount, 0);
    const auto handle = reinterpret_cast<HWND>(window.winId());

    // The session may end.
    QCOMPARE(static_cast<int>(SendMessageW(handle, WM_QUERYENDSESSION, 0, 0)), TRUE);
    QCOMPARE(window.closeCount, 1);

    SendMessageW(handle, WM_QUERYENDSESSION, 0, 0);
    QCOMPARE(window.closeCount, 1);
}

void SessionEndTest::otherMessagesCloseNothing()
{
    TrayWindow window(m_settings);
    window.show();
    const auto handle = reinterpret_cast<HWND>(window.winId());

    SendMessageW(handle, WM_CLOSE, 0, 0);
    SendMessageW(handle, WM_NULL, 17, 17);

    QTRY_VERIFY(!window.isVisible()); // the close hides it, once Qt gets to it
    QCOMPARE(window.closeCount, 0);
}

BRISORA_TEST_MAIN(SessionEndTest, QApplication)
#include "test_sessionend_windows.moc"
