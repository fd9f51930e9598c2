#include "core/widgets/widgethelpers.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

int scaled(int pixels)
{
    const QScreen* screen = QGuiApplication::primaryScreen();
    const double dotsPerInch = screen != nullptr ? screen->logicalDotsPerInch() : 96.0;
    return static_cast<int>(pixels * dotsPerInch / 96.0);
}

void centerOnScreen(QWidget* widget)
{
    const QScreen* screen = QGuiApplication::primaryScreen();
    if (screen == nullptr) {
        return;
    }
    QRect frame = widget->frameGeometry();
    frame.moveCenter(screen->geometry().center());
    widget->move(frame.topLeft());
}
