#pragma once

#include "core/widgets/qcocoasegmentedbutton.h"

// The segmented button of a fan's control cell. Invisible until it is shown: there
// is nothing to select before the fan's first control mode is known.
class QCocoaFansSegmentedButton : public QCocoaSegmentedButton {
    Q_OBJECT

public:
    explicit QCocoaFansSegmentedButton(QWidget* parent = nullptr)
        : QCocoaSegmentedButton(parent)
    {
        setVisible(false);
    }
};
