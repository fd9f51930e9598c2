#include "app/platform/appplatformlinux.h"

#include <utility>

#include <QStandardPaths>

#include "app/platform/startchecks.h"
#include "app/sysinfo/sysinfo.h"
#include "core/application_flags.h"
#include "core/settings/qsettingscache.h"
#include "core/widgets/qmessageboxlocalized.h"

AppPlatformLinux::AppPlatformLinux(PlatformHost platformHost)
    : AppPlatformSpecific(std::move(platformHost))
    , m_autostart(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation),
                  host().executablePath)
{
}

bool AppPlatformLinux::startCheck()
{
    const auto showWarning = [](const QString& title, const QString& text) {
        QMessageBoxLocalized::warning(nullptr, title, text);
    };
    if (!StartChecks::isMachineAccepted(host(), showWarning)) {
        return false;
    }

    if (core::flags::isSet(core::flags::firstStart)) {
        setAutostart(true);
    }
    StartChecks::applyCommandLineOptions(host().arguments, host().isStartMinimized());
    if (host().systemInfo.needsMmioDriver()) {
        StartChecks::applyDriverOptions(host().systemInfo);
    }
    // Installing the driver is the packages' work here.
    return !host().arguments.contains(QLatin1String("/init"));
}

void AppPlatformLinux::createMainWindow() { host().createMainWindow(); }

bool AppPlatformLinux::uninstall()
{
    host().settings.removeStorage();
    setAutostart(false);
    return true;
}

QString AppPlatformLinux::logFilePath() const
{
    return host().executablePath + QLatin1String(".log");
}

bool AppPlatformLinux::hasWriteAccess() const
{
    return !core::flags::isSet(core::flags::noSupport);
}
