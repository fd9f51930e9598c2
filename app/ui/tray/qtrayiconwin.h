#pragma once

#include <memory>

#include <QPointer>

#include "app/ui/tray/qtrayiconplatform.h"
#include "app/ui/tray/traycalls.h"

// The icon in the notification area of Windows, with a hidden window that takes the
// shell's messages.
class QTrayIconWin final : public QTrayIconPlatform, private TrayMessageReceiver {
    Q_OBJECT

public:
    explicit QTrayIconWin(std::unique_ptr<TrayCalls> calls);
    // Takes the icon out of the notification area.
    ~QTrayIconWin() override;

    void setVisible(bool visible) override;
    // When no icon can be made, the last one stays.
    void setIcon(std::uint32_t flags, double value) override;
    // The first 127 characters.
    void setToolTip(const QString& toolTip) override;
    void setContextMenu(QMenu* menu) override;

private:
    std::optional<std::intptr_t> receive(const TrayMessage& message) override;
    void allowMessage(std::uint32_t message);
    void notify(TrayAction action, TrayNativeIcon icon = 0, const QString& tip = {});
    void showMenu(const TrayMessage& message);

    const std::unique_ptr<TrayCalls> m_calls;
    const TrayVersion m_version;
    const TrayWindow m_window; // 0 when the system has given none
    const std::uint32_t m_taskbarCreated; // the number of the message of that name
    QPointer<QMenu> m_menu;
    bool m_visible = false;
};
