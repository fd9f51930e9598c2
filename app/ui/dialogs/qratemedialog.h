#pragma once

#include "app/ui/dialogs/rateschedule.h"
#include "core/widgets/qmessageboxex.h"

class QPushButton;

// Asks the user to rate the product. After exec() the caller compares
// clickedButton() with rateButton() and reads checkBox(), or has answer() do it.
class QRateMeDialog : public QMessageBoxEx {
    Q_OBJECT

public:
    explicit QRateMeDialog(QWidget* parent);

    [[nodiscard]] QPushButton* rateButton() const { return m_rateButton; }
    // Once exec() has returned.
    [[nodiscard]] RateSchedule::Answer answer() const;

private:
    QPushButton* m_rateButton = nullptr; // child of the box
};
