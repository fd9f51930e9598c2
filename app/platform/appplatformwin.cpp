#include "app/platform/appplatformwin.h"

#include <utility>

#include "app/platform/autostartcalls.h"
#include "app/platform/processrun.h"
#include "app/platform/startchecks.h"
#include "app/platform/windowscalls.h"
#include "app/sysinfo/sysinfo.h"
#include "core/application_flags.h"
#include "core/log/log.h"
#include "core/settings/qsettingscache.h"

namespace {

constexpr std::uint32_t installTimeout = 10000; // milliseconds

} // namespace

AppPlatformWin::AppPlatformWin(PlatformHost platformHost, std::unique_ptr<WindowsCalls> calls,
                               std::unique_ptr<AutostartCalls> autostartCalls)
    : AppPlatformSpecific(std::move(platformHost))
    , m_calls(std::move(calls))
    , m_autostart(
          std::move(autostartCalls), host().executablePath,
          [this](const QString& title, const QString& text) { m_calls->showWarning(title, text); })
{
}

AppPlatformWin::~AppPlatformWin()
{
    if (m_comInitialized) {
        m_calls->uninitializeCom();
    }
}

bool AppPlatformWin::startCheck()
{
    const auto showWarning
        = [this](const QString& title, const QString& text) { m_calls->showWarning(title, text); };
    if (!StartChecks::isMachineAccepted(host(), showWarning)) {
        return false;
    }
    initializeCom();
    if (core::flags::isSet(core::flags::firstStart)) {
        setAutostart(true);
    }

    StartChecks::applyCommandLineOptions(host().arguments, host().isStartMinimized());
    const bool isInstallerRun = host().arguments.contains(QLatin1String("/init"));
    if (!host().systemInfo.needsMmioDriver()) {
        return !isInstallerRun;
    }
    StartChecks::applyDriverOptions(host().systemInfo);
    if (isInstallerRun) {
        installDriver();
        return false;
    }
    checkDriver();
    return true;
}

void AppPlatformWin::createMainWindow() { host().createMainWindow(); }

bool AppPlatformWin::uninstall()
{
    host().settings.removeStorage();
    // There was no start check that has taken COM.
    if (!m_comInitialized) {
        initializeCom();
    }
    setAutostart(false);
    if (host().systemInfo.needsMmioDriver()) {
        // What the tool could not remove doesn't hold the removal up.
        (void)runTool(QStringList { QStringLiteral("/uninstall") } + driverVariant(),
                      WindowsCalls::noTimeout, nullptr);
    }
    return true;
}

QString AppPlatformWin::logFilePath() const
{
    // "Brisora.exe.log"
    return host().executablePath + QLatin1String(".log");
}

bool AppPlatformWin::hasWriteAccess() const { return !core::flags::isSet(core::flags::noSupport); }

void AppPlatformWin::initializeCom()
{
    const std::int32_t result = m_calls->initializeCom();
    m_comInitialized = result >= 0;
    // COM of another mode, as the windows' thread may have it, serves as well.
    if (!m_comInitialized && result != WindowsCalls::comChangedMode) {
        LOG_WARN("COM can't be initialized: {:#010x}", static_cast<std::uint32_t>(result));
    }
}

void AppPlatformWin::installDriver()
{
    const ProcessResult result
        = runTool(driverVariant() << QStringLiteral("/install"), installTimeout, nullptr);
    // Required: only a wait that failed is told, not one that timed out.
    if (result == ProcessResult::WaitFailed) {
        m_calls->showWarning(
            host().systemInfo.machineName(),
            QStringLiteral("AppleSMC.sys installation timeout! Please contact support for "
                           "assistance."));
    }
}

void AppPlatformWin::checkDriver()
{
    std::uint32_t exitCode = 0;
    const ProcessResult result = runTool(driverVariant() << QStringLiteral("/is_installed"),
                                         WindowsCalls::noTimeout, &exitCode);
    // Required: after a wait that went well the exit code doesn't matter. Opening
    // the controller tells whether the driver is there.
    if (result != ProcessResult::Ended && exitCode == 0) {
        m_calls->showWarning(
            host().productTitle,
            QStringLiteral("AppleSMC.sys driver doesn't seem to be installed. Please reinstall "
                           "the app or contact support for assistance."));
    }
}

QStringList AppPlatformWin::driverVariant() const
{
    return StartChecks::needsAlternativeDriver(host().systemInfo)
        ? QStringList { QStringLiteral("/alt") }
        : QStringList();
}

ProcessResult AppPlatformWin::runTool(const QStringList& switches, std::uint32_t timeout,
                                      std::uint32_t* exitCode)
{
    constexpr std::uint32_t noCreationFlags = 0;
    const QString& executable = host().executablePath;
    const QString folder = executable.left(executable.lastIndexOf(QLatin1Char('\\')));
    return runProcess(*m_calls, folder + QLatin1String("\\AppleSMC.exe"),
                      switches.join(QLatin1Char(' ')), noCreationFlags, timeout, exitCode);
}
