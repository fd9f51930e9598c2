#pragma once

#include <cstdint>

#include <QLabel>

// The cell with a fan's speeds: minimum, current and maximum. Orange are the limits
// of a fan whose limits are equal, and the current speed of one that stands still.
class QTableFansRPMWidget : public QLabel {
    Q_OBJECT

public:
    // Empty until the first speeds are shown.
    explicit QTableFansRPMWidget(QWidget* parent = nullptr);

    // RPM. A speed that is not known, 65535 or below 0, is shown as a dash.
    void showSpeeds(std::int32_t min, std::int32_t current, std::int32_t max);
};
