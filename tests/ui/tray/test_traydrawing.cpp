#include <limits>

#include <QGuiApplication>
#include <QTest>

#include "app/ui/tray/qtrayiconplatform.h"
#include "app/ui/tray/traydrawing.h"
#include "resources/resources.h"
#include "tests/support/testenvironment.h"
#include "tests/ui/tray/traypicture.h"

namespace {

constexpr std::uint32_t reading = TrayIconAlways | TrayIconReading;

// Those of panels and notification areas at once, one and a half times and twice
// the usual density.
constexpr int sizes[] = { 16, 20, 22, 24, 26, 32, 33, 44, 48, 64 };

} // namespace

class TrayDrawingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { initResources(); }

    void aReadingIsRounded_data();
    void aReadingIsRounded();
    void whatIsNoReadingGivesNoText_data();
    void whatIsNoReadingGivesNoText();
    void theDigitsStandInADarkBlueSquare_data();
    void theDigitsStandInADarkBlueSquare();
    void theDigitsAreAsLargeAsFits_data();
    void theDigitsAreAsLargeAsFits();
    void theLargestFontIsKept();
    void oneAndTwoDigitsHaveTheSameFont();
    void eachSizeIsDrawnByItself();
    void whatHasNoRoomIsNotDrawn();
    void theApplicationsPictureHasTheWantedSize_data();
    void theApplicationsPictureHasTheWantedSize();
    void withoutDigitsThePictureIsTheApplications();
};

void TrayDrawingTest::aReadingIsRounded_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("expected");
    QTest::newRow("whole") << 78.0 << QStringLiteral("78");
    QTest::newRow("half") << 45.5 << QStringLiteral("46");
    QTest::newRow("less than half") << 45.49 << QStringLiteral("45");
    QTest::newRow("one digit") << 5.2 << QStringLiteral("5");
    QTest::newRow("below 100") << 99.4 << QStringLiteral("99");
    QTest::newRow("becomes 100") << 99.5 << QStringLiteral("100");
    QTest::newRow("hottest") << 127.9 << QStringLiteral("128");
}

void TrayDrawingTest::aReadingIsRounded()
{
    QFETCH(double, value);
    QFETCH(QString, expected);
    QCOMPARE(trayReadingText(reading, value), expected);
    QCOMPARE(trayReadingText(reading | TrayIconPrecise, value), expected);
}

void TrayDrawingTest::whatIsNoReadingGivesNoText_data()
{
    QTest::addColumn<std::uint32_t>("flags");
    QTest::addColumn<double>("value");
    const std::uint32_t none = TrayIconAlways;
    QTest::newRow("no sensor") << none << -1.0;
    QTest::newRow("a value without a sensor") << (none | TrayIconPrecise) << 45.0;
    QTest::newRow("never read") << reading << 0.0;
    QTest::newRow("negative") << reading << -5.0;
    QTest::newRow("no number") << reading << std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("infinite") << reading << std::numeric_limits<double>::infinity();
}

void TrayDrawingTest::whatIsNoReadingGivesNoText()
{
    QFETCH(std::uint32_t, flags);
    QFETCH(double, value);
    QCOMPARE(trayReadingText(flags, value), QString());
}

void TrayDrawingTest::theDigitsStandInADarkBlueSquare_data()
{
    QTest::addColumn<QString>("digits");
    QTest::addColumn<int>("size");
    for (const char* digits : { "5", "11", "46", "78", "88", "100", "127" }) {
        for (const int size : sizes) {
            QTest::addRow("%s at %d", digits, size) << QString::fromLatin1(digits) << size;
        }
    }
}

void TrayDrawingTest::theDigitsStandInADarkBlueSquare()
{
    QFETCH(QString, digits);
    QFETCH(int, size);
    const QImage image = drawTrayReading(digits, size, size);

    QCOMPARE(image.size(), QSize(size, size));
    QCOMPARE(image.format(), QImage::Format_ARGB32);
    const TrayPicture picture(image);
    QVERIFY(picture.hasFrame(Qt::darkBlue));
    QVERIFY(picture.isCentred());
    QCOMPARE(picture.digitCount(), digits.size());
    // No less than a line of one pixel as high as a digit.
    QVERIFY(picture.whiteCount() >= picture.digits().height() / 2);
}

void TrayDrawingTest::theDigitsAreAsLargeAsFits_data()
{
    QTest::addColumn<int>("size");
    for (const int size : sizes) {
        QTest::addRow("%d", size) << size;
    }
}

void TrayDrawingTest::theDigitsAreAsLargeAsFits()
{
    QFETCH(int, size);
    const QRect two = TrayPicture(drawTrayReading(QStringLiteral("48"), size, size)).digits();
    QVERIFY(two.width() >= size * 3 / 4);
    QVERIFY(two.height() >= size * 4 / 10);

    const QRect three = TrayPicture(drawTrayReading(QStringLiteral("108"), size, size)).digits();
    QVERIFY(three.width() >= size * 2 / 3);
    QVERIFY(three.height() <= two.height());
}

void TrayDrawingTest::theLargestFontIsKept()
{
    constexpr int size = 64;
    constexpr int largestFont = 20;
    const QRect rect
        = TrayPicture(drawTrayReading(QStringLiteral("48"), size, largestFont)).digits();
    QVERIFY(rect.height() <= largestFont);
    QVERIFY(rect.height() >= largestFont / 2);
}

void TrayDrawingTest::oneAndTwoDigitsHaveTheSameFont()
{
    for (const int size : { 16, 24, 32 }) {
        const int height
            = TrayPicture(drawTrayReading(QStringLiteral("11"), size, size)).digits().height();
        for (int degrees = 1; degrees < 100; ++degrees) {
            const QImage image = drawTrayReading(QString::number(degrees), size, size);
            const int difference = TrayPicture(image).digits().height() - height;
            // Round digits are a little higher.
            QVERIFY2(difference >= 0 && difference <= 1 + size / 24,
                     qPrintable(QStringLiteral("%1 at %2").arg(degrees).arg(size)));
        }
    }
}

void TrayDrawingTest::eachSizeIsDrawnByItself()
{
    const QImage small = drawTrayReading(QStringLiteral("46"), 16, 16);
    const QImage large = drawTrayReading(QStringLiteral("46"), 32, 32);
    QVERIFY(large != small.scaled(32, 32));
    QVERIFY(large != small.scaled(32, 32, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
}

void TrayDrawingTest::whatHasNoRoomIsNotDrawn()
{
    QVERIFY(drawTrayReading(QString(40, QLatin1Char('8')), 16, 16).isNull());
    QVERIFY(drawTrayReading(QStringLiteral("46"), 2, 2).isNull());
    QVERIFY(drawTrayReading(QStringLiteral("46"), 0, 0).isNull());
    QCOMPARE(drawTrayPicture(QString(40, QLatin1Char('8')), 16, 16), applicationTrayPicture(16));
}

void TrayDrawingTest::theApplicationsPictureHasTheWantedSize_data()
{
    QTest::addColumn<int>("size");
    for (const int size : { 1, 16, 24, 32, 48, 64, 128, 200 }) {
        QTest::addRow("%d", size) << size;
    }
}

void TrayDrawingTest::theApplicationsPictureHasTheWantedSize()
{
    QFETCH(int, size);
    const QImage image = applicationTrayPicture(size);
    QCOMPARE(image.size(), QSize(size, size));
    QCOMPARE(image.devicePixelRatio(), 1.0);
}

void TrayDrawingTest::withoutDigitsThePictureIsTheApplications()
{
    QCOMPARE(drawTrayPicture(QString(), 16, 16), applicationTrayPicture(16));
    QCOMPARE(drawTrayPicture(QStringLiteral("46"), 16, 16),
             drawTrayReading(QStringLiteral("46"), 16, 16));
}

BRISORA_TEST_MAIN(TrayDrawingTest, QGuiApplication)
#include "test_traydrawing.moc"
