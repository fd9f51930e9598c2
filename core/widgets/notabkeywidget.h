#pragma once

#include <utility>

#include <QAbstractItemView>
#include <QKeyEvent>

namespace Widgets {

// A view that leaves the Tab key to the window: Tab goes on to the next widget and
// Shift+Tab back to the one before, whatever cells the view has. The base is a class
// of item views, and its arguments are the base's.
template <typename Base> class NoTabKeyWidget : public Base {
public:
    template <typename... Arguments>
    explicit NoTabKeyWidget(Arguments&&... arguments)
        : Base(std::forward<Arguments>(arguments)...)
    {
    }

protected:
    void keyPressEvent(QKeyEvent* event) override
    {
        if (event->key() == Qt::Key_Tab || event->key() == Qt::Key_Backtab) {
            event->ignore();
            return;
        }
        QAbstractItemView::keyPressEvent(event);
    }
};

} // namespace Widgets
