#pragma once

#include <utility>

#include <QAction>
#include <QKeySequence>
#include <QString>

// What all dialogs of the program have in common, as layers over a dialog class.
namespace Widgets {

// "Ctrl+W" closes the window.
template <typename Base> class CtrlWClosable : public Base {
public:
    template <typename... Arguments>
    explicit CtrlWClosable(Arguments&&... arguments)
        : Base(std::forward<Arguments>(arguments)...)
    {
        auto* const action = new QAction(this);
        action->setShortcut(QKeySequence(QStringLiteral("Ctrl+W")));
        Base::connect(action, &QAction::triggered, this, &Base::close);
        Base::addAction(action);
    }
};

// A title bar without the button for context help, which there is none of.
template <typename Base> class FlagsAdjusted : public Base {
public:
    template <typename... Arguments>
    explicit FlagsAdjusted(Arguments&&... arguments)
        : Base(std::forward<Arguments>(arguments)...)
    {
        Base::setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    }
};

// The base of all dialogs; it takes what the dialog class takes. Its closing never
// ends the program, though the main window may be hidden.
template <typename Base> class DialogExT : public FlagsAdjusted<CtrlWClosable<Base>> {
public:
    template <typename... Arguments>
    explicit DialogExT(Arguments&&... arguments)
        : FlagsAdjusted<CtrlWClosable<Base>>(std::forward<Arguments>(arguments)...)
    {
        Base::setAttribute(Qt::WA_QuitOnClose, false);
    }
};

} // namespace Widgets
