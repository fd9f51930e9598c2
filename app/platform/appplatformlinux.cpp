#include "app/platform/appplatformlinux.h"

#include "app/app.h"
#include "app/platform/startchecks.h"
#include "core/application_flags.h"
#include "core/settings/qsettingscache.h"
#include "core/widgets/qmessageboxlocalized.h"

bool AppPlatformLinux::startCheck()
{
    const QStringList arguments = QBrisoraApp::arguments();
    const SystemInfo& systemInfo = app().systemInfo();

    if (StartChecks::isVirtualMachine(identity(), systemInfo)) {
        StartChecks::warnOfVirtualMachine(*app().settings());
        return false;
    }
    if (systemInfo.machineName().isEmpty() && !arguments.contains(QLatin1String("/skipcheck"))) {
        QMessageBoxLocalized::warning(
            nullptr, app().productTitle(),
            QStringLiteral("Unsupported hardware detected. The program is able to run on "
                           "Apple hardware only."));
        return false;
    }

    StartChecks::applyCommandLineOptions(arguments, app().isStartMinimized());
    if (systemInfo.needsMmioDriver()) {
        StartChecks::applyDriverOptions(systemInfo);
    }
    // Installing the driver is the packages' work here.
    return !arguments.contains(QLatin1String("/init"));
}

void AppPlatformLinux::createMainWindow() { app().createMainWindow(); }

bool AppPlatformLinux::uninstall()
{
    app().settings()->removeStorage();
    return true;
}

QString AppPlatformLinux::logFilePath() const
{
    return QBrisoraApp::applicationFilePath() + QLatin1String(".log");
}

bool AppPlatformLinux::hasWriteAccess() const
{
    return !core::flags::isSet(core::flags::noSupport);
}
