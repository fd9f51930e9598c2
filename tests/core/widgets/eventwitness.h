#pragma once

#include <QEvent>
#include <QVector>
#include <QWidget>

// A widget that notes which events reach it.
class EventWitness : public QWidget {
public:
    using QWidget::QWidget;

    QVector<QEvent::Type> seen;

protected:
    bool event(QEvent* event) override
    {
        seen.append(event->type());
        return QWidget::event(event);
    }
};
