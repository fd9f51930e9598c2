#pragma once

#include <QAction>
#include <QDialogButtonBox>
#include <QMenu>
#include <QPushButton>
#include <QStringList>
#include <QtTest>

// What a test reaches for in windows and menus.

// Null when there is none of this name.
template <typename Widget> [[nodiscard]] Widget* child(QWidget& parent, const char* name)
{
    return parent.findChild<Widget*>(QLatin1String(name));
}

// Clicks the first button of this role.
inline void press(QWidget& dialog, QDialogButtonBox::ButtonRole role)
{
    auto* const box = child<QDialogButtonBox>(dialog, "buttonBox");
    for (auto* const button : box->buttons()) {
        if (box->buttonRole(button) == role) {
            QTest::mouseClick(button, Qt::LeftButton);
            return;
        }
    }
}

// The entry of a menu or of its submenus with this text; a "&" for the keyboard
// doesn't count. Null when there is none.
[[nodiscard]] inline QAction* entry(const QMenu* menu, const QStringList& path)
{
    for (auto* const action : menu->actions()) {
        if (action->text().section(QLatin1Char('\t'), 0, 0).remove(QLatin1Char('&'))
            != path.first()) {
            continue;
        }
        if (path.size() == 1) {
            return action;
        }
        return action->menu() != nullptr ? entry(action->menu(), path.mid(1)) : nullptr;
    }
    return nullptr;
}
