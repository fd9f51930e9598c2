#pragma once

#include "app/platform/appplatformspecific.h"
#include "app/platform/autostartlinux.h"

// Linux: the driver, where one is needed, is a service of the system's, so that
// there is no tool to run at the start.
class AppPlatformLinux final : public AppPlatformSpecific {
public:
    explicit AppPlatformLinux(PlatformHost host);

    bool startCheck() override;
    void createMainWindow() override;
    void setAutostart(bool enable) override { m_autostart.setEnabled(enable); }
    bool isAutostart() const override { return m_autostart.isEnabled(); }
    bool uninstall() override;
    QString logFilePath() const override;
    bool hasWriteAccess() const override;

private:
    AutostartLinux m_autostart;
};
