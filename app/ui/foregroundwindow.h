#pragma once

class QWidget;

// Brings a shown window before all others and gives it the keyboard, as far as
// the system lets a program do that.
void bringToForeground(QWidget* window);
