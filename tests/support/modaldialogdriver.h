#pragma once

#include <functional>
#include <utility>

#include <QApplication>
#include <QDialog>
#include <QPointer>
#include <QTimer>
#include <QVector>

// Does in modal dialogs what a user would: while it lives, each dialog that opens is
// handed to the function, once, and is dismissed if it is still open afterwards. The
// function may wait for things, and for a dialog over the first.
class ModalDialogDriver {
public:
    explicit ModalDialogDriver(std::function<void(QDialog&)> act)
        : m_act(std::move(act))
    {
        lookSoon();
    }

    [[nodiscard]] int dialogCount() const { return m_dialogCount; }

private:
    // Not one timer that repeats: it would stand still while the function waits.
    void lookSoon()
    {
        QTimer::singleShot(5, &m_context, [this] { look(); });
    }

    void look()
    {
        lookSoon();
        const QPointer<QDialog> dialog(qobject_cast<QDialog*>(QApplication::activeModalWidget()));
        if (dialog == nullptr || !dialog->isVisible() || m_handled.contains(dialog)) {
            return;
        }
        m_handled.append(dialog);
        ++m_dialogCount;
        m_act(*dialog);
        if (dialog != nullptr && dialog->isVisible()) {
            dialog->reject();
        }
    }

    std::function<void(QDialog&)> m_act;
    QObject m_context;
    QVector<QPointer<QDialog>> m_handled;
    int m_dialogCount = 0;
};
