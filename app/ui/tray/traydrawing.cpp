#include "app/ui/tray/traydrawing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>

#include <QFont>
#include <QPainter>

#include "app/ui/tray/qtrayiconplatform.h"

namespace {

// Paler pixels don't count as part of a digit. Cut off at its left and right, they
// leave clear edges and the room for a larger font.
constexpr int palest = 128; // of 255

struct ApplicationPicture {
    int size;
    const char* file;
};
constexpr std::array<ApplicationPicture, 4> applicationPictures { {
    { 16, ":/Resources/tray.png" },
    { 32, ":/Resources/tray@2x.png" },
    { 64, ":/Resources/icon_64.png" },
    { 128, ":/Resources/icon_128.png" },
} };

// Between digits, and around them: one pixel for each 16.
int unit(int size) { return std::max(1, size / 16); }

QImage transparentImage(int width, int height)
{
    QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

// Thin strokes of a font without hints are spread over two pale pixels: what is nearly
// opaque becomes so, and what is nearly clear as well.
void sharpen(QImage& image)
{
    constexpr int clear = 40; // of 255
    constexpr int opaque = 170;
    for (int y = 0; y < image.height(); ++y) {
        auto* const begin = reinterpret_cast<QRgb*>(image.scanLine(y));
        std::transform(begin, begin + image.width(), begin, [](QRgb pixel) {
            const int alpha = (qAlpha(pixel) - clear) * 255 / (opaque - clear);
            return qPremultiply(qRgba(255, 255, 255, std::clamp(alpha, 0, 255)));
        });
    }
}

// A null rectangle when nothing of the image can be seen.
QRect visiblePart(const QImage& image)
{
    QRect part;
    for (int y = 0; y < image.height(); ++y) {
        const auto* const begin = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        const auto* const end = begin + image.width();
        const auto isVisible = [](QRgb pixel) { return qAlpha(pixel) > palest; };
        const auto* const first = std::find_if(begin, end, isVisible);
        if (first != end) {
            const auto last
                = std::find_if(std::reverse_iterator(end), std::reverse_iterator(first), isVisible);
            part |= QRect(QPoint(static_cast<int>(first - begin), y),
                          QPoint(static_cast<int>(last.base() - begin) - 1, y));
        }
    }
    return part;
}

// Digits on whole pixels, each drawn by itself: in a line of text they would lie
// between pixels and blur.
class DigitPainter {
public:
    explicit DigitPainter(int fontSize)
        : m_fontSize(fontSize)
    {
        m_font.setPixelSize(fontSize);
        m_font.setHintingPreference(QFont::PreferFullHinting);
        // Coloured edges are for text on a known background at a known place.
        m_font.setStyleStrategy(
            static_cast<QFont::StyleStrategy>(QFont::PreferAntialias | QFont::NoSubpixelAntialias));
    }

    // Of a place with room for any digit; empty when the font has none.
    [[nodiscard]] QSize placeSize() const
    {
        int width = 0;
        QRect all;
        for (char digit = '0'; digit <= '9'; ++digit) {
            const QRect part = visiblePart(drawDigit(QLatin1Char(digit)));
            width = std::max(width, part.width());
            all |= part;
        }
        return { width, all.height() };
    }

    // Just as large as the digits.
    [[nodiscard]] QImage drawDigits(const QString& digits, int gap) const
    {
        QImage line = transparentImage(digits.size() * (m_fontSize + gap), placeHeight(m_fontSize));
        QPainter painter(&line);
        int x = 0;
        for (const QChar digit : digits) {
            const QImage image = drawDigit(digit);
            const QRect part = visiblePart(image);
            painter.drawImage(x, 0, image, part.x(), 0, part.width(), image.height());
            x += part.width() + gap;
        }
        painter.end();
        return line.copy(visiblePart(line));
    }

private:
    // Digits stand on the base line and are no higher than the font.
    static int placeHeight(int fontSize) { return fontSize + fontSize / 2; }

    [[nodiscard]] QImage drawDigit(QChar digit) const
    {
        QImage image = transparentImage(2 * m_fontSize, placeHeight(m_fontSize));
        QPainter painter(&image);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
        painter.setPen(QPen(Qt::white, 1.0));
        painter.setFont(m_font);
        painter.drawText(QPoint(m_fontSize / 2, m_fontSize + m_fontSize / 4), digit);
        painter.end();
        sharpen(image);
        return image;
    }

    const int m_fontSize;
    QFont m_font; // the application's own
};

// The size of the digits in a line. From 1 to 99 degrees there is room for any two, so
// that the font stays the same.
QSize lineSize(const QString& digits, const DigitPainter& digitPainter, int gap)
{
    if (digits.size() > 2) {
        return digitPainter.drawDigits(digits, gap).size();
    }
    const QSize place = digitPainter.placeSize();
    return place.isEmpty() ? QSize() : QSize(2 * place.width() + gap, place.height());
}

// A font a little larger than the largest with room for the digits, to save the
// drawing of all that are larger still. 0 when no font draws any.
int fontToTryFirst(const QString& digits, int room, int gap)
{
    const QSize line = room > 0 ? lineSize(digits, DigitPainter(room), gap) : QSize();
    if (line.isEmpty()) {
        return 0;
    }
    // Each font rounds its digits to whole pixels in its own way.
    constexpr int rounding = 2;
    return room * room / std::max(line.width(), line.height()) + rounding;
}

} // namespace

QString trayReadingText(std::uint32_t flags, double value)
{
    const bool isReading = (flags & TrayIconReading) != 0 && std::isfinite(value) && value > 0.0;
    return isReading ? QString::number(std::round(value), 'f', 0) : QString();
}

QImage drawTrayReading(const QString& digits, int size, int largestFont)
{
    const int gap = unit(size);
    const int room = size - 2 * gap;
    for (int fontSize = std::min(largestFont, fontToTryFirst(digits, room, gap)); fontSize > 0;
         --fontSize) {
        const DigitPainter digitPainter(fontSize);
        const QSize needed = lineSize(digits, digitPainter, gap);
        if (needed.isEmpty() || needed.width() > room || needed.height() > room) {
            continue;
        }
        const QImage line = digitPainter.drawDigits(digits, gap);
        QImage image(size, size, QImage::Format_ARGB32);
        image.fill(Qt::darkBlue);
        QPainter painter(&image);
        painter.drawImage((size - line.width()) / 2, (size - line.height()) / 2, line);
        return image;
    }
    return {};
}

QImage applicationTrayPicture(int size)
{
    const auto* source
        = std::find_if(applicationPictures.begin(), applicationPictures.end(),
                       [size](const ApplicationPicture& picture) { return picture.size >= size; });
    if (source == applicationPictures.end()) {
        --source;
    }
    QImage image(QString::fromLatin1(source->file));
    // The name of a file may have given it another one.
    image.setDevicePixelRatio(1.0);
    return image.isNull() || image.width() == size
        ? image
        : image.scaled(size, size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

QImage drawTrayPicture(const QString& digits, int size, int largestFont)
{
    const QImage reading = digits.isEmpty() ? QImage() : drawTrayReading(digits, size, largestFont);
    return reading.isNull() ? applicationTrayPicture(size) : reading;
}
