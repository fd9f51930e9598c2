#pragma once

#include "app/platform/appplatformspecific.h"

// Linux: the driver, where one is needed, is a service of the system's, so that
// there is no tool to run at the start.
class AppPlatformLinux final : public AppPlatformSpecific {
public:
    using AppPlatformSpecific::AppPlatformSpecific;

    bool startCheck() override;
    void createMainWindow() override;
    bool uninstall() override;
    QString logFilePath() const override;
    bool hasWriteAccess() const override;
};
