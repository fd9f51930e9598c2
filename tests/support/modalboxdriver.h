#pragma once

#include <functional>
#include <utility>

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

// Answers modal message boxes as a user would: while it lives, each box that
// opens is handed to the function, then closed by its default button, or by its
// first one.
class ModalBoxDriver {
public:
    explicit ModalBoxDriver(std::function<void(QMessageBox&)> inspect)
        : m_inspect(std::move(inspect))
    {
        m_timer.setInterval(5);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { look(); });
        m_timer.start();
    }

    [[nodiscard]] int boxCount() const { return m_boxCount; }

private:
    void look()
    {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (box == nullptr || !box->isVisible()) {
            return;
        }
        ++m_boxCount;
        m_inspect(*box);
        if (box->isVisible()) {
            auto* button = box->defaultButton() != nullptr
                ? static_cast<QAbstractButton*>(box->defaultButton())
                : box->buttons().value(0);
            button->click();
        }
    }

    std::function<void(QMessageBox&)> m_inspect;
    QTimer m_timer;
    int m_boxCount = 0;
};
