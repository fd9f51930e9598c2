#pragma once

#include <memory>

#include <QAction>
#include <QMenu>
#include <QWidget>
#include <QtTest>

#include "app/ui/tray/qtrayicon.h"
#include "app/ui/tray/qtrayiconplatform.h"
#include "app/ui/tray/traydrawing.h"
#include "tests/fancontrol/enginemachine.h"

// A tray that notes what it is told. The record outlives the icon.
class FakeTrayPlatform final : public QTrayIconPlatform {
public:
    struct Record {
        QStringList told; // "icon 1 -1", "tip Left - 2000 RPM", "visible", "hidden", "menu"
        QMenu* menu = nullptr;
        FakeTrayPlatform* platform = nullptr;

        [[nodiscard]] QStringList take()
        {
            QStringList result;
            result.swap(told);
            return result;
        }
    };

    explicit FakeTrayPlatform(Record& record)
        : m_record(record)
    {
        m_record.platform = this;
    }

    void setVisible(bool visible) override
    {
        m_record.told.append(visible ? QStringLiteral("visible") : QStringLiteral("hidden"));
    }
    void setIcon(std::uint32_t flags, double value) override
    {
        m_record.told.append(QStringLiteral("icon %1 %2").arg(flags).arg(value));
    }
    void setToolTip(const QString& toolTip) override
    {
        m_record.told.append(QStringLiteral("tip %1").arg(toolTip));
    }
    void setContextMenu(QMenu* menu) override
    {
        m_record.told.append(QStringLiteral("menu"));
        m_record.menu = menu;
    }

private:
    Record& m_record;
};

// The tray icon on an engine of a machine that the test may change before.
class TrayBench {
public:
    QTrayIcon& make(const TrayMenuOptions& options = {})
    {
        if (!machine.smc->isOpen()) {
            machine.load();
        }
        tray = new QTrayIcon(&window, *machine.engine, machine.settings,
                             std::make_unique<FakeTrayPlatform>(record), options);
        return *tray;
    }

    [[nodiscard]] QMenu* menu() const
    {
        return window.findChild<QMenu*>(QStringLiteral("trayMenu"));
    }
    // The entries in order, separators as "-"; of the menu or of the submenu with
    // this title.
    [[nodiscard]] QStringList entries(const QString& title = {}) const
    {
        QStringList texts;
        for (const QAction* action : actions(title)) {
            texts.append(action->isSeparator() ? QStringLiteral("-") : action->text());
        }
        return texts;
    }
    // Null when there is none.
    [[nodiscard]] QAction* entry(const QString& text, const QString& title = {}) const
    {
        for (QAction* action : actions(title)) {
            if (action->text() == text) {
                return action;
            }
        }
        return nullptr;
    }
    void trigger(const QString& text, const QString& title = {}) const
    {
        QAction* action = entry(text, title);
        QVERIFY2(action != nullptr, qPrintable(text));
        action->trigger();
    }

    EngineMachine machine;
    FakeTrayPlatform::Record record;
    QWidget window;
    QTrayIcon* tray = nullptr; // child of the window

private:
    [[nodiscard]] QList<QAction*> actions(const QString& title) const
    {
        if (title.isEmpty()) {
            return menu()->actions();
        }
        const QAction* action = entry(title);
        return action != nullptr && action->menu() != nullptr ? action->menu()->actions()
                                                              : QList<QAction*>();
    }
};
