#pragma once

#include <memory>

#include "core/system/darkmodewatcher.h"

class KnownLook;
class PortalSettings;
class QDBusPendingCallWatcher;

namespace System {

// Follows the colour scheme of the desktop's portal. GUI thread.
class LinuxDarkModeWatcher final : public DarkModeWatcher {
    Q_OBJECT

public:
    LinuxDarkModeWatcher();
    ~LinuxDarkModeWatcher() override;

    // May wait for the desktop as isDarkModeEnabled() does.
    void start();

private:
    void take(bool dark);

    std::shared_ptr<KnownLook> m_known; // null unless started
    std::unique_ptr<PortalSettings> m_settings; // null unless started
    std::unique_ptr<QDBusPendingCallWatcher> m_request; // null unless started
};

} // namespace System
