#pragma once

#include <cstdint>

#include <QImage>
#include <QString>

// The pictures of the tray icon. Sizes are in device pixels, so that nothing
// has to be stretched.

// The whole degrees to be shown for what QTrayIconPlatform::setIcon() is told, or
// an empty text when the application's own picture is to be shown: without a
// reading, and for one that is none because the sensor hasn't been read (0, or no
// number).
[[nodiscard]] QString trayReadingText(std::uint32_t flags, double value);

// A dark blue square with the digits in white. The font is the application's,
// largestFont pixels high or as much less as it takes to have room for all digits.
// Null when even the smallest font is too large.
[[nodiscard]] QImage drawTrayReading(const QString& digits, int size, int largestFont);

// The application's own picture; null when there is none.
[[nodiscard]] QImage applicationTrayPicture(int size);

// The reading, or the application's own picture where there is none or it has no
// room.
[[nodiscard]] QImage drawTrayPicture(const QString& digits, int size, int largestFont);
