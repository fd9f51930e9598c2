#pragma once

#include <QObject>
#include <QSize>

class QActionGroup;
class QIcon;
class QString;
class QToolBarNoTooltips;
class QWidget;

// The row of buttons of a preferences dialog, of which one is chosen.
class QCocoaToolbarImpl : public QObject {
    Q_OBJECT

public:
    // The bar becomes a child of the dialog.
    explicit QCocoaToolbarImpl(QWidget* dialog);

    // Buttons are numbered from 0.
    void addButton(const QString& text, const QIcon& icon);
    void setButtonText(int button, const QString& text);
    void setButtonChecked(int button);
    // At the side of a dialog of this width where the language begins.
    void place(int dialogWidth);
    // The height that the bar takes, and the width that its buttons need.
    [[nodiscard]] QSize size() const;

Q_SIGNALS:
    void buttonActivated(int button);

private:
    void fit();

    QToolBarNoTooltips* const m_toolBar; // child of the dialog
    QActionGroup* const m_actions; // child
};
