#pragma once

#include <utility>

#include <QStyleOptionViewItem>

class QPainter;
class QRect;

namespace Widgets {

// A delegate that paints no focus rectangle. The base is QItemDelegate or derives
// from it, and its arguments are the base's.
template <typename Base> class NoDrawFocusDelegate : public Base {
public:
    template <typename... Arguments>
    explicit NoDrawFocusDelegate(Arguments&&... arguments)
        : Base(std::forward<Arguments>(arguments)...)
    {
    }

protected:
    void drawFocus(QPainter* /*painter*/, const QStyleOptionViewItem& /*option*/,
                   const QRect& /*rect*/) const override
    {
    }
};

} // namespace Widgets
