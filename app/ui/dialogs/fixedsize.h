#pragma once

class QWidget;

// Fixes a window with a layout at the size that suits its contents.
void fixSize(QWidget* window);
