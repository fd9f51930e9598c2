#pragma once

#include <memory>

#include <QIcon>
#include <QString>
#include <QWidget>

class QAbstractButton;
class QMenu;

// A button of the kit: in a tool bar it looks like a tool button, elsewhere like a
// push button. The keyboard focus goes to the inner button.
class QCocoaButton : public QWidget {
    Q_OBJECT

public:
    // Where the icon stands in relation to the text. Without effect: the style
    // decides.
    enum IconPosition { IconBeforeText, IconAfterText, IconAboveText };
    enum TextAlignment { StyleAlignment = 0, LeftAlignment = 1 };

    explicit QCocoaButton(QWidget* parent = nullptr);
    ~QCocoaButton() override;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QString text() const;
    void setTextAlignment(TextAlignment alignment);
    // What a screen reader reads in place of the text.
    void setAccessibleName(const QString& name);

Q_SIGNALS:
    void clicked(bool checked = false);

public Q_SLOTS:
    virtual void setText(const QString& text);
    void setIcon(const QIcon& icon);
    void setIconPosition(IconPosition position);
    void setChecked(bool checked);
    void setToolTip(const QString& toolTip);

public:
    // Shown by a click, in place of the signal. Not for a button in a tool bar,
    // which stays as it is. The menu stays its owner's.
    virtual void setMenu(QMenu* menu);

protected:
    [[nodiscard]] QAbstractButton* innerButton() const;

private:
    struct Private;
    const std::shared_ptr<Private> m_private;
};

// The same, for a button that opens a menu.
class QCocoaButtonActionMenu : public QCocoaButton {
    Q_OBJECT

public:
    using QCocoaButton::QCocoaButton;
};
