#pragma once

#include "core/widgets/qmessageboxlocalized.h"

class QLabel;

// A message box with a bold main text, whose labels can be kept from wrapping too
// early. Once it has been shown, text() is the bold one, as rich text.
class QMessageBoxEx : public QMessageBoxLocalized {
    Q_OBJECT

public:
    // With fixLabelWidths no label breaks its text where the text has no break; for
    // texts that fit on the screen.
    explicit QMessageBoxEx(QWidget* parent = nullptr, bool boldText = true,
                           bool fixLabelWidths = false);

    // Pixels. The main text's label exists from the start, the informative text's
    // once that text is set; without the label nothing happens.
    void setTextMinimumWidth(int width);
    void setInformativeTextMaximumWidth(int width);

protected:
    void showEvent(QShowEvent* event) override;

private:
    void makeBold(QLabel* label);

    const bool m_fixLabelWidths;
    const bool m_boldText;
    QString m_boldened; // the main text as it was made bold
};
