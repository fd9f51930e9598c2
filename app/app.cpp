#include "app/app.h"

#include <QClipboard>
#include <QDir>
#include <QPushButton>

#include "app/fancontrol/fancontrol.h"
#include "app/gpu/provider_win.h"
#include "app/platform/appplatformspecific.h"
#include "app/platform/platformhost.h"
#include "app/platform/systemplatform.h"
#include "app/selectionboxes.h"
#include "app/settingsdefaults.h"
#include "app/settingskeys.h"
#include "app/smc/options.h"
#include "app/smc/platform_win.h"
#include "app/smc/service.h"
#include "app/sysinfo/machine_identity.h"
#include "app/terminationsignals.h"
#include "app/ui/fancontrolmainwindow.h"
#include "app/ui/productpages.h"
#include "app/ui/tray/trayplatform.h"
#include "build_config.h"
#include "core/application_flags.h"
#include "core/language/languagestrings.h"
#include "core/log/log.h"
#include "core/log/log_file.h"
#include "core/settings/qsettingscache.h"
#include "core/system/qsystemnotification.h"
#include "core/threads/clock.h"
#include "core/widgets/qmessageboxlocalized.h"
#include "core/widgets/windowicon.h"

namespace {

QString temporaryFolder()
{
    const QString folder = QDir::tempPath();
    // The environment may name a folder that doesn't exist.
    return folder.isEmpty() ? QDir::homePath() : folder;
}

} // namespace

QBrisoraApp::QBrisoraApp(int& argc, char** argv)
    : QApplicationExSingle(argc, argv, QLatin1String(BuildConfig::productName),
                           QStringLiteral("BRISORA"))
    , m_identity(systemMachineIdentity())
    , m_systemInfo(*m_identity)
    , m_terminationSignals(std::make_unique<TerminationSignals>())
{
    // The engine's signals travel queued with these names in their signatures.
    QMetaType::registerNormalizedTypedef("uint8_t", QMetaType::UChar);
    QMetaType::registerNormalizedTypedef("uint16_t", QMetaType::UShort);
    QMetaType::registerNormalizedTypedef("uint32_t", QMetaType::UInt);

    setSettings(std::make_unique<QSettingsCache>(QLatin1String(BuildConfig::organizationName),
                                                 QLatin1String(BuildConfig::productName)));
    m_platform = makeSystemPlatform(makePlatformHost());
    m_smcService = makeService();
    m_fanControl = makeEngine();

    connect(this, &QBrisoraApp::anotherInstanceStarted, this,
            &QBrisoraApp::slotAnotherInstanceStarted);
    connect(m_terminationSignals.get(), &TerminationSignals::terminationRequested, this,
            &QBrisoraApp::terminate);
    initSettings();
    initLanguage();
}

QBrisoraApp::~QBrisoraApp()
{
    m_platform.reset();
    // The engine goes first: it gives the fans back through the service.
    m_fanControl.reset();
    m_smcService->close();
    m_smcService.reset();
    m_mainWindow.reset();
}

QBrisoraApp* QBrisoraApp::instance()
{
    return qobject_cast<QBrisoraApp*>(QCoreApplication::instance());
}

QBrisoraApp::ExitCode QBrisoraApp::initialize()
{
    readCommandLine();
    if (arguments().contains(QLatin1String("/uninstall"))) {
        m_platform->uninstall();
        return Uninstalled;
    }
    if (settings()->getInt(SettingsKeys::appFirstRun, -1) != 0) {
        settings()->setInt(SettingsKeys::appFirstRun, 0);
        core::flags::set(core::flags::firstStart);
    }

    core::log::initLogger(logFilePath().toStdWString());
    printSysInfo();
    // The settings were written before there was a log.
    settings()->reportFailure();

    if (isAnotherInstanceRunning()) {
        return AnotherInstance;
    }
    if (!m_platform->startCheck()) {
        return Refused;
    }
    connectSystemNotification();
    setModelOptions();
    if (core::flags::isSet(core::flags::noSupport)) {
        return Success;
    }
    return m_smcService->open() ? Success : NoController;
}

void QBrisoraApp::showMainWindow() { m_platform->createMainWindow(); }

void QBrisoraApp::showControllerError()
{
    QMessageBoxLocalized box;
    auto* copyButton = box.addButton(QStringLiteral("Copy log"), QMessageBox::NoRole);
    connect(
        copyButton, &QPushButton::clicked, &box, [this] { clipboard()->setText(readLog()); },
        Qt::DirectConnection);
    box.setEscapeButton(box.addButton(QMessageBox::Ok));
    box.setIcon(QMessageBox::Warning);
    box.setInformativeText(QStringLiteral(
        "Please make sure that your Mac system is supported and you have correctly installed "
        "the program."));
    box.setText(QStringLiteral("<b>Error initializing SMC interaction layer</b>"));
    box.setWindowTitle(m_systemInfo.machineName());
    box.setWindowIcon(::windowIcon());
    box.exec();
}

QString QBrisoraApp::productTitle() const
{
    return applicationName() + QLatin1Char(' ') + applicationVersion();
}

QString QBrisoraApp::logFilePath() const
{
    if (m_logFilePath.isEmpty()) {
        m_logFilePath = core::flags::isSet(core::flags::logFile)
            ? m_platform->logFilePath()
            : temporaryFolder() + QDir::separator() + QStringLiteral("Brisora.log");
    }
    return m_logFilePath;
}

QString QBrisoraApp::readLog() const
{
    core::log::flush();
    return QString::fromUtf8(core::log::readLogFile(logFilePath()));
}

void QBrisoraApp::slotAnotherInstanceStarted()
{
    if (m_mainWindow) {
        m_mainWindow->slotRestore();
    }
}

void QBrisoraApp::initSettings()
{
    applySettingsDefaults(*settings(), m_systemInfo);
    m_platform->afterSettings();
}

void QBrisoraApp::initLanguage()
{
    setDefaultLanguage(QStringLiteral(":/build/languages/English.xml"));
    loadLanguage(settings()->getString(SettingsKeys::interfaceLanguage));
    const QString fileName = language()->getLanguageFileName();
    if (!fileName.isEmpty()) {
        settings()->setString(SettingsKeys::interfaceLanguage, fileName);
    }
}

void QBrisoraApp::readCommandLine()
{
    const QStringList switches = arguments();
    m_startMinimized = switches.contains(QLatin1String("/minimized"));
    if (switches.contains(QLatin1String("/log"))) {
        core::flags::set(core::flags::logFile);
    }
    if (switches.contains(QLatin1String("/smcdump"))) {
        core::flags::set(core::flags::smcDump);
    }
}

void QBrisoraApp::printSysInfo() const
{
    using core::log::singleLine;
    LOG_INFO("{}", productTitle());
    LOG_INFO("{}", singleLine(m_systemInfo.osName()));
    LOG_INFO("{}", singleLine(m_systemInfo.machineName()));
    LOG_INFO(
        "{}",
        QStringLiteral("%1 [%2 cores]")
            .arg(singleLine(m_systemInfo.cpuName()), QString::number(m_systemInfo.coreCount())));
    LOG_INFO("{}", QStringLiteral("Qt %1").arg(QLatin1String(qVersion())));
}

void QBrisoraApp::setModelOptions() const
{
    switch (m_systemInfo.family()) {
    case ModelFamily::MacPro:
        SMC::Options::set(SMC::Option::InvertCoreTemps);
        break;
    case ModelFamily::iMacPro:
        SMC::Options::set(SMC::Option::DualFan);
        break;
    case ModelFamily::Xserve:
        SMC::Options::set(SMC::Option::XserveFanLimit);
        break;
    default:
        break;
    }
}

PlatformHost QBrisoraApp::makePlatformHost()
{
    return { .identity = *m_identity,
             .systemInfo = m_systemInfo,
             .settings = *settings(),
             .arguments = arguments(),
             .executablePath = QDir::toNativeSeparators(applicationFilePath()),
             .productTitle = productTitle(),
             .isStartMinimized = [this] { return m_startMinimized; },
             .createMainWindow = [this] { createMainWindow(); } };
}

void QBrisoraApp::createMainWindow()
{
    m_mainWindow
        = std::make_unique<QFanControlMainWindow>(*m_fanControl, *settings(), makeWindowHost());
    if (core::flags::isSet(core::flags::firstStart)) {
        return;
    }
    if (m_startMinimized) {
        m_mainWindow->startHidden();
    } else {
        m_mainWindow->show();
    }
}

MainWindowHost QBrisoraApp::makeWindowHost()
{
    MainWindowHost host;
    host.productTitle = productTitle();
    host.machineName = m_systemInfo.machineName();
    host.isPassive = m_systemInfo.isPassive();
    host.readLog = [this] { return readLog(); };
    host.hasWriteAccess = [this] { return m_platform->hasWriteAccess(); };
    host.installWriteAccess
        = [this](QString& error) { return m_platform->installWriteAccess(error); };
    host.showWriteAccessError = [this](const QString& error, QWidget* parent) {
        m_platform->showWriteAccessError(error, parent);
    };
    host.preferences.isAutostart = [this] { return m_platform->isAutostart(); };
    host.preferences.setAutostart = [this](bool enable) { m_platform->setAutostart(enable); };
    host.preferences.language = [this]() -> const LanguageStrings& { return *language(); };
    host.preferences.loadLanguage = [this](const QString& name) { loadLanguage(name); };
    if (ProductPages::hasTranslationPage()) {
        host.preferences.openTranslationPage = &ProductPages::openTranslationPage;
    }
    host.preferences.isEGpuCapable = m_systemInfo.isEGpuCapable();
    host.isTrayAvailable = &isTrayAvailable;
    host.makeTrayPlatform = &makeTrayPlatform;
    return host;
}

std::unique_ptr<SMC::Service> QBrisoraApp::makeService()
{
    return std::make_unique<SMC::Service>(std::make_unique<SMC::PlatformWin>(
        SMC::makeTransportFacts(), std::make_unique<SelectionBoxes>()));
}

std::unique_ptr<QFanControl> QBrisoraApp::makeEngine()
{
    QFanControl::Host host;
    host.hasMainWindow = [this] { return m_mainWindow != nullptr; };
    host.isMainWindowVisible
        = [this] { return m_mainWindow != nullptr && m_mainWindow->isShown(); };
    host.hasWriteAccess = [this] { return m_platform->hasWriteAccess(); };
    host.gpuProvider = GPU::ProviderWindows::create(m_systemInfo.wmiSystemData().videoControllers);
    return std::make_unique<QFanControl>(*m_smcService, *settings(), m_systemInfo,
                                         core::threads::Clock::system(), std::move(host));
}

void QBrisoraApp::connectSystemNotification()
{
    QFanControl* const engine = m_fanControl.get();
    auto* const notification = new QSystemNotification(engine);
    connect(notification, &QSystemNotification::enterSleepMode, engine,
            &QFanControl::slotEnteringSleepMode);
    connect(notification, &QSystemNotification::wakeUp, engine, &QFanControl::slotWakeUp);
    connect(notification, &QSystemNotification::userLoggedOut, engine,
            &QFanControl::slotUserLoggedOut);
    connect(engine, &QFanControl::sleepPrepared, notification, &QSystemNotification::sleepPrepared);
}

void QBrisoraApp::terminate()
{
    if (m_mainWindow) {
        m_mainWindow->closeForTermination();
    } else {
        quit();
    }
}
