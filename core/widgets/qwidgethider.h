#pragma once

#include <QObject>

class QWidget;

// Makes a widget invisible and deaf while it keeps its place in the layout: an
// event filter that swallows what paints it and what a user does to it.
class QWidgetHider : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    bool eventFilter(QObject* watched, QEvent* event) override;
};

// Shows or hides a widget and all widgets in it without moving its neighbours. A
// widget with a dynamic property "setVisibleCustom" and an invokable method of that
// name has that method called, queued, with the flag. What takes the keyboard focus
// takes it again once it is shown, by mouse and by Tab. GUI thread only.
void setWidgetVisible(QWidget* widget, bool visible);
