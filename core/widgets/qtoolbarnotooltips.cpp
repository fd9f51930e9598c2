#include "core/widgets/qtoolbarnotooltips.h"

#include <QChildEvent>

QToolBarNoTooltips::QToolBarNoTooltips(QWidget* parent)
    : QToolBar(parent)
{
}

bool QToolBarNoTooltips::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::ChildAdded) {
        watch(static_cast<QChildEvent*>(event)->child());
    }
    return event->type() == QEvent::ToolTip || QToolBar::eventFilter(watched, event);
}

void QToolBarNoTooltips::childEvent(QChildEvent* event)
{
    QToolBar::childEvent(event);
    if (event->added()) {
        watch(event->child());
    }
}

// A button may lie deeper, as in a QCocoaButton.
void QToolBarNoTooltips::watch(QObject* object)
{
    if (!object->isWidgetType()) {
        return;
    }
    object->installEventFilter(this);
    const QObjectList children = object->children();
    for (QObject* const child : children) {
        watch(child);
    }
}
