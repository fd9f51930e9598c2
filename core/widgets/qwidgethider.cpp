#include "core/widgets/qwidgethider.h"

#include <QCoreApplication>
#include <QEvent>
#include <QMetaObject>
#include <QVariant>
#include <QWidget>

namespace {

constexpr char customMethod[] = "setVisibleCustom";
// Remembers on a hidden widget that it takes the focus. Labels don't, and must not
// get it by having been hidden once.
constexpr char takesFocusProperty[] = "brisoraTakesFocus";

QWidgetHider* hider()
{
    static auto* const instance = new QWidgetHider(QCoreApplication::instance());
    return instance;
}

bool callCustom(QWidget* widget, bool visible)
{
    return widget->property(customMethod).isValid()
        && QMetaObject::invokeMethod(widget, customMethod, Qt::QueuedConnection,
                                     Q_ARG(bool, visible));
}

void show(QWidget* widget)
{
    widget->removeEventFilter(hider());
    if (widget->property(takesFocusProperty).toBool() || widget->focusPolicy() != Qt::NoFocus) {
        widget->setFocusPolicy(Qt::StrongFocus);
    }
    widget->setProperty(takesFocusProperty, QVariant());
}

void hide(QWidget* widget)
{
    if (widget->focusPolicy() != Qt::NoFocus) {
        widget->setProperty(takesFocusProperty, true);
    }
    widget->setFocusPolicy(Qt::NoFocus);
    widget->clearFocus();
    widget->installEventFilter(hider());
}

} // namespace

bool QWidgetHider::eventFilter(QObject* watched, QEvent* event)
{
    const auto type = event->type();
    // From the presses of buttons and keys over focus and the pointer's coming and
    // going to painting.
    return (type >= QEvent::MouseButtonPress && type <= QEvent::Paint)
        || QObject::eventFilter(watched, event);
}

void setWidgetVisible(QWidget* widget, bool visible)
{
    if (callCustom(widget, visible)) {
        return;
    }
    if (visible) {
        show(widget);
    } else {
        hide(widget);
    }
    widget->update();
    const QObjectList children = widget->children();
    for (QObject* const child : children) {
        if (child->isWidgetType()) {
            setWidgetVisible(static_cast<QWidget*>(child), visible);
        }
    }
}
