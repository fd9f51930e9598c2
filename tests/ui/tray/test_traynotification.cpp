#include <QTest>

#include "app/ui/tray/traynotification.h"
#include "tests/support/testenvironment.h"

namespace {

constexpr TrayWindow window = 77;
constexpr TrayNativeIcon icon = 99;
constexpr std::uint32_t taskbarCreated = 0xC123;

// The parameter of the shell's message in its current version: the event and the
// icon's id.
constexpr std::intptr_t currentParameter(int event, int id = 0) { return event + id * 0x10000; }

std::uintptr_t anchor(int x, int y)
{
    return static_cast<std::uint16_t>(x)
        + static_cast<std::uintptr_t>(static_cast<std::uint16_t>(y)) * 0x10000;
}

} // namespace

class TrayNotificationTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theRecordIsTheSameForAllActions();
    void theFlagsTellWhatIsThere_data();
    void theFlagsTellWhatIsThere();
    void aLongTipIsCut_data();
    void aLongTipIsCut();
    void halfACharacterIsLeftOut();
    void aMessageHasItsMeaning_data();
    void aMessageHasItsMeaning();
    void aMessageWithoutNumberIsNoNewStart();
    void thePositionIsInTheCoordinatesOfWindows_data();
    void thePositionIsInTheCoordinatesOfWindows();
};

Q_DECLARE_METATYPE(TrayEvent)

void TrayNotificationTest::theRecordIsTheSameForAllActions()
{
    const TrayNotification notification = makeTrayNotification(window, TrayVersionOld);
    QCOMPARE(notification.size, 952U);
    QCOMPARE(notification.window, window);
    QCOMPARE(notification.id, 0U);
    QCOMPARE(notification.callbackMessage, 32869U);
    QCOMPARE(notification.version, 3U);
    QCOMPARE(makeTrayNotification(window, TrayVersionCurrent).version, 4U);
}

void TrayNotificationTest::theFlagsTellWhatIsThere_data()
{
    QTest::addColumn<TrayNativeIcon>("nativeIcon");
    QTest::addColumn<QString>("tip");
    QTest::addColumn<std::uint32_t>("flags");
    const QString tip = QStringLiteral("tip");
    QTest::newRow("nothing") << TrayNativeIcon { 0 } << QString() << 0x81U;
    QTest::newRow("an icon") << icon << QString() << 0x83U;
    QTest::newRow("a tip") << TrayNativeIcon { 0 } << tip << 0x85U;
    QTest::newRow("both") << icon << tip << 0x87U;
}

void TrayNotificationTest::theFlagsTellWhatIsThere()
{
    QFETCH(TrayNativeIcon, nativeIcon);
    QFETCH(QString, tip);
    QFETCH(std::uint32_t, flags);
    const TrayNotification notification
        = makeTrayNotification(window, TrayVersionCurrent, nativeIcon, tip);
    QCOMPARE(notification.flags, flags);
    QCOMPARE(notification.icon, nativeIcon);
    QCOMPARE(notification.tip, tip);
}

void TrayNotificationTest::aLongTipIsCut_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("expected");
    QTest::newRow("one less") << 126 << 126;
    QTest::newRow("just fits") << 127 << 127;
    QTest::newRow("one more") << 128 << 127;
    QTest::newRow("long") << 1000 << 127;
}

void TrayNotificationTest::aLongTipIsCut()
{
    QFETCH(int, length);
    QFETCH(int, expected);
    const QString tip(length, QLatin1Char('x'));
    QCOMPARE(makeTrayNotification(window, TrayVersionCurrent, 0, tip).tip, tip.left(expected));
}

void TrayNotificationTest::halfACharacterIsLeftOut()
{
    const QString start(126, QLatin1Char('x'));
    const QString tip = start + QString::fromUtf8("\xF0\x9F\x8C\x80"); // two code units
    QCOMPARE(makeTrayNotification(window, TrayVersionCurrent, 0, tip).tip, start);
    const QString fitting = tip.mid(1);
    QCOMPARE(makeTrayNotification(window, TrayVersionCurrent, 0, fitting).tip, fitting);
}

void TrayNotificationTest::aMessageHasItsMeaning_data()
{
    QTest::addColumn<std::uint32_t>("number");
    QTest::addColumn<std::intptr_t>("lParam");
    QTest::addColumn<std::uint32_t>("version");
    QTest::addColumn<TrayEvent>("expected");
    const auto row = [](const char* name, std::uint32_t number, std::intptr_t lParam,
                        std::uint32_t version, TrayEvent expected) {
        QTest::newRow(name) << number << lParam << version << expected;
    };
    row("menu", 32869, currentParameter(123), 4, TrayEvent::MenuRequested);
    row("menu of an icon with an id", 32869, currentParameter(123, 5), 4, TrayEvent::MenuRequested);
    row("menu, old", 32869, 123, 3, TrayEvent::MenuRequested);
    row("the old form has no id", 32869, currentParameter(123, 5), 3, TrayEvent::Ignored);
    row("double click", 32869, currentParameter(515), 4, TrayEvent::Activated);
    row("double click of an icon with an id", 32869, currentParameter(515, 1), 4,
        TrayEvent::Activated);
    row("double click, old", 32869, 515, 3, TrayEvent::Activated);
    row("click", 32869, currentParameter(514), 4, TrayEvent::Ignored);
    row("mouse move", 32869, currentParameter(512), 4, TrayEvent::Ignored);
    row("new start", taskbarCreated, 0, 4, TrayEvent::IconLost);
    row("new start with a parameter", taskbarCreated, 515, 3, TrayEvent::IconLost);
    row("one more than the shell's message", 32870, 123, 4, TrayEvent::Foreign);
    row("menu of a window", 123, 123, 4, TrayEvent::Foreign);
    row("double click in a window", 515, 515, 4, TrayEvent::Foreign);
}

void TrayNotificationTest::aMessageHasItsMeaning()
{
    QFETCH(std::uint32_t, number);
    QFETCH(std::intptr_t, lParam);
    QFETCH(std::uint32_t, version);
    QFETCH(TrayEvent, expected);
    QCOMPARE(trayEvent({ number, 0, lParam }, static_cast<TrayVersion>(version), taskbarCreated),
             expected);
}

void TrayNotificationTest::aMessageWithoutNumberIsNoNewStart()
{
    // The number is 0 when the system has given none.
    QCOMPARE(trayEvent({ 0, 0, 0 }, TrayVersionCurrent, 0), TrayEvent::Foreign);
}

void TrayNotificationTest::thePositionIsInTheCoordinatesOfWindows_data()
{
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("y");
    QTest::addColumn<double>("ratio");
    QTest::addColumn<QPoint>("expected");
    QTest::newRow("plain") << 1900 << 1070 << 1.0 << QPoint(1900, 1070);
    QTest::newRow("one and a half") << 1900 << 1070 << 1.5 << QPoint(1267, 713);
    QTest::newRow("twice") << 1900 << 1070 << 2.0 << QPoint(950, 535);
    QTest::newRow("left of the first screen") << -300 << 20 << 1.0 << QPoint(-300, 20);
    QTest::newRow("above the first screen") << 20 << -300 << 2.0 << QPoint(10, -150);
    QTest::newRow("far") << 32767 << -32768 << 1.0 << QPoint(32767, -32768);
}

void TrayNotificationTest::thePositionIsInTheCoordinatesOfWindows()
{
    QFETCH(int, x);
    QFETCH(int, y);
    QFETCH(double, ratio);
    QFETCH(QPoint, expected);
    QCOMPARE(trayEventPosition({ TrayNotification::message, anchor(x, y), 123 }, ratio), expected);
}

BRISORA_TEST_MAIN(TrayNotificationTest, QCoreApplication)
#include "test_traynotification.moc"
