#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

#include <QColor>
#include <QCoreApplication>
#include <QDirIterator>
#include <QImage>
#include <QMap>

#include "resources/resources.h"
#include "tests/support/testenvironment.h"

namespace {

enum class Shown { OnLightAndDark, OnDark };

// An image as the program names it, with its size on a screen without scaling.
struct Listed {
    const char* path;
    int size;
    bool hasDouble;
    Shown shown;
};

constexpr std::array listedImages {
    Listed { ":/Resources/airport.png", 16, true, Shown::OnLightAndDark },
    Listed { ":/Resources/airport_big.png", 32, true, Shown::OnLightAndDark },
    Listed { ":/Resources/christmas_santa.png", 256, true, Shown::OnLightAndDark },
    Listed { ":/Resources/christmas_snowflake.png", 192, true, Shown::OnLightAndDark },
    Listed { ":/Resources/disc.png", 16, true, Shown::OnLightAndDark },
    Listed { ":/Resources/disc_big.png", 32, true, Shown::OnLightAndDark },
    Listed { ":/Resources/drive.png", 16, true, Shown::OnLightAndDark },
    Listed { ":/Resources/drive_big.png", 32, true, Shown::OnLightAndDark },
    Listed { ":/Resources/drive_nvme.png", 16, true, Shown::OnLightAndDark },
    Listed { ":/Resources/drive_nvme_big.png", 32, true, Shown::OnLightAndDark },
    Listed { ":/Resources/drive_ssd.png", 16, true, Shown::OnLightAndDark },
    Listed { ":/Resources/drive_ssd_big.png", 32, true, Shown::OnLightAndDark },
    Listed { ":/Resources/fan.png", 16, true, Shown::OnLightAndDark },
    Listed { ":/Resources/fan_big.png", 32, true, Shown::OnLightAndDark },
    Listed { ":/Resources/gpu.png", 16, true, Shown::OnLightAndDark },
    Listed { ":/Resources/gpu_big.png", 32, true, Shown::OnLightAndDark },
    Listed { ":/Resources/icon_64.png", 64, false, Shown::OnLightAndDark },
    Listed { ":/Resources/icon_128.png", 128, true, Shown::OnLightAndDark },
    Listed { ":/Resources/power-supply.png", 16, true, Shown::OnLightAndDark },
    Listed { ":/Resources/power-supply_big.png", 32, true, Shown::OnLightAndDark },
    Listed { ":/Resources/preferences_general.png", 32, true, Shown::OnLightAndDark },
    Listed { ":/Resources/preferences_menubar.png", 32, true, Shown::OnLightAndDark },
    Listed { ":/Resources/preferences_sensors.png", 32, true, Shown::OnLightAndDark },
    Listed { ":/Resources/processor.png", 16, true, Shown::OnLightAndDark },
    Listed { ":/Resources/processor_big.png", 32, true, Shown::OnLightAndDark },
    Listed { ":/Resources/profiles_action.png", 16, true, Shown::OnLightAndDark },
    Listed { ":/Resources/tray.png", 16, true, Shown::OnLightAndDark },
    Listed { ":/Resources/tray_grey.png", 16, true, Shown::OnLightAndDark },
    Listed { ":/Resources/tray_white.png", 16, true, Shown::OnDark },
    Listed { ":/Resources/warning.png", 32, true, Shown::OnLightAndDark },
    Listed { ":/UpdateChecker/fixed.png", 16, true, Shown::OnLightAndDark },
    Listed { ":/UpdateChecker/improved.png", 16, true, Shown::OnLightAndDark },
    Listed { ":/UpdateChecker/new.png", 16, true, Shown::OnLightAndDark },
};

QString doubleOf(QString path)
{
    return path.replace(QLatin1String(".png"), QLatin1String("@2x.png"));
}

// Calls visit(path, size in pixels, listed) for each file of the images.
template <typename Visit> void forEachFile(const Visit& visit)
{
    for (const Listed& listed : listedImages) {
        const QString path = QString::fromLatin1(listed.path);
        visit(path, listed.size, listed);
        if (listed.hasDouble) {
            visit(doubleOf(path), listed.size * 2, listed);
        }
    }
}

double linear(int channel)
{
    const double value = channel / 255.0;
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

double luminance(QRgb color)
{
    return 0.2126 * linear(qRed(color)) + 0.7152 * linear(qGreen(color))
        + 0.0722 * linear(qBlue(color));
}

// The contrast ratio of two opaque colours, from 1 to 21.
double contrast(QRgb first, QRgb second)
{
    const auto [low, high] = std::minmax({ luminance(first), luminance(second) });
    return (high + 0.05) / (low + 0.05);
}

QRgb over(QRgb color, QRgb background)
{
    const int alpha = qAlpha(color);
    const auto mix
        = [alpha](int above, int below) { return (above * alpha + below * (255 - alpha)) / 255; };
    return qRgb(mix(qRed(color), qRed(background)), mix(qGreen(color), qGreen(background)),
                mix(qBlue(color), qBlue(background)));
}

// How much of what an image draws stands out clearly from a background, from 0 to 1.
double shareThatStandsOut(const QImage& image, QRgb background)
{
    int drawn = 0;
    int clear = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            if (qAlpha(pixel) < 128) {
                continue;
            }
            ++drawn;
            // The ratio that makes a graphic discernible to weak eyes.
            if (contrast(over(pixel, background), background) >= 3) {
                ++clear;
            }
        }
    }
    return drawn == 0 ? 0 : double(clear) / drawn;
}

// Differences below this come from smoothing; two drawings differ by twice as much.
constexpr double samePicture = 4;

// The mean difference of two images of equal size, from 0 to 255.
double meanDifference(const QImage& first, const QImage& second)
{
    const QRgb grey = qRgb(128, 128, 128);
    double sum = 0;
    for (int y = 0; y < first.height(); ++y) {
        for (int x = 0; x < first.width(); ++x) {
            const QRgb one = over(first.pixel(x, y), grey);
            const QRgb other = over(second.pixel(x, y), grey);
            sum += std::abs(qRed(one) - qRed(other)) + std::abs(qGreen(one) - qGreen(other))
                + std::abs(qBlue(one) - qBlue(other));
        }
    }
    return sum / (3.0 * first.width() * first.height());
}

} // namespace

class TestImages : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { initResources(); }

    void imagesHaveTheirSizes_data() { addFiles(); }
    void imagesHaveTheirSizes()
    {
        QFETCH(QString, path);
        QFETCH(int, size);
        const QImage image(path);
        QCOMPARE(image.size(), QSize(size, size));
    }

    void cornersAreTransparent_data() { addFiles(); }
    void cornersAreTransparent()
    {
        QFETCH(QString, path);
        const QImage image(path);
        QVERIFY(image.hasAlphaChannel());
        const int end = image.width() - 1;
        QCOMPARE(qAlpha(image.pixel(0, 0)), 0);
        QCOMPARE(qAlpha(image.pixel(end, 0)), 0);
        QCOMPARE(qAlpha(image.pixel(0, end)), 0);
        QCOMPARE(qAlpha(image.pixel(end, end)), 0);
    }

    void imagesStandOutFromTheirBackgrounds_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QColor>("background");
        const auto addRow = [](const QString& path, const char* color) {
            QTest::addRow("%s on %s", qPrintable(path), color)
                << path << QColor(QLatin1String(color));
        };
        forEachFile([&](const QString& path, int /*size*/, const Listed& listed) {
            addRow(path, "#232323");
            addRow(path, "#2d2d2d");
            if (listed.shown == Shown::OnLightAndDark) {
                addRow(path, "#ffffff");
                addRow(path, "#f0f0f0");
            }
        });
    }
    void imagesStandOutFromTheirBackgrounds()
    {
        QFETCH(QString, path);
        QFETCH(QColor, background);
        const double share = shareThatStandsOut(QImage(path), background.rgb());
        QVERIFY2(share >= 0.2, qPrintable(QString::number(share)));
    }

    void imagesFillTheirPlace_data() { addFiles(); }
    void imagesFillTheirPlace()
    {
        QFETCH(QString, path);
        const QImage image(path);
        int drawn = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                drawn += qAlpha(image.pixel(x, y)) >= 128 ? 1 : 0;
            }
        }
        const double share = double(drawn) / (image.width() * image.height());
        QVERIFY2(share >= 0.35, qPrintable(QString::number(share)));
    }

    void aDoubleShowsTheSamePicture_data()
    {
        QTest::addColumn<QString>("path");
        for (const Listed& listed : listedImages) {
            if (listed.hasDouble) {
                QTest::newRow(listed.path) << QString::fromLatin1(listed.path);
            }
        }
    }
    void aDoubleShowsTheSamePicture()
    {
        QFETCH(QString, path);
        const QImage single(path);
        const QImage twice(doubleOf(path));
        QCOMPARE(twice.size(), single.size() * 2);
        const QImage halved
            = twice.scaled(single.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                  .convertToFormat(QImage::Format_ARGB32);
        const double difference = meanDifference(single, halved);
        QVERIFY2(difference < samePicture, qPrintable(QString::number(difference)));
    }

    void noTwoFilesShowTheSame()
    {
        QMap<QString, QImage> seen;
        forEachFile([&](const QString& path, int size, const Listed& /*listed*/) {
            const QImage image(path);
            for (auto other = seen.cbegin(); other != seen.cend(); ++other) {
                if (other->width() == size) {
                    const double difference = meanDifference(image, *other);
                    QVERIFY2(difference > samePicture,
                             qPrintable(path + QLatin1Char(' ') + other.key()));
                }
            }
            seen.insert(path, image);
        });
        QVERIFY(seen.size() > int(listedImages.size()));
    }

    void everyPackedImageIsListed()
    {
        QStringList listed;
        forEachFile(
            [&](const QString& path, int /*size*/, const Listed& /*listed*/) { listed += path; });
        QStringList packed;
        for (const char* folder : { ":/Resources", ":/UpdateChecker" }) {
            QDirIterator files(QString::fromLatin1(folder), { QStringLiteral("*.png") });
            while (files.hasNext()) {
                packed += files.next();
            }
        }
        listed.sort();
        packed.sort();
        QCOMPARE(packed, listed);
    }

private:
    static void addFiles()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<int>("size");
        forEachFile([](const QString& path, int size, const Listed& /*listed*/) {
            QTest::newRow(qPrintable(path)) << path << size;
        });
    }
};

BRISORA_TEST_MAIN(TestImages, QCoreApplication)

#include "test_images.moc"
