#include <QApplication>
#include <QMenu>
#include <QSignalSpy>
#include <QSystemTrayIcon>
#include <QTest>

#include "app/ui/tray/qtrayiconlinux.h"
#include "app/ui/tray/traydrawing.h"
#include "resources/resources.h"
#include "tests/support/testenvironment.h"

namespace {

QImage shown(const QSystemTrayIcon& icon)
{
    return icon.icon().pixmap(QSize(22, 22)).toImage().convertToFormat(QImage::Format_ARGB32);
}

} // namespace

class QTrayIconLinuxTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { initResources(); }

    void itHasAPictureFromTheStart();
    void itShowsAReading();
    void itIsShownAndHidden();
    void itHasToolTipAndMenu();
    void oneActivationIsToldOnce_data();
    void oneActivationIsToldOnce();
};

void QTrayIconLinuxTest::itHasAPictureFromTheStart()
{
    QTrayIconLinux platform;
    const auto* icon = platform.findChild<QSystemTrayIcon*>();
    QVERIFY(!icon->icon().isNull());
    QVERIFY(!icon->isVisible());
}

void QTrayIconLinuxTest::itShowsAReading()
{
    QTrayIconLinux platform;
    const auto* icon = platform.findChild<QSystemTrayIcon*>();
    const QImage plain = shown(*icon);

    platform.setIcon(TrayIconAlways | TrayIconReading, 45.5);
    QCOMPARE(shown(*icon), drawTrayReading(QStringLiteral("46"), 22, 22));

    platform.setIcon(TrayIconAlways | TrayIconReading, 0.0);
    QCOMPARE(shown(*icon), plain);
}

void QTrayIconLinuxTest::itIsShownAndHidden()
{
    QTrayIconLinux platform;
    const auto* icon = platform.findChild<QSystemTrayIcon*>();
    platform.setVisible(true);
    QVERIFY(icon->isVisible());
    platform.setVisible(false);
    QVERIFY(!icon->isVisible());
}

void QTrayIconLinuxTest::itHasToolTipAndMenu()
{
    QTrayIconLinux platform;
    QMenu menu;
    platform.setContextMenu(&menu);
    platform.setToolTip(QStringLiteral("Left - 2000 RPM\nRight - 3000 RPM"));
    const auto* icon = platform.findChild<QSystemTrayIcon*>();
    QCOMPARE(icon->contextMenu(), &menu);
    QCOMPARE(icon->toolTip(), QStringLiteral("Left - 2000 RPM\nRight - 3000 RPM"));
}

void QTrayIconLinuxTest::oneActivationIsToldOnce_data()
{
    using Reasons = QVector<int>;
    QTest::addColumn<Reasons>("reasons");
    QTest::addColumn<int>("expected");
    QTest::newRow("click") << Reasons { QSystemTrayIcon::Trigger } << 1;
    QTest::newRow("double click") << Reasons { QSystemTrayIcon::Trigger,
                                               QSystemTrayIcon::DoubleClick }
                                  << 1;
    QTest::newRow("middle click") << Reasons { QSystemTrayIcon::MiddleClick } << 0;
    QTest::newRow("menu") << Reasons { QSystemTrayIcon::Context } << 0;
}

void QTrayIconLinuxTest::oneActivationIsToldOnce()
{
    QFETCH(QVector<int>, reasons);
    QFETCH(int, expected);
    QTrayIconLinux platform;
    const QSignalSpy activations(&platform, &QTrayIconPlatform::activated);
    auto* icon = platform.findChild<QSystemTrayIcon*>();
    for (const int reason : reasons) {
        Q_EMIT icon->activated(static_cast<QSystemTrayIcon::ActivationReason>(reason));
    }
    QCOMPARE(activations.count(), expected);
}

BRISORA_TEST_MAIN(QTrayIconLinuxTest, QApplication)
#include "test_qtrayiconlinux.moc"
