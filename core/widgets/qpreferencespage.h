#pragma once

#include <QIcon>
#include <QLayout>
#include <QString>
#include <QWidget>

// A page of a preferences dialog. What it changes takes effect at once.
class QPreferencesPage : public QWidget {
    Q_OBJECT

public:
    using QWidget::QWidget;

    [[nodiscard]] virtual QString getTitle() const = 0;
    [[nodiscard]] virtual QIcon getIcon() const = 0;
    // Sets all texts in the interface's present language, and takes the size that
    // they need.
    virtual void updateLayout() = 0;

protected:
    // The size that the texts need now.
    void takeOwnSize()
    {
        // A row within the layout keeps its old size until then.
        layout()->activate();
        adjustSize();
    }

Q_SIGNALS:
    // What is shown elsewhere has to be shown anew.
    void preferencesChanged();
    // The texts are others now, so that sizes are.
    void needRecalculateLayout();
};
