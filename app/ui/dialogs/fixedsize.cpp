#include "app/ui/dialogs/fixedsize.h"

#include <algorithm>

#include <QLayout>
#include <QWidget>

void fixSize(QWidget* window)
{
    window->adjustSize();
    // That takes no more than two thirds of the screen: on a small one texts would
    // be cut.
    const QLayout* const layout = window->layout();
    QSize size = window->size().expandedTo(layout->totalMinimumSize());
    size.setHeight(std::max(size.height(), layout->totalHeightForWidth(size.width())));
    window->setFixedSize(size);
}
