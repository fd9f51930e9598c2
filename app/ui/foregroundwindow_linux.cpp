#include "app/ui/foregroundwindow.h"

#include <QWidget>

void bringToForeground(QWidget* window)
{
    window->raise();
    window->activateWindow();
}
