#include <QGuiApplication>
#include <QIcon>
#include <QPainter>
#include <QPixmap>
#include <QTest>

#include "app/ui/tray/traydrawing.h"
#include "app/ui/tray/trayiconengine.h"
#include "resources/resources.h"
#include "tests/support/testenvironment.h"

namespace {

QImage drawn(const QString& digits, int size)
{
    return drawTrayPicture(digits, size, size).convertToFormat(QImage::Format_ARGB32);
}

QImage shown(const QIcon& icon, const QSize& size)
{
    return icon.pixmap(size).toImage().convertToFormat(QImage::Format_ARGB32);
}

const QString digits = QStringLiteral("46");

} // namespace

class TrayIconEngineTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { initResources(); }

    void usualPanelsAreOfferedTheirSize();
    void anySizeIsDrawnByItself_data();
    void anySizeIsDrawnByItself();
    void whatIsNoSquareHoldsOne();
    void itIsPaintedInDevicePixels_data();
    void itIsPaintedInDevicePixels();
    void withoutDigitsItIsTheApplications();
    void aCopyShowsTheSame();
};

void TrayIconEngineTest::usualPanelsAreOfferedTheirSize()
{
    QList<int> sizes;
    const QList<QSize> available = trayIcon(digits).availableSizes();
    for (const QSize& size : available) {
        QCOMPARE(size.width(), size.height());
        sizes.append(size.width());
    }
    QCOMPARE(sizes, QList<int>({ 16, 22, 24, 32, 44, 48, 64 }));
}

void TrayIconEngineTest::anySizeIsDrawnByItself_data()
{
    QTest::addColumn<int>("size");
    for (const int size : { 16, 22, 24, 26, 32, 44, 48, 64, 100 }) {
        QTest::addRow("%d", size) << size;
    }
}

void TrayIconEngineTest::anySizeIsDrawnByItself()
{
    QFETCH(int, size);
    QCOMPARE(shown(trayIcon(digits), QSize(size, size)), drawn(digits, size));
}

void TrayIconEngineTest::whatIsNoSquareHoldsOne()
{
    const QIcon icon = trayIcon(digits);
    QCOMPARE(icon.actualSize(QSize(40, 22)), QSize(22, 22));
    QCOMPARE(shown(icon, QSize(22, 40)), drawn(digits, 22));
}

void TrayIconEngineTest::itIsPaintedInDevicePixels_data()
{
    QTest::addColumn<double>("ratio");
    QTest::addColumn<int>("pixels");
    QTest::newRow("once") << 1.0 << 24;
    QTest::newRow("one and a half") << 1.5 << 36;
    QTest::newRow("twice") << 2.0 << 48;
}

void TrayIconEngineTest::itIsPaintedInDevicePixels()
{
    QFETCH(double, ratio);
    QFETCH(int, pixels);
    QImage panel(2 * pixels, pixels, QImage::Format_ARGB32);
    panel.fill(Qt::transparent);
    panel.setDevicePixelRatio(ratio);
    QPainter painter(&panel);
    trayIcon(digits).paint(&painter, QRect(0, 0, 48, 24));
    painter.end();

    // In the middle of a place that is too wide.
    panel.setDevicePixelRatio(1.0);
    QCOMPARE(panel.copy(pixels / 2, 0, pixels, pixels), drawn(digits, pixels));
    QCOMPARE(panel.pixelColor(pixels / 2 - 1, pixels / 2).alpha(), 0);
}

void TrayIconEngineTest::withoutDigitsItIsTheApplications()
{
    QCOMPARE(shown(trayIcon(QString()), QSize(22, 22)), drawn(QString(), 22));
    QVERIFY(shown(trayIcon(QString()), QSize(22, 22)) != drawn(digits, 22));
}

void TrayIconEngineTest::aCopyShowsTheSame()
{
    QIcon copy = trayIcon(digits);
    copy.detach();
    QCOMPARE(shown(copy, QSize(22, 22)), drawn(digits, 22));
}

BRISORA_TEST_MAIN(TrayIconEngineTest, QGuiApplication)
#include "test_trayiconengine.moc"
