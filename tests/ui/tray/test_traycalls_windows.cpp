#include <array>
#include <memory>

#include <windows.h>

#include <QApplication>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>

#include "app/ui/tray/qtrayiconwin.h"
#include "app/ui/tray/traycalls.h"
#include "app/ui/tray/traydrawing.h"
#include "app/ui/tray/trayplatform.h"
#include "resources/resources.h"
#include "tests/support/logcapture.h"
#include "tests/support/testenvironment.h"
#include "tests/ui/tray/faketraycalls.h"

namespace {

HWND toHandle(TrayWindow window) { return reinterpret_cast<HWND>(window); }

// The size of a native icon; empty when there is no such icon.
QSize iconSize(TrayNativeIcon icon)
{
    ICONINFO info {};
    if (GetIconInfo(reinterpret_cast<HICON>(icon), &info) == 0) {
        return {};
    }
    BITMAP bitmap {};
    GetObjectW(info.hbmColor, sizeof(bitmap), &bitmap);
    DeleteObject(info.hbmColor);
    DeleteObject(info.hbmMask);
    return { bitmap.bmWidth, bitmap.bmHeight };
}

// A native icon as it looks on black.
QImage drawn(TrayNativeIcon icon, int size)
{
    BITMAPINFO info {};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = size;
    info.bmiHeader.biHeight = -size; // from the top
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* bits = nullptr;
    const HDC context = CreateCompatibleDC(nullptr);
    const HBITMAP bitmap = CreateDIBSection(context, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    const HGDIOBJ before = SelectObject(context, bitmap);
    DrawIconEx(context, 0, 0, reinterpret_cast<HICON>(icon), size, size, 0, nullptr, DI_NORMAL);
    GdiFlush();
    const QImage image
        = QImage(static_cast<const uchar*>(bits), size, size, QImage::Format_RGB32).copy();
    SelectObject(context, before);
    DeleteObject(bitmap);
    DeleteDC(context);
    return image;
}

// The system's calls, but the shell is a fake.
class CallsWithFakeShell final : public TrayCalls {
public:
    struct Record {
        FakeTrayCalls::Record shell;
        TrayWindow window = 0;
        QSize iconSize; // of the last icon that the shell was told, at that time
    };

    explicit CallsWithFakeShell(Record& record)
        : m_record(record)
        , m_shell(record.shell)
        , m_system(makeTrayCalls())
    {
    }

    bool hasCurrentVersion() override { return m_system->hasCurrentVersion(); }
    TrayWindow createWindow(const QString& className, const QString& title,
                            TrayMessageReceiver& receiver) override
    {
        m_record.window = m_system->createWindow(className, title, receiver);
        return m_record.window;
    }
    void destroyWindow(TrayWindow window) override { m_system->destroyWindow(window); }
    std::uint32_t registerMessage(const QString& name) override
    {
        return m_system->registerMessage(name);
    }
    bool allowMessageToWindow(TrayWindow window, std::uint32_t message) override
    {
        return m_system->allowMessageToWindow(window, message);
    }
    bool allowMessageToProcess(std::uint32_t message) override
    {
        return m_system->allowMessageToProcess(message);
    }
    bool notify(TrayAction action, const TrayNotification& notification) override
    {
        if (notification.icon != 0) {
            m_record.iconSize = ::iconSize(notification.icon);
        }
        return m_shell.notify(action, notification);
    }
    QSize smallIconSize() override { return m_system->smallIconSize(); }
    TrayNativeIcon createIcon(const QImage& image) override { return m_system->createIcon(image); }
    void destroyIcon(TrayNativeIcon icon) override { m_system->destroyIcon(icon); }

private:
    Record& m_record;
    FakeTrayCalls m_shell;
    const std::unique_ptr<TrayCalls> m_system;
};

// The icon with its real window.
struct Bench {
    Bench()
        : icon(std::make_unique<QTrayIconWin>(std::make_unique<CallsWithFakeShell>(record)))
    {
    }
    void post(UINT message, WPARAM wParam, LPARAM lParam) const
    {
        QVERIFY(PostMessageW(toHandle(record.window), message, wParam, lParam) != 0);
    }

    LogCapture log;
    CallsWithFakeShell::Record record;
    std::unique_ptr<QTrayIconWin> icon;
};

class SilentReceiver final : public TrayMessageReceiver {
public:
    std::optional<std::intptr_t> receive(const TrayMessage& message) override
    {
        last = message;
        return answer;
    }

    TrayMessage last;
    std::optional<std::intptr_t> answer;
};

} // namespace

class TrayCallsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { initResources(); }

    void theWindowIsHiddenAndHearsBroadcasts();
    void theWindowIsLeftToTheSystemWhereItHasNoAnswer();
    void aDestroyedWindowIsGone();
    void severalIconsShareTheClass();
    void aDoubleClickActivates();
    void theContextMenuEventOpensTheMenu();
    void aNewStartOfTheShellAddsTheIconAgain();
    void theIconHasTheSystemsSize();
    void anImageBecomesAnIcon();
    void theMessageIsKnownByItsName();
    void messagesAreLetThrough();
    void theShellTakesAnIcon();
    void theSystemHasATray();
};

void TrayCallsTest::theWindowIsHiddenAndHearsBroadcasts()
{
    const Bench bench;
    const HWND window = toHandle(bench.record.window);
    QVERIFY(IsWindow(window) != 0);
    QVERIFY(IsWindowVisible(window) == 0);
    // Broadcasts go to windows that the desktop holds.
    QCOMPARE(GetAncestor(window, GA_PARENT), GetDesktopWindow());
    QVERIFY(GetWindow(window, GW_OWNER) == nullptr);
    std::array<wchar_t, 100> name {};
    GetClassNameW(window, name.data(), static_cast<int>(name.size()));
    QCOMPARE(QString::fromWCharArray(name.data()), QStringLiteral("QTrayIconWinClass"));
    QVERIFY(bench.log.lines().isEmpty());
}

void TrayCallsTest::theWindowIsLeftToTheSystemWhereItHasNoAnswer()
{
    const auto calls = makeTrayCalls();
    SilentReceiver receiver;
    const TrayWindow window = calls->createWindow(QStringLiteral("QTrayIconWinClass"),
                                                  QStringLiteral("QTrayIconWinWindow"), receiver);
    std::array<wchar_t, 100> title {};
    SendMessageW(toHandle(window), WM_GETTEXT, title.size(),
                 reinterpret_cast<LPARAM>(title.data()));
    QCOMPARE(QString::fromWCharArray(title.data()), QStringLiteral("QTrayIconWinWindow"));
    QCOMPARE(receiver.last.number, std::uint32_t { WM_GETTEXT });
    QCOMPARE(receiver.last.wParam, std::uintptr_t { 100 });

    receiver.answer = 4711;
    QCOMPARE(SendMessageW(toHandle(window), WM_APP, 0, 0), LRESULT { 4711 });
    receiver.answer.reset();

    // What comes with the end isn't the receiver's any more.
    receiver.last.number = 0;
    calls->destroyWindow(window);
    QCOMPARE(receiver.last.number, 0U);
}

void TrayCallsTest::aDestroyedWindowIsGone()
{
    Bench bench;
    bench.icon.reset();
    QVERIFY(IsWindow(toHandle(bench.record.window)) == 0);
}

void TrayCallsTest::severalIconsShareTheClass()
{
    const Bench first;
    const Bench second;
    QVERIFY(second.record.window != 0);
    QVERIFY(second.record.window != first.record.window);
    const QSignalSpy activated(first.icon.get(), &QTrayIconPlatform::activated);
    const QSignalSpy others(second.icon.get(), &QTrayIconPlatform::activated);
    first.post(TrayNotification::message, 0, WM_LBUTTONDBLCLK);
    QTRY_COMPARE(activated.count(), 1);
    QCOMPARE(others.count(), 0);
}

void TrayCallsTest::aDoubleClickActivates()
{
    const Bench bench;
    const QSignalSpy activated(bench.icon.get(), &QTrayIconPlatform::activated);
    bench.post(TrayNotification::message, MAKEWPARAM(5, 5), MAKELPARAM(WM_LBUTTONUP, 0));
    bench.post(TrayNotification::message, MAKEWPARAM(5, 5), MAKELPARAM(WM_LBUTTONDBLCLK, 0));
    bench.post(TrayNotification::message, MAKEWPARAM(5, 5), MAKELPARAM(WM_LBUTTONDBLCLK, 0));
    QTRY_COMPARE(activated.count(), 2);
}

void TrayCallsTest::theContextMenuEventOpensTheMenu()
{
    const Bench bench;
    QMenu menu;
    menu.addAction(QStringLiteral("Exit"));
    bench.icon->setContextMenu(&menu);
    bench.post(TrayNotification::message, MAKEWPARAM(120, 130), MAKELPARAM(WM_CONTEXTMENU, 0));
    QTRY_VERIFY(menu.isVisible());
    QCOMPARE(menu.pos(), QPoint(120, 130));
}

void TrayCallsTest::aNewStartOfTheShellAddsTheIconAgain()
{
    Bench bench;
    bench.icon->setVisible(true);
    static_cast<void>(bench.record.shell.takeActions());
    const QSignalSpy restored(bench.icon.get(), &QTrayIconPlatform::iconRestored);
    bench.post(RegisterWindowMessageW(L"TaskbarCreated"), 0, 0);
    QTRY_COMPARE(restored.count(), 1);
    QCOMPARE(bench.record.shell.takeActions(),
             QStringList({ QStringLiteral("add"), QStringLiteral("version") }));
}

void TrayCallsTest::theIconHasTheSystemsSize()
{
    const Bench bench;
    bench.icon->setIcon(TrayIconAlways | TrayIconReading, 45.5);
    const QSize size(GetSystemMetrics(SM_CXSMICON), GetSystemMetrics(SM_CYSMICON));
    QVERIFY(size.width() > 0);
    QCOMPARE(bench.record.iconSize, size);
    // It was given back since.
    QVERIFY(iconSize(bench.record.shell.told.last().notification.icon).isEmpty());
}

void TrayCallsTest::anImageBecomesAnIcon()
{
    const auto calls = makeTrayCalls();
    const QImage image = drawTrayReading(QStringLiteral("46"), 24, 16);
    const TrayNativeIcon icon = calls->createIcon(image);
    QVERIFY(icon != 0);
    QCOMPARE(drawn(icon, 24), image.convertToFormat(QImage::Format_RGB32));
    calls->destroyIcon(icon);
    QVERIFY(iconSize(icon).isEmpty());

    QCOMPARE(calls->createIcon(QImage()), TrayNativeIcon { 0 });
}

void TrayCallsTest::theMessageIsKnownByItsName()
{
    QCOMPARE(makeTrayCalls()->registerMessage(QStringLiteral("TaskbarCreated")),
             std::uint32_t { RegisterWindowMessageW(L"TaskbarCreated") });
}

void TrayCallsTest::messagesAreLetThrough()
{
    const Bench bench;
    const auto calls = makeTrayCalls();
    QVERIFY(calls->hasCurrentVersion());
    QVERIFY(calls->allowMessageToWindow(bench.record.window, WM_APP));
    QVERIFY(calls->allowMessageToProcess(WM_APP));
    QVERIFY(bench.log.lines().isEmpty());
}

void TrayCallsTest::theShellTakesAnIcon()
{
    const Bench bench;
    const auto calls = makeTrayCalls();
    TrayNotification notification = makeTrayNotification(bench.record.window, TrayVersionCurrent);
    QVERIFY(!calls->notify(TrayAction::Modify, notification)); // of an icon that isn't there
    QVERIFY(calls->notify(TrayAction::Add, notification));
    QVERIFY(calls->notify(TrayAction::SetVersion, notification));
    const TrayNativeIcon icon = calls->createIcon(drawTrayReading(QStringLiteral("46"), 16, 11));
    QVERIFY(calls->notify(TrayAction::Modify,
                          makeTrayNotification(bench.record.window, TrayVersionCurrent, icon,
                                               QString(300, QLatin1Char('x')))));
    calls->destroyIcon(icon);
    QVERIFY(calls->notify(TrayAction::Delete, notification));
    QVERIFY(!calls->notify(TrayAction::Delete, notification));
}

void TrayCallsTest::theSystemHasATray()
{
    QVERIFY(isTrayAvailable());
    const auto platform = makeTrayPlatform();
    QVERIFY(qobject_cast<QTrayIconWin*>(platform.get()) != nullptr);
}

BRISORA_TEST_MAIN(TrayCallsTest, QApplication)
#include "test_traycalls_windows.moc"
