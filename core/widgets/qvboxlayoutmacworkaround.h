#pragma once

#include <QVBoxLayout>
#include <QWidget>

// A widget that is nothing but a column of others, without margins, for places
// where a form takes a widget only.
class QVBoxLayoutMacWorkaround : public QWidget {
    Q_OBJECT

public:
    explicit QVBoxLayoutMacWorkaround(QWidget* parent = nullptr)
        : QWidget(parent)
        , m_column(new QVBoxLayout(this))
    {
        m_column->setContentsMargins(0, 0, 0, 0);
    }

    // The widget becomes a child of this one, below those that are there.
    void addWidget(QWidget* widget) { m_column->addWidget(widget); }

private:
    QVBoxLayout* const m_column;
};
