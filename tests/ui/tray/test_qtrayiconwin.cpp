#include <QApplication>
#include <QCursor>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>
#include <QWindow>

#include "app/ui/tray/qtrayiconwin.h"
#include "app/ui/tray/traydrawing.h"
#include "resources/resources.h"
#include "tests/support/logcapture.h"
#include "tests/support/testenvironment.h"
#include "tests/ui/tray/faketraycalls.h"
#include "tests/ui/tray/traypicture.h"

namespace {

constexpr std::uint32_t reading = TrayIconAlways | TrayIconReading;
constexpr std::intptr_t contextMenu = 123;
constexpr std::intptr_t doubleClick = 515;

// A place on the screen as the shell tells it.
constexpr std::uintptr_t at(std::uint16_t x, std::uint16_t y) { return x + y * 0x10000U; }

// The icon on a fake Windows.
struct Bench {
    Bench() { make(); }
    void make()
    {
        icon.reset();
        record.calls.clear();
        icon = std::make_unique<QTrayIconWin>(std::make_unique<FakeTrayCalls>(record));
    }
    // The result of a message to the icon's window.
    std::optional<std::intptr_t> send(std::uint32_t number, std::uintptr_t wParam = 0,
                                      std::intptr_t lParam = 0)
    {
        return record.receiver->receive({ number, wParam, lParam });
    }
    [[nodiscard]] TrayNotification lastTold() const { return record.told.last().notification; }

    LogCapture log;
    FakeTrayCalls::Record record;
    std::unique_ptr<QTrayIconWin> icon;
};

} // namespace

class QTrayIconWinTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { initResources(); }

    void theWindowIsMadeFirst();
    void theMessageIsLetThrough_data();
    void theMessageIsLetThrough();
    void showingAddsTheIconAndThenSetsTheVersion();
    void anOlderSystemGetsTheOldVersion();
    void aRefusedIconGetsNoVersion();
    void hidingDeletesTheIcon();
    void theEndDeletesTheIconAndThenItsWindow();
    void withoutAWindowNothingIsDestroyed();
    void thePictureHasTheSystemsSize_data();
    void thePictureHasTheSystemsSize();
    void theNativeIconIsGivenBack();
    void aPictureThatCannotBeMadeChangesNothing();
    void anIconThatCannotBeMadeChangesNothing();
    void theToolTipIsTold();
    void aNewStartOfTheShellBringsTheIconBack();
    void aHiddenIconStaysHidden();
    void aDoubleClickActivates();
    void theMenuOpensAtTheIcon();
    void theMenuOfAnOlderSystemOpensAtTheCursor();
    void withoutAMenuNothingOpens();
    void otherEventsDoNothing();
    void otherMessagesAreTheSystems();
};

void QTrayIconWinTest::theWindowIsMadeFirst()
{
    const Bench bench;
    QCOMPARE(bench.record.calls,
             QStringList({ QStringLiteral("create QTrayIconWinClass QTrayIconWinWindow"),
                           QStringLiteral("register TaskbarCreated"),
                           QStringLiteral("allow c123 to window 77") }));
    QVERIFY(bench.record.told.isEmpty());
    QVERIFY(bench.log.lines().isEmpty());
}

void QTrayIconWinTest::theMessageIsLetThrough_data()
{
    QTest::addColumn<bool>("knowsWindowFilter");
    QTest::addColumn<bool>("knowsProcessFilter");
    QTest::addColumn<QStringList>("expected");
    QTest::addColumn<int>("warnings");
    const QString window = QStringLiteral("allow c123 to window 77");
    const QString process = QStringLiteral("allow c123 to process");
    QTest::newRow("both") << true << true << QStringList { window } << 0;
    QTest::newRow("window only") << true << false << QStringList { window } << 0;
    QTest::newRow("process only") << false << true << QStringList { window, process } << 0;
    QTest::newRow("none") << false << false << QStringList { window, process } << 1;
}

void QTrayIconWinTest::theMessageIsLetThrough()
{
    QFETCH(bool, knowsWindowFilter);
    QFETCH(bool, knowsProcessFilter);
    QFETCH(QStringList, expected);
    QFETCH(int, warnings);
    Bench bench;
    bench.record.knowsWindowFilter = knowsWindowFilter;
    bench.record.knowsProcessFilter = knowsProcessFilter;
    bench.make();

    QCOMPARE(bench.record.calls.filter(QStringLiteral("allow")), expected);
    QCOMPARE(bench.log.lines().size(), warnings);
    // The icon works in every case.
    static_cast<void>(bench.record.takeActions());
    bench.icon->setVisible(true);
    QVERIFY(bench.record.takeActions().contains(QStringLiteral("add")));
}

void QTrayIconWinTest::showingAddsTheIconAndThenSetsTheVersion()
{
    Bench bench;
    bench.icon->setVisible(true);

    const auto told = bench.record.told;
    QCOMPARE(bench.record.takeActions(),
             QStringList({ QStringLiteral("add"), QStringLiteral("version") }));
    for (const auto& one : told) {
        QCOMPARE(one.notification.window, FakeTrayCalls::window);
        QCOMPARE(one.notification.flags, 0x81U);
        QCOMPARE(one.notification.version, 4U);
    }
}

void QTrayIconWinTest::anOlderSystemGetsTheOldVersion()
{
    Bench bench;
    bench.record.hasCurrentVersion = false;
    bench.make();
    bench.icon->setVisible(true);
    QCOMPARE(bench.lastTold().version, 3U);
}

void QTrayIconWinTest::aRefusedIconGetsNoVersion()
{
    Bench bench;
    bench.record.accepts = [](TrayAction) { return false; };
    bench.icon->setVisible(true);
    QCOMPARE(bench.record.takeActions(), QStringList { QStringLiteral("add") });
}

void QTrayIconWinTest::hidingDeletesTheIcon()
{
    Bench bench;
    bench.icon->setVisible(true);
    static_cast<void>(bench.record.takeActions());
    bench.icon->setVisible(false);
    QCOMPARE(bench.lastTold().flags, 0x81U);
    QCOMPARE(bench.record.takeActions(), QStringList { QStringLiteral("delete") });
}

void QTrayIconWinTest::theEndDeletesTheIconAndThenItsWindow()
{
    Bench bench;
    QStringList order;
    bench.record.accepts = [&](TrayAction) {
        order = bench.record.calls.filter(QStringLiteral("destroy"));
        return true;
    };
    bench.icon.reset();
    QCOMPARE(bench.record.takeActions(), QStringList { QStringLiteral("delete") });
    QCOMPARE(order, QStringList());
    QCOMPARE(bench.record.calls.last(), QStringLiteral("destroy 77"));
}

void QTrayIconWinTest::withoutAWindowNothingIsDestroyed()
{
    Bench bench;
    bench.record.hasWindow = false;
    bench.make();
    bench.icon.reset();
    QVERIFY(bench.record.calls.filter(QStringLiteral("destroy")).isEmpty());
}

void QTrayIconWinTest::thePictureHasTheSystemsSize_data()
{
    QTest::addColumn<QSize>("iconSize");
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("largestFont"); // pixels
    QTest::newRow("once") << QSize(16, 16) << 16 << 11;
    QTest::newRow("one and a half") << QSize(24, 24) << 24 << 16;
    QTest::newRow("twice") << QSize(32, 32) << 32 << 21;
    QTest::newRow("no square") << QSize(24, 16) << 16 << 11;
}

void QTrayIconWinTest::thePictureHasTheSystemsSize()
{
    QFETCH(QSize, iconSize);
    QFETCH(int, size);
    QFETCH(int, largestFont);
    Bench bench;
    bench.record.smallIconSize = iconSize;

    bench.icon->setIcon(reading, 45.5);
    QCOMPARE(bench.record.icons.last(), drawTrayReading(QStringLiteral("46"), size, largestFont));

    bench.icon->setIcon(reading, 127.0);
    QVERIFY(TrayPicture(bench.record.icons.last()).hasFrame(Qt::darkBlue));
    QCOMPARE(TrayPicture(bench.record.icons.last()).digitCount(), 3);

    bench.icon->setIcon(TrayIconAlways, -1.0);
    QCOMPARE(bench.record.icons.last(), applicationTrayPicture(size));
}

void QTrayIconWinTest::theNativeIconIsGivenBack()
{
    Bench bench;
    bench.record.accepts = [&bench](TrayAction) { return bench.record.destroyed.isEmpty(); };
    bench.icon->setIcon(reading, 45.5);
    QCOMPARE(bench.record.told.size(), 1);
    QCOMPARE(bench.lastTold().icon, TrayNativeIcon { 1 });
    QCOMPARE(bench.lastTold().flags, 0x83U);
    QCOMPARE(bench.record.takeActions(), QStringList { QStringLiteral("modify") });
    QCOMPARE(bench.record.destroyed, QVector<TrayNativeIcon> { 1 });
}

void QTrayIconWinTest::aPictureThatCannotBeMadeChangesNothing()
{
    Bench bench;
    bench.record.smallIconSize = QSize(0, 0);
    bench.icon->setIcon(reading, 45.5);
    QVERIFY(bench.record.told.isEmpty());
    QVERIFY(bench.record.icons.isEmpty());
}

void QTrayIconWinTest::anIconThatCannotBeMadeChangesNothing()
{
    Bench bench;
    bench.record.canMakeIcons = false;
    bench.icon->setIcon(reading, 45.5);
    QVERIFY(bench.record.told.isEmpty());
    QVERIFY(bench.record.destroyed.isEmpty());
    QCOMPARE(bench.log.lines().size(), 1);
}

void QTrayIconWinTest::theToolTipIsTold()
{
    Bench bench;
    bench.icon->setToolTip(QStringLiteral("Left - 2000 RPM\nRight - 3000 RPM"));
    QCOMPARE(bench.lastTold().tip, QStringLiteral("Left - 2000 RPM\nRight - 3000 RPM"));
    QCOMPARE(bench.lastTold().flags, 0x85U);
    bench.icon->setToolTip(QString(500, QLatin1Char('x')));
    QCOMPARE(bench.lastTold().tip, QString(127, QLatin1Char('x')));
    QCOMPARE(bench.record.takeActions(),
             QStringList({ QStringLiteral("modify"), QStringLiteral("modify") }));
}

void QTrayIconWinTest::aNewStartOfTheShellBringsTheIconBack()
{
    Bench bench;
    bench.icon->setVisible(true);
    static_cast<void>(bench.record.takeActions());
    QStringList toldBefore;
    connect(bench.icon.get(), &QTrayIconPlatform::iconRestored, bench.icon.get(),
            [&] { toldBefore = bench.record.takeActions(); });

    QCOMPARE(bench.send(FakeTrayCalls::taskbarCreated), std::optional<std::intptr_t>(0));

    QCOMPARE(toldBefore, QStringList({ QStringLiteral("add"), QStringLiteral("version") }));
}

void QTrayIconWinTest::aHiddenIconStaysHidden()
{
    Bench bench;
    bench.icon->setVisible(true);
    bench.icon->setVisible(false);
    static_cast<void>(bench.record.takeActions());
    const QSignalSpy restored(bench.icon.get(), &QTrayIconPlatform::iconRestored);

    bench.send(FakeTrayCalls::taskbarCreated);

    QVERIFY(bench.record.told.isEmpty());
    QCOMPARE(restored.count(), 0);
}

void QTrayIconWinTest::aDoubleClickActivates()
{
    Bench bench;
    const QSignalSpy activated(bench.icon.get(), &QTrayIconPlatform::activated);
    QCOMPARE(bench.send(TrayNotification::message, at(5, 5), doubleClick),
             std::optional<std::intptr_t>(0));
    QCOMPARE(activated.count(), 1);
}

void QTrayIconWinTest::theMenuOpensAtTheIcon()
{
    Bench bench;
    QMenu menu;
    menu.addAction(QStringLiteral("Exit"));
    bench.icon->setContextMenu(&menu);
    QCursor::setPos(10, 20);

    QCOMPARE(bench.send(TrayNotification::message, at(120, 130), contextMenu),
             std::optional<std::intptr_t>(0));

    QVERIFY(menu.isVisible());
    QCOMPARE(menu.pos(), QPoint(120, 130));
    QTRY_COMPARE(QGuiApplication::focusWindow(), menu.windowHandle());
}

void QTrayIconWinTest::theMenuOfAnOlderSystemOpensAtTheCursor()
{
    Bench bench;
    bench.record.hasCurrentVersion = false;
    bench.make();
    QMenu menu;
    menu.addAction(QStringLiteral("Exit"));
    bench.icon->setContextMenu(&menu);
    QCursor::setPos(210, 220);
    QTRY_COMPARE(QCursor::pos(), QPoint(210, 220));

    bench.send(TrayNotification::message, at(120, 130), contextMenu);

    QVERIFY(menu.isVisible());
    QCOMPARE(menu.pos(), QPoint(210, 220));
}

void QTrayIconWinTest::withoutAMenuNothingOpens()
{
    Bench bench;
    {
        QMenu menu;
        bench.icon->setContextMenu(&menu);
    }
    QCOMPARE(bench.send(TrayNotification::message, at(120, 130), contextMenu),
             std::optional<std::intptr_t>(0));
    QVERIFY(QApplication::activePopupWidget() == nullptr);
}

void QTrayIconWinTest::otherEventsDoNothing()
{
    Bench bench;
    QMenu menu;
    bench.icon->setContextMenu(&menu);
    const QSignalSpy activated(bench.icon.get(), &QTrayIconPlatform::activated);
    for (const std::intptr_t event : { 512, 513, 514, 516, 517 }) {
        QCOMPARE(bench.send(TrayNotification::message, at(5, 5), event),
                 std::optional<std::intptr_t>(0));
    }
    QCOMPARE(activated.count(), 0);
    QVERIFY(!menu.isVisible());
    QVERIFY(bench.record.told.isEmpty());
}

void QTrayIconWinTest::otherMessagesAreTheSystems()
{
    Bench bench;
    QCOMPARE(bench.send(16, 0, 0), std::optional<std::intptr_t>());
    QCOMPARE(bench.send(515, 0, doubleClick), std::optional<std::intptr_t>());
}

BRISORA_TEST_MAIN(QTrayIconWinTest, QApplication)
#include "test_qtrayiconwin.moc"
