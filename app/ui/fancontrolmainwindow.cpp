#include "app/ui/fancontrolmainwindow.h"

#include <stdexcept>
#include <utility>

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QPushButton>

#include "app/fancontrol/fancontrol.h"
#include "app/fancontrol/fanprofilelist.h"
#include "app/sensors/tempsensorabstract.h"
#include "app/sensors/tempsensorprovider.h"
#include "app/settingskeys.h"
#include "app/ui/foregroundwindow.h"
#include "app/ui/productpages.h"
#include "app/ui/tables/qtablefanscontrolwidget.h"
#include "app/ui/tables/qtablefansrpmwidget.h"
#include "app/ui/texts.h"
#include "app/ui/tray/qtrayicon.h"
#include "app/ui/typeicons.h"
#include "app/ui/windowdialogs.h"
#include "core/application_flags.h"
#include "core/log/log.h"
#include "core/settings/qsettingscache.h"
#include "core/widgets/qcocoabutton.h"
#include "core/widgets/qmessageboxlocalized.h"
#include "core/widgets/widgethelpers.h"
#include "ui_fancontrolmainwindow.h"

namespace {

constexpr int noFan = -1;

} // namespace

QFanControlMainWindow::QFanControlMainWindow(QFanControl& fanControl, QSettingsCache& settings,
                                             MainWindowHost host)
    : QMainWindowEx(settings)
    , m_fanControl(&fanControl)
    , m_ui(std::make_unique<Ui::BrisoraClass>())
    , m_host(std::move(host))
    , m_rateSchedule(settings, m_host.now)
    , m_dialogs(new WindowDialogs(this, fanControl, settings))
{
    m_ui->setupUi(this);
    m_place = std::make_unique<WindowPlace>(*this, *m_ui->splitter, settings);
    makeButtons();
    m_ui->tableSensors->setSettings(settings);
    connectEngine();
    connectPresets();
    connectDialogs();

    setWindowTitle(QStringLiteral("%1 (%2)").arg(m_host.productTitle, m_host.machineName));
    setWindowIcon(applicationIcon());
    auto* const preferences = new QAction(this);
    preferences->setShortcut(QKeySequence(QStringLiteral("F9")));
    connect(preferences, &QAction::triggered, this, &QFanControlMainWindow::slotPreferences);
    addAction(preferences);
    setWindowFlags((windowFlags() & ~Qt::WindowMaximizeButtonHint) | Qt::CustomizeWindowHint);
    adjustSize();
    if (!restoreWindow()) {
        centerOnScreen(this);
    }
    m_place->restorePanes();
    m_ui->tableFans->setAccessibleDescription(QStringLiteral("Fans table"));
    m_ui->tableSensors->setAccessibleDescription(QStringLiteral("Sensors table"));
    slotUpdatePreferences();

    // The system's messages come to a window that was never shown, too.
    create();
    m_rateSchedule.ensureScheduled();
    m_fanControl->initialLoad(true);
}

QFanControlMainWindow::~QFanControlMainWindow() = default;

void QFanControlMainWindow::makeButtons()
{
    m_buttonPreferences = new QPushButton(this);
    m_buttonPreferences->setObjectName(QStringLiteral("buttonPreferences"));
    connect(m_buttonPreferences, &QPushButton::clicked, this,
            &QFanControlMainWindow::slotPreferences);
    m_buttonMinimize = new QPushButton(this);
    m_buttonMinimize->setObjectName(QStringLiteral("buttonMinimize"));
    connect(m_buttonMinimize, &QPushButton::clicked, this, &QFanControlMainWindow::hideToTray);
    m_buttonAbout = new QCocoaButton(this);
    m_buttonAbout->setObjectName(QStringLiteral("buttonAbout"));
    connect(m_buttonAbout, &QCocoaButton::clicked, this, &QFanControlMainWindow::slotInfoDialog);

    m_ui->buttonBox->addButton(m_buttonMinimize, QDialogButtonBox::RejectRole);
    m_ui->buttonBox->addButton(m_buttonPreferences, QDialogButtonBox::RejectRole);
    // The box takes no buttons that are wrapped; this one stands beside it as if it
    // were in it.
    m_ui->horizontalLayoutButtons->addWidget(m_buttonAbout);
    setTabOrder(followButtonOrder(*m_ui->buttonBox), m_buttonAbout);
}

void QFanControlMainWindow::connectEngine()
{
    connect(m_fanControl, &QFanControl::initFinished, this,
            &QFanControlMainWindow::slotInitFinished);
    connect(m_fanControl, &QFanControl::fanUpdate, this, &QFanControlMainWindow::slotFanUpdate);
    connect(m_fanControl, &QFanControl::sensor_update, this,
            &QFanControlMainWindow::slotSensorUpdate);
    connect(m_fanControl, &QFanControl::sensorsReloadBegin, this,
            &QFanControlMainWindow::slotSensorsReloadBegin);
    connect(m_fanControl, &QFanControl::sensorsReloadEnd, this,
            &QFanControlMainWindow::slotSensorsReloadEnd);
    connect(m_ui->tableFans, &QTableViewFans::fanManualModeClicked, this,
            &QFanControlMainWindow::slotShowFanDialog);
    connect(m_ui->tableFans, &QTableViewFans::fanAutoModeClicked, this,
            &QFanControlMainWindow::slotResetFanMode);
}

void QFanControlMainWindow::connectPresets()
{
    auto* const profiles = m_fanControl->profiles();
    auto* const bar = m_ui->profilesWidget;
    connect(profiles, &QFanProfileList::profilesChanged, this,
            &QFanControlMainWindow::profilesChanged);
    bar->setProfiles(*profiles);
    bar->setNameCallback([this](const QStringList& existingNames, const QString& currentName) {
        return letUserSelectProfileName(existingNames, currentName);
    });
    connect(bar, &QWidgetProfiles::setActiveProfile, m_fanControl,
            &QFanControl::changeActiveProfile);
    connect(bar, &QWidgetProfiles::deleteProfile, m_fanControl, &QFanControl::deleteProfile);
    connect(bar, &QWidgetProfiles::saveUnsavedProfile, profiles,
            &QFanProfileList::saveUnsavedProfile);
    connect(bar, &QWidgetProfiles::renameProfile, profiles, &QFanProfileList::renameProfile);
    connect(bar, &QWidgetProfiles::showCreateNewPresetMessage, this,
            &QFanControlMainWindow::slotShowNewPresetTip);
    bar->setEnabled(!m_host.isPassive);
}

void QFanControlMainWindow::connectDialogs()
{
    connect(m_dialogs, &WindowDialogs::preferencesChanged, this,
            &QFanControlMainWindow::slotUpdatePreferences);
    connect(m_dialogs, &WindowDialogs::customFanWanted, this, [this] { slotShowFanDialog(0); });
}

void QFanControlMainWindow::profilesChanged(QFanProfileList* profiles)
{
    m_ui->profilesWidget->slotProfilesChanged();
    m_ui->tableFans->slotProfilesChanged(profiles);
    alignTables();
    if (m_trayIcon != nullptr) {
        m_trayIcon->rebuildMenu();
    }
}

void QFanControlMainWindow::alignTables()
{
    m_ui->labelSensorsHeader->setMinimumHeight(m_ui->profilesWidget->sizeHint().height());
}

void QFanControlMainWindow::slotUpdatePreferences()
{
    m_ui->labelSensorsHeader->setText(uiText("MainWindow/staticSensorsListHeader"));
    m_ui->tableFans->translate();
    m_ui->tableSensors->slotUpdatePreferences();
    m_ui->profilesWidget->translate();
    m_buttonPreferences->setText(uiText("MainWindow/buttonPreferences"));
    m_buttonMinimize->setText(uiText("MainWindow/buttonMinimize"));
    padButton(m_buttonPreferences);
    padButton(m_buttonMinimize);
    m_buttonAbout->setText(QStringLiteral(" %1 ").arg(uiText("MainWindow/buttonAbout")));
    alignTables();
    updateTrayIcon();
}

void QFanControlMainWindow::slotInitFinished(uint8_t failed)
{
    // The load may end while the window closes for good.
    if (m_exiting) {
        return;
    }
    if (failed != 0) {
        QMessageBoxLocalized::critical(
            m_dialogs->parentWidget(), QStringLiteral("Crash"),
            QStringLiteral("Initial thread crashed, please contact support for assistance. "
                           "Technical information is copied to the clipboard."));
        slotCopyTechInfo();
        slotExit();
        return;
    }
    m_dialogs->noteLoaded();
    if (m_trayIcon == nullptr) {
        createTrayIcon();
    }
    m_ui->tableFans->initialize(*m_fanControl, m_host.isPassive);
    m_ui->tableSensors->load(*m_fanControl->sensorProvider());
    m_fanControl->startThreads();
    if (!m_host.hasWriteAccess()) {
        m_ui->profilesWidget->setEnabled(false);
    }
    if (core::flags::isSet(core::flags::firstStart)) {
        m_place->showFirst(*m_ui->tableSensors);
    }
}

void QFanControlMainWindow::createTrayIcon()
{
    TrayMenuOptions options;
    options.hasWebsite = ProductPages::hasHomePage();
    options.hasRatingPage = ProductPages::hasRatingPage();
    options.hasSocialPage = ProductPages::hasSocialPage();
    options.isUpdateCheckAvailable = false;
    m_trayIcon = new QTrayIcon(this, *m_fanControl, settings(), m_host.makeTrayPlatform(), options);
    // Queued: a dialog lasts, and a menu that is built anew meanwhile must not be the
    // one whose command still runs.
    const auto follow = [this](auto signal, auto* receiver, auto slot) {
        connect(m_trayIcon, signal, receiver, slot, Qt::QueuedConnection);
    };
    follow(&QTrayIcon::showMainWindow, this, &QFanControlMainWindow::slotRestore);
    follow(&QTrayIcon::gotoWebsite, this, &QFanControlMainWindow::slotHomePage);
    follow(&QTrayIcon::showPreferences, this, &QFanControlMainWindow::slotPreferences);
    follow(&QTrayIcon::exit, this, &QFanControlMainWindow::slotExit);
    follow(&QTrayIcon::showFanDialog, this, &QFanControlMainWindow::slotShowFanDialog);
    follow(&QTrayIcon::resetFanMode, this, &QFanControlMainWindow::slotResetFanMode);
    follow(&QTrayIcon::showAboutDialog, this, &QFanControlMainWindow::slotInfoDialog);
    follow(&QTrayIcon::rateApp, this, &QFanControlMainWindow::slotRateApp);
    follow(&QTrayIcon::followTwitter, this, &QFanControlMainWindow::slotFollowTwitter);
    follow(&QTrayIcon::copyTechInfo, this, &QFanControlMainWindow::slotCopyTechInfo);
    auto* const bar = m_ui->profilesWidget;
    follow(&QTrayIcon::setActiveProfile, bar, &QWidgetProfiles::setActiveProfile);
    follow(&QTrayIcon::unsavedSave, bar, &QWidgetProfiles::slotSave);
    follow(&QTrayIcon::unsavedDiscard, bar, &QWidgetProfiles::slotDiscard);
}

void QFanControlMainWindow::updateTrayIcon()
{
    if (m_trayIcon != nullptr) {
        m_trayIcon->updateIcon();
        m_trayIcon->rebuildMenu();
        m_trayIcon->updateToolTip();
    }
}

void QFanControlMainWindow::showFan(uint8_t fan, const FanSpeeds& speeds,
                                    const FanControlMode& mode)
{
    auto* const table = m_ui->tableFans;
    table->updateRow(fan, speeds.min, speeds.current, speeds.max, mode);
    auto* const control = table->getControlCell(fan);
    if (control != nullptr && table->fanUnderDialog() != fan) {
        control->showMode(mode);
    }
    if (auto* const rpm = table->getRpmCell(fan)) {
        rpm->showSpeeds(speeds.min, speeds.current, speeds.max);
    }
}

void QFanControlMainWindow::slotFanUpdate(uint8_t fan)
{
    const auto& fans = m_fanControl->getFans();
    if (fan >= fans.size()) {
        throw std::out_of_range("invalid vector<T> subscript");
    }
    const FanControlMode mode = m_fanControl->getFanMode(fan);
    showFan(fan, fans[fan].speeds(), mode);
    if (m_trayIcon == nullptr) {
        return;
    }
    m_trayIcon->updateToolTip();
    const auto seen = m_lastSeenModes.constFind(fan);
    if (seen == m_lastSeenModes.constEnd() || !(*seen == mode)) {
        m_trayIcon->rebuildMenu();
    }
    m_lastSeenModes.insert(fan, mode);
}

void QFanControlMainWindow::slotSensorUpdate(uint32_t id, double value)
{
    m_ui->tableSensors->update(id, value);
    if (m_trayIcon == nullptr) {
        return;
    }
    const auto* const selected = m_trayIcon->selectedSensor();
    if (selected != nullptr && selected->id() == id) {
        m_trayIcon->updateIcon();
    }
}

void QFanControlMainWindow::slotSensorsReloadBegin()
{
    m_ui->tableSensors->blockSignals(true);
    m_ui->tableSensors->clear();
}

void QFanControlMainWindow::slotSensorsReloadEnd()
{
    const auto* const provider = m_fanControl->sensorProvider();
    const QString traySensor = settings().getString(SettingsKeys::traySensor);
    if (!traySensor.isEmpty() && provider->getSensorByKey(traySensor) == nullptr) {
        settings().setString(SettingsKeys::traySensor, QString());
        updateTrayIcon();
    }
    m_ui->tableSensors->load(*provider);
    m_ui->tableSensors->blockSignals(false);
}

bool QFanControlMainWindow::ensureWriteAccess()
{
    if (m_host.hasWriteAccess()) {
        return true;
    }
    QString error;
    if (m_host.installWriteAccess(error)) {
        m_ui->profilesWidget->setEnabled(true);
        core::flags::set(core::flags::smcWriteInstalled);
        m_fanControl->startThreads();
        return true;
    }
    if (!error.isEmpty()) {
        m_host.showWriteAccessError(error, m_dialogs->parentWidget());
    }
    return false;
}

void QFanControlMainWindow::slotShowFanDialog(uint8_t fan)
{
    WindowDialogs::closeActive();
    m_ui->tableFans->setFanUnderDialog(fan);
    if (ensureWriteAccess()) {
        if (const auto order = m_dialogs->askFanMode(fan)) {
            m_fanControl->setFanMode(fan, order->mode, order->saveToPreset);
        }
    }
    m_ui->tableFans->setFanUnderDialog(noFan);
    if (auto* const cell = m_ui->tableFans->getControlCell(fan)) {
        cell->showLastMode();
    }
    slotFanUpdate(fan);
}

void QFanControlMainWindow::slotResetFanMode(uint8_t fan)
{
    if (!m_fanControl->getFanMode(fan).isAutomatic() && ensureWriteAccess()) {
        m_fanControl->setFanMode(fan, FanControlMode::automatic(), false);
    }
    slotFanUpdate(fan);
}

void QFanControlMainWindow::slotPreferences() { m_dialogs->showPreferences(m_host.preferences); }

void QFanControlMainWindow::slotInfoDialog() { m_dialogs->showInfo(); }

void QFanControlMainWindow::slotShowNewPresetTip() { m_dialogs->showNewPresetTip(); }

QString QFanControlMainWindow::letUserSelectProfileName(const QStringList& existingNames,
                                                        const QString& currentName)
{
    return m_dialogs->askPresetName(existingNames, currentName);
}

void QFanControlMainWindow::slotRestore()
{
    if (m_exiting) {
        return;
    }
    WindowDialogs::closeActive();
    if (isVisible() && !isMinimized()) {
        return;
    }
    showNormal();
    bringToForeground(this);
    askForRating();
}

void QFanControlMainWindow::askForRating()
{
    if (ProductPages::hasRatingPage()) {
        m_rateSchedule.askWhenDue([this] { return m_dialogs->askForRating(); },
                                  [this] { slotRateApp(); });
    }
}

void QFanControlMainWindow::slotExit()
{
    if (m_exiting) {
        return;
    }
    m_exiting = true;
    try {
        realClose();
    } catch (...) {
        // The next try runs it again.
        m_exiting = false;
        throw;
    }
}

void QFanControlMainWindow::slotHomePage() { ProductPages::openHomePage(); }

void QFanControlMainWindow::slotRateApp()
{
    ProductPages::openRatingPage();
    m_rateSchedule.skipRate();
}

void QFanControlMainWindow::slotFollowTwitter() { ProductPages::openSocialPage(); }

void QFanControlMainWindow::slotCopyTechInfo()
{
    if (auto* const clipboard = QApplication::clipboard()) {
        clipboard->setText(m_fanControl->getTechInfo() + QStringLiteral("\nLog:\n\n")
                           + m_host.readLog());
    }
}

void QFanControlMainWindow::closeForTermination()
{
    m_terminating = true;
    // A task that is parked for the machine's sleep must not hold the end up.
    m_fanControl->requestStop();
    slotExit();
}

void QFanControlMainWindow::onClose()
{
    m_exiting = true;
    // The engine may take seconds; no dialog must stand there dead.
    WindowDialogs::closeAll();
    saveWindow();
    if (m_wasShown) {
        m_place->savePanes();
    }
    hide();
    if (m_trayIcon != nullptr) {
        m_trayIcon->setVisible(false);
    }
    const bool stopped = m_fanControl->stopAndWaitForFinished();
    // At the end of a session the system may leave no time after this.
    core::log::flush();
    if (!stopped && !m_terminating) {
        QMessageBoxLocalized::warning(
            nullptr, m_host.productTitle,
            QStringLiteral("Unable to terminate the app in the right way, \nplease contact "
                           "support for assistance and resolving the problem."));
    }
}

void QFanControlMainWindow::startHidden()
{
    if (!m_host.isTrayAvailable()) {
        showMinimized();
    }
}

void QFanControlMainWindow::hideToTray()
{
    // Without a tray nothing else would bring it back.
    if (m_host.isTrayAvailable()) {
        hide();
    } else {
        showMinimized();
    }
}

void QFanControlMainWindow::noteVisibility() { m_shown = isVisible() && !isMinimized(); }

void QFanControlMainWindow::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::WindowStateChange) {
        noteVisibility();
        if (isMinimized() && isVisible() && m_host.isTrayAvailable()) {
            hide();
            event->ignore();
            return;
        }
    }
    QMainWindowEx::changeEvent(event);
}

void QFanControlMainWindow::showEvent(QShowEvent* event)
{
    m_wasShown = true;
    noteVisibility();
    QMainWindowEx::showEvent(event);
}

void QFanControlMainWindow::hideEvent(QHideEvent* event)
{
    m_shown = false;
    QMainWindowEx::hideEvent(event);
}
