#include "core/widgets/widgethelpers.h"

#include <QAbstractButton>
#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QLayout>
#include <QScreen>
#include <QWidget>

int scaled(int pixels)
{
    const QScreen* screen = QGuiApplication::primaryScreen();
    return screen != nullptr ? scaledAt(pixels, screen->logicalDotsPerInchX()) : pixels;
}

int scaledAt(int pixels, double dotsPerInch)
{
    return static_cast<int>(pixels * qRound(dotsPerInch) / 96.0);
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

void padButton(QAbstractButton* button)
{
    button->setText(QStringLiteral(" %1 ").arg(button->text()));
}

QWidget* followButtonOrder(const QDialogButtonBox& box)
{
    const QLayout* const layout = box.layout();
    QWidget* last = nullptr;
    for (int index = 0; index < layout->count(); ++index) {
        QWidget* const button = layout->itemAt(index)->widget();
        if (button == nullptr) {
            continue;
        }
        if (last != nullptr) {
            QWidget::setTabOrder(last, button);
        }
        last = button;
    }
    return last;
}
