#pragma once

#include <QAbstractButton>
#include <QLabel>
#include <QString>
#include <QWidget>

// The name of the first label or button in the window whose text doesn't fit into
// its place; empty when all do. The window is shown.
inline QString cutText(const QWidget& window)
{
    const auto labels = window.findChildren<QLabel*>();
    for (const QLabel* const label : labels) {
        const int height = label->hasHeightForWidth() ? label->heightForWidth(label->width())
                                                      : label->sizeHint().height();
        const int width
            = label->wordWrap() ? label->minimumSizeHint().width() : label->sizeHint().width();
        if (label->isVisible() && (label->height() < height || label->width() < width)) {
            return label->objectName();
        }
    }
    const auto buttons = window.findChildren<QAbstractButton*>();
    for (const QAbstractButton* const button : buttons) {
        const QSize hint = button->sizeHint();
        if (button->isVisible()
            && (button->width() < hint.width() || button->height() < hint.height())) {
            return button->objectName() + QLatin1Char(' ') + button->text();
        }
    }
    return {};
}
