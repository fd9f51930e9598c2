#pragma once

class QAbstractButton;
class QDialogButtonBox;
class QWidget;

// Pixels at 96 DPI as pixels of the desktop, cut toward zero.
[[nodiscard]] int scaled(int pixels);
// The same for a desktop of this DPI. It counts as a whole number: computed from a
// screen's millimetres, 96 comes out as 95.99.
[[nodiscard]] int scaledAt(int pixels, double dotsPerInch);

// Moves the widget so that its centre lies on the centre of the primary screen.
void centerOnScreen(QWidget* widget);

// Puts a blank on each side of the button's text.
void padButton(QAbstractButton* button);

// Lets Tab go through the box's buttons as they stand: which is first differs among
// systems. The last one, or null.
QWidget* followButtonOrder(const QDialogButtonBox& box);
