#pragma once

class QWidget;

// Pixels at 96 DPI as pixels of the desktop, cut toward zero.
[[nodiscard]] int scaled(int pixels);

// Moves the widget so that its centre lies on the centre of the primary screen.
void centerOnScreen(QWidget* widget);
