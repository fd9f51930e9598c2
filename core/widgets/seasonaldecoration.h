#pragma once

#include <functional>
#include <optional>

#include <QDate>
#include <QPixmap>
#include <QString>

class QRect;
class QWidget;

// A faint picture in the middle of a widget, shown from 24 to 31 December. Whether
// it is shown is decided once, at the first painting.
class SeasonalDecoration {
public:
    // Tells the date of the present day.
    using Today = std::function<QDate()>;

    // A picture that can't be loaded is not shown. Loaded when it is needed.
    explicit SeasonalDecoration(const QString& picture, Today today = &QDate::currentDate);

    // For a paint event of the surface: paints the picture, if it is the season, in
    // the middle of the area.
    void paint(QWidget* surface, const QRect& area);

private:
    const QString m_picture;
    const Today m_today;
    std::optional<bool> m_isSeason; // empty until the first painting
    QPixmap m_pixmap; // null out of season
};
