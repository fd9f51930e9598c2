#pragma once

#include <QToolBar>

// A tool bar of which nothing shows a tool tip: no button, and no widget in it
// however deep.
class QToolBarNoTooltips : public QToolBar {
    Q_OBJECT

public:
    explicit QToolBarNoTooltips(QWidget* parent = nullptr);

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void childEvent(QChildEvent* event) override;

private:
    void watch(QObject* object);
};
