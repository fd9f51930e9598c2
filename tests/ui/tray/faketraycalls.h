#pragma once

#include <functional>

#include <QImage>
#include <QStringList>
#include <QVector>

#include "app/ui/tray/traycalls.h"

// A Windows that notes what it is asked for, and answers as the test says. The
// record outlives the calls, which belong to the icon.
class FakeTrayCalls final : public TrayCalls {
public:
    static constexpr TrayWindow window = 77;
    static constexpr std::uint32_t taskbarCreated = 0xC123;

    struct Told {
        TrayAction action;
        TrayNotification notification;
    };
    struct Record {
        QStringList calls; // in order, but for notifications
        QVector<Told> told;
        QVector<QImage> icons; // made so far; the native icons are counted from 1
        QVector<TrayNativeIcon> destroyed;
        TrayMessageReceiver* receiver = nullptr; // while there is a window

        // The answers.
        bool hasCurrentVersion = true;
        bool hasWindow = true;
        bool knowsWindowFilter = true;
        bool knowsProcessFilter = true;
        bool canMakeIcons = true;
        QSize smallIconSize { 16, 16 };
        std::function<bool(TrayAction)> accepts = [](TrayAction) { return true; };

        // What the shell was told, such as "add" or "modify", since the last time.
        [[nodiscard]] QStringList takeActions();
    };

    explicit FakeTrayCalls(Record& record)
        : m_record(record)
    {
    }

    bool hasCurrentVersion() override { return m_record.hasCurrentVersion; }

    TrayWindow createWindow(const QString& className, const QString& title,
                            TrayMessageReceiver& receiver) override
    {
        m_record.calls.append(QStringLiteral("create %1 %2").arg(className, title));
        m_record.receiver = m_record.hasWindow ? &receiver : nullptr;
        return m_record.hasWindow ? window : 0;
    }

    void destroyWindow(TrayWindow destroyed) override
    {
        m_record.calls.append(QStringLiteral("destroy %1").arg(destroyed));
        m_record.receiver = nullptr;
    }

    std::uint32_t registerMessage(const QString& name) override
    {
        m_record.calls.append(QStringLiteral("register %1").arg(name));
        return taskbarCreated;
    }

    bool allowMessageToWindow(TrayWindow target, std::uint32_t message) override
    {
        m_record.calls.append(
            QStringLiteral("allow %1 to window %2").arg(message, 0, 16).arg(target));
        return m_record.knowsWindowFilter;
    }

    bool allowMessageToProcess(std::uint32_t message) override
    {
        m_record.calls.append(QStringLiteral("allow %1 to process").arg(message, 0, 16));
        return m_record.knowsProcessFilter;
    }

    bool notify(TrayAction action, const TrayNotification& notification) override
    {
        m_record.told.append({ action, notification });
        return m_record.accepts(action);
    }

    QSize smallIconSize() override { return m_record.smallIconSize; }

    TrayNativeIcon createIcon(const QImage& image) override
    {
        if (!m_record.canMakeIcons) {
            return 0;
        }
        m_record.icons.append(image);
        return static_cast<TrayNativeIcon>(m_record.icons.size());
    }

    void destroyIcon(TrayNativeIcon icon) override { m_record.destroyed.append(icon); }

private:
    Record& m_record;
};

inline QStringList FakeTrayCalls::Record::takeActions()
{
    QStringList actions;
    for (const Told& one : told) {
        switch (one.action) {
        case TrayAction::Add:
            actions.append(QStringLiteral("add"));
            break;
        case TrayAction::Modify:
            actions.append(QStringLiteral("modify"));
            break;
        case TrayAction::Delete:
            actions.append(QStringLiteral("delete"));
            break;
        case TrayAction::SetVersion:
            actions.append(QStringLiteral("version"));
            break;
        }
    }
    told.clear();
    return actions;
}
