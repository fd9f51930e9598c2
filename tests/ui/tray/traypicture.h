#pragma once

#include <cstdlib>

#include <QImage>
#include <QRect>

// A picture of the tray icon, as a test looks at it.
class TrayPicture {
public:
    explicit TrayPicture(const QImage& image)
        : m_image(image.convertToFormat(QImage::Format_ARGB32))
    {
    }

    // The rectangle of what is so light that it is seen as white.
    [[nodiscard]] QRect digits() const
    {
        QRect rect;
        for (int y = 0; y < m_image.height(); ++y) {
            for (int x = 0; x < m_image.width(); ++x) {
                if (isLight(x, y)) {
                    rect |= QRect(x, y, 1, 1);
                }
            }
        }
        return rect;
    }

    // As many as there are columns of digits with dark ones between them.
    [[nodiscard]] int digitCount() const
    {
        int count = 0;
        bool wasLight = false;
        for (int x = 0; x < m_image.width(); ++x) {
            bool light = false;
            for (int y = 0; y < m_image.height(); ++y) {
                light |= isLight(x, y);
            }
            count += light && !wasLight ? 1 : 0;
            wasLight = light;
        }
        return count;
    }

    // Within one pixel.
    [[nodiscard]] bool isCentred() const
    {
        const QRect rect = digits();
        const int right = m_image.width() - 1 - rect.right();
        const int bottom = m_image.height() - 1 - rect.bottom();
        return std::abs(rect.left() - right) <= 1 && std::abs(rect.top() - bottom) <= 1;
    }

    // Whether the outermost pixels all have this colour: nothing is cut off.
    [[nodiscard]] bool hasFrame(const QColor& color) const
    {
        for (int y = 0; y < m_image.height(); ++y) {
            for (int x = 0; x < m_image.width(); ++x) {
                const bool isOutermost
                    = x == 0 || y == 0 || x == m_image.width() - 1 || y == m_image.height() - 1;
                if (isOutermost && m_image.pixelColor(x, y) != color) {
                    return false;
                }
            }
        }
        return true;
    }

    // How many pixels are as white as the pen, which those of blurred digits aren't.
    [[nodiscard]] int whiteCount() const
    {
        int count = 0;
        for (int y = 0; y < m_image.height(); ++y) {
            for (int x = 0; x < m_image.width(); ++x) {
                count += qRed(m_image.pixel(x, y)) > 240 ? 1 : 0;
            }
        }
        return count;
    }

private:
    [[nodiscard]] bool isLight(int x, int y) const { return qRed(m_image.pixel(x, y)) > 100; }

    QImage m_image;
};
