#include "app/fancontrol/fancontrol.h"

#include <exception>
#include <utility>

#include <QScopeGuard>

#include "app/fancontrol/controltask.h"
#include "app/fancontrol/fanprofilelist.h"
#include "app/fancontrol/techinfo.h"
#include "app/fancontrol/updatetask.h"
#include "core/application_flags.h"
#include "core/log/log.h"
#include "core/threads/clock.h"

namespace {

// How long the tasks have to end, and how often their state is logged meanwhile;
// milliseconds.
constexpr int stopTimeout = 8000;
constexpr int stopInterval = 200;

// How long the interface and the task that has paused may stand still for one that
// doesn't; milliseconds.
constexpr std::uint32_t pauseTimeout = 1000;

} // namespace

QFanControl::QFanControl(SMC::Service& service, QSettingsCache& settings,
                         const SystemInfo& systemInfo, core::threads::Clock& clock, Host host,
                         QObject* parent)
    : QObject(parent)
    , m_smc(service)
    , m_settings(settings)
    , m_systemInfo(systemInfo)
    , m_clock(clock)
    , m_host(std::move(host))
    , m_profiles(new QFanProfileList(settings, this))
    , m_sensorProvider(new TemperatureSensorProvider(systemInfo, settings, m_host.loadDrives, this))
    , m_hardware(service, *m_profiles, systemInfo, clock)
    , m_reload(clock, m_eventStop,
               [this] {
                   m_reloadPending = true;
                   postReloadRetry();
               })
    , m_context { clock,    m_hardware,  *m_profiles, *m_sensorProvider,
                  m_reload, m_eventStop, m_eventWake, m_sleeping }
{
    FanControlMode::setSensorNameFunction([provider = m_sensorProvider](const QString& key) {
        return provider->getSensorDisplayNameByKey(key);
    });
    connect(m_sensorProvider, &TemperatureSensorProvider::reloadRequired, this,
            &QFanControl::slotSensorsReload);
}

QFanControl::~QFanControl()
{
    requestStop();
    m_ThreadInit.join();
    m_ThreadUpdate.join();
    m_ThreadControl.join();
    restoreControlUnlessDone();

    m_profiles->save();
    m_sensorProvider->unload(m_host.gpuProvider.get());
    FanControlMode::setSensorNameFunction({});
}

void QFanControl::initialLoad(bool async)
{
    if (std::exchange(m_loadStarted, true)) {
        return;
    }
    if (async) {
        m_ThreadInit.start("brisora-load", [this] { initialLoadThread(); });
    } else {
        initialLoadThread();
    }
}

void QFanControl::startThreads()
{
    if (m_eventStop.isSet()) {
        return;
    }
    if (!m_ThreadUpdate.isRunning()) {
        startTask(m_ThreadUpdate, m_updateMember, "brisora-update",
                  [this, hasWindow = m_host.hasMainWindow()] {
                      if (hasWindow) {
                          updateThread();
                      }
                  });
    }
    if (m_ThreadControl.isRunning() && !m_hardware.isClosed()) {
        return;
    }
    if (!m_host.hasWriteAccess()) {
        LOG_WARN("Helper tool is not installed, thread cannot start");
        // The load may have forced fans that nobody drives now.
        restoreControlUnlessDone();
        return;
    }
    m_hardware.claim();
    if (!m_ThreadControl.isRunning()
        && !startTask(m_ThreadControl, m_controlMember, "brisora-control",
                      [this] { controlFanSpeedThread(); })) {
        restoreControlUnlessDone();
    }
}

bool QFanControl::startTask(core::threads::Task& task, ReloadRendezvous::Member& member,
                            const char* name, const std::function<void()>& work)
{
    m_reload.enter(member);
    try {
        return task.start(name, [this, &member, work] { runTask(member, work); });
    } catch (const std::exception& error) {
        m_reload.leave(member);
        LOG_ERR("Task {} can't be started: {}", name, error.what());
        return false;
    }
}

bool QFanControl::stopAndWaitForFinished()
{
    m_eventStop.set();
    const auto isAnyRunning = [this] {
        return m_ThreadInit.isRunning() || m_ThreadUpdate.isRunning()
            || m_ThreadControl.isRunning();
    };
    for (int remaining = stopTimeout; isAnyRunning(); remaining -= stopInterval) {
        if (remaining < 1) {
            LOG_ERR("stopAndWaitForFinished ERROR: m_ThreadUpdate = {}, m_ThreadInit = {}, "
                    "m_ThreadControl = {}",
                    m_ThreadUpdate.isRunning(), m_ThreadInit.isRunning(),
                    m_ThreadControl.isRunning());
            return false;
        }
        LOG_INFO("stopAndWaitForFinished: m_ThreadUpdate = {}, m_ThreadInit = {}, "
                 "m_ThreadControl = {}",
                 m_ThreadUpdate.isRunning(), m_ThreadInit.isRunning(), m_ThreadControl.isRunning());
        m_clock.waitForEvents(
            { &m_ThreadInit.ended(), &m_ThreadUpdate.ended(), &m_ThreadControl.ended() }, true,
            stopInterval);
    }
    restoreControlUnlessDone();
    LOG_INFO("stopAndWaitForFinished: Quit OK");
    return true;
}

void QFanControl::requestStop()
{
    m_eventStop.set();
    m_eventWake.set();
}

FanControlMode QFanControl::getFanMode(std::uint8_t fan) const { return m_hardware.mode(fan); }

void QFanControl::setFanMode(std::uint8_t fan, const FanControlMode& mode, bool saveToPreset)
{
    if (!isReadyForChanges() || fan >= fanCount() || mode.type() == FanControlInvalid
        || mode.type() == FanControlNotAssigned) {
        return;
    }
    FanProfile changed = m_profiles->activeProfile();
    changed.setMode(fan, mode);
    m_profiles->setActiveProfile(changed);
    m_hardware.applyControlModes();
    if (saveToPreset) {
        m_profiles->saveUnsavedProfile(changed.name());
    }
}

QString QFanControl::getTechInfo() const
{
    return QStringLiteral("%1\n\nFans:\n%2\n%3")
        .arg(TechInfo::header(m_systemInfo, m_host.powerSource()), TechInfo::fans(m_hardware),
             m_sensorProvider->getTechInfo(&m_smc));
}

void QFanControl::slotEnteringSleepMode()
{
    m_sleeping = true;
    LOG_INFO("slotEnteringSleepMode");
    // A control task that runs tells by itself when it has parked.
    if (!m_ThreadControl.isRunning()) {
        Q_EMIT sleepPrepared();
    }
}

void QFanControl::slotWakeUp()
{
    m_sleeping = false;
    LOG_INFO("slotWakeUp");
    m_eventWake.set();
}

void QFanControl::slotUserLoggedOut()
{
    LOG_INFO("slotUserLoggedOut");
    m_userLoggedOut = true;
}

void QFanControl::slotSensorsReload()
{
    // Whoever sees the request after the load or a reload has ended takes it.
    m_reloadPending = true;
    if (m_eventInitDone.isSet() && !m_isReloading && !m_eventStop.isSet()) {
        retrySensorsReload();
    }
}

void QFanControl::changeActiveProfile(FanProfile profile)
{
    if (!isReadyForChanges() || !profile.isValid()) {
        return;
    }
    m_profiles->setActiveProfile(profile);
    m_hardware.applyControlModes();
}

void QFanControl::deleteProfile(FanProfile profile)
{
    const FanProfile active = m_profiles->activeProfile();
    m_profiles->deleteProfile(profile);
    if (active.hasSameModes(profile)) {
        // profilesChanged comes a second time here: required.
        changeActiveProfile(m_profiles->activeProfile());
    }
}

void QFanControl::initialLoadThread()
{
    LOG_INFO("initialLoadThread");
    m_eventInitDone.reset();
    // Reserved: the test is required, its result has no use yet.
    static_cast<void>(core::flags::isSet(core::flags::smcDump));
    uint8_t failed = 0;
    try {
        m_hardware.load();
        m_sensorProvider->load(&m_smc, m_host.gpuProvider.get());
        if (m_hardware.isUsable()) {
            m_profiles->loadCustom();
            m_profiles->loadActive();
            if (!m_eventStop.isSet()) {
                m_hardware.applyControlModes();
            }
        }
    } catch (const std::exception& error) {
        LOG_ERR("initialLoadThread failed: {}", error.what());
        failed = 1;
    } catch (...) {
        LOG_ERR("initialLoadThread failed");
        failed = 1;
    }
    if (failed != 0) {
        restoreControlAfterException();
    }
    m_isLoadOver = true;
    if (!m_eventStop.isSet()) {
        Q_EMIT initFinished(failed);
    }
    m_eventInitDone.set();
    if (m_reloadPending) {
        postReloadRetry();
    }
}

void QFanControl::updateThread()
{
    UpdateTask task(
        m_context, m_updateMember, m_settings,
        { m_host.isMainWindowVisible, [this](std::uint8_t fan) { Q_EMIT fanUpdate(fan); },
          [this](std::uint32_t id, double value) { Q_EMIT sensor_update(id, value); } });
    task.run();
}

void QFanControl::controlFanSpeedThread()
{
    ControlTask task(m_context, m_controlMember, [this] { Q_EMIT sleepPrepared(); });
    task.run();
    restoreDefaultControl();
}

void QFanControl::runTask(ReloadRendezvous::Member& member, const std::function<void()>& work)
{
    const auto leave = qScopeGuard([this, &member] { m_reload.leave(member); });
    try {
        work();
    } catch (...) {
        restoreControlAfterException();
        throw;
    }
}

// Without fans there is nothing to choose, and a choice would end the wait for
// what is stored.
bool QFanControl::isReadyForChanges() const { return m_isLoadOver && fanCount() > 0; }

void QFanControl::restoreDefaultControl() { m_hardware.restoreDefaultControl(m_userLoggedOut); }

// The fans may be forced, and no control task has given them back or will.
void QFanControl::restoreControlUnlessDone()
{
    if (m_loadStarted && m_hardware.isUsable() && !m_hardware.isReleased()) {
        restoreDefaultControl();
    }
}

// What fails here is tried again at the end.
void QFanControl::restoreControlAfterException()
{
    try {
        restoreControlUnlessDone();
    } catch (const std::exception& error) {
        LOG_ERR("The fans can't be given back: {}", error.what());
    } catch (...) {
        LOG_ERR("The fans can't be given back");
    }
}

void QFanControl::retrySensorsReload()
{
    if (m_eventStop.isSet() || m_isReloading || !m_reloadPending.exchange(false)) {
        return;
    }
    m_isReloading = true;
    reloadSensors();
    m_isReloading = false;
    if (m_reloadPending) {
        postReloadRetry();
    }
}

void QFanControl::reloadSensors()
{
    if (!m_reload.holdTasks(pauseTimeout)) {
        // The task that is late asks for the reload again.
        LOG_WARN("The tasks can't be paused, the sensors are loaded later");
        return;
    }
    const auto resume = qScopeGuard([this] { m_reload.resumeTasks(); });
    Q_EMIT sensorsReloadBegin();
    m_sensorProvider->unload(m_host.gpuProvider.get());
    m_sensorProvider->load(&m_smc, m_host.gpuProvider.get());
    Q_EMIT sensorsReloadEnd();
}

void QFanControl::postReloadRetry()
{
    QMetaObject::invokeMethod(this, &QFanControl::retrySensorsReload, Qt::QueuedConnection);
}
