#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include <QObject>
#include <QString>

#include "app/fancontrol/enginecontext.h"
#include "app/fancontrol/fancontrolmode.h"
#include "app/fancontrol/fanhardware.h"
#include "app/fancontrol/fanprofile.h"
#include "app/fancontrol/fanrecord.h"
#include "app/fancontrol/reloadrendezvous.h"
#include "app/gpu/provider.h"
#include "app/sensors/tempsensorprovider.h"
#include "core/system/powersource.h"
#include "core/threads/event.h"
#include "core/threads/task.h"

class QFanProfileList;
class QSettingsCache;
class SystemInfo;

namespace SMC {
class Service;
}

// The engine: loads the fans, keeps their speeds and the sensors up to date, and
// turns the active preset into writes to the controller. Its work runs on tasks
// of its own; operations and slots belong to the GUI thread unless they say
// otherwise. When it stops, it gives the fans back to the controller.
class QFanControl : public QObject {
    Q_OBJECT

public:
    // What the engine asks of the application around it.
    struct Host {
        std::function<bool()> hasMainWindow;
        std::function<bool()> isMainWindowVisible; // called from any thread
        std::function<bool()> hasWriteAccess;
        std::function<System::PowerSource()> powerSource = &getPowerSource;
        TemperatureSensorProvider::DriveLoader loadDrives = &TempSensorDisk::loadAvailableSensors;
        std::unique_ptr<GPU::Provider> gpuProvider = nullptr; // null: no GPU is looked for
    };

    // The references must outlive the engine. One engine at a time: it provides
    // the name function of the control modes.
    QFanControl(SMC::Service& service, QSettingsCache& settings, const SystemInfo& systemInfo,
                core::threads::Clock& clock, Host host, QObject* parent = nullptr);
    // Ends the tasks, a parked one too, whatever time that takes, and gives the
    // fans back if that hasn't been done. Then saves the presets.
    ~QFanControl() override;

    // Loads fans, sensors and presets, once; ends with initFinished. With async
    // it returns at once.
    void initialLoad(bool async);
    // Starts what does not run of the two periodic tasks, once the load is over:
    // the control task only with write access. Fans that an exception has given
    // back are driven again, and without write access no fan stays forced.
    void startThreads();
    // Ends all tasks; false when they did not end within 8 seconds, as happens
    // while the machine sleeps. The fans have been given back when it is true.
    [[nodiscard]] bool stopAndWaitForFinished();
    // Asks all tasks to end, a parked one too, and does not wait for them: for a
    // stop that must not be held up by sleep.
    void requestStop();

    // The fan's mode in the active preset; invalid while there is none. From any
    // thread.
    [[nodiscard]] FanControlMode getFanMode(std::uint8_t fan) const;
    // Changes one fan in the active preset, which so becomes another stored one
    // or the unsaved one. saveToPreset keeps the change under the name that the
    // active preset had. Modes that are invalid or not assigned are ignored, and
    // so is all that comes before the load has ended.
    void setFanMode(std::uint8_t fan, const FanControlMode& mode, bool saveToPreset);
    // The index is the fan's id. Empty until the load has found the fans, fixed
    // afterwards. From any thread.
    [[nodiscard]] const std::vector<FanRecord>& getFans() const { return m_hardware.fans(); }
    [[nodiscard]] std::uint8_t fanCount() const { return m_hardware.fanCount(); }
    // The technical report, for a person. Reads the controller.
    [[nodiscard]] QString getTechInfo() const;

    [[nodiscard]] QFanProfileList* profiles() const { return m_profiles; }
    [[nodiscard]] TemperatureSensorProvider* sensorProvider() const { return m_sensorProvider; }

Q_SIGNALS:
    // 0: the load has ended; anything else: it has failed.
    void initFinished(uint8_t failed);
    // A fan's speed was read. Emitted on the update task.
    void fanUpdate(uint8_t fan);
    // A sensor was read; degrees Celsius. Emitted on the update task.
    void sensor_update(uint32_t sensorId, double value);
    // All sensors are about to go; the new ones are there.
    void sensorsReloadBegin();
    void sensorsReloadEnd();
    // The fans are as the machine's sleep shall find them, after each
    // slotEnteringSleepMode. May be emitted on the control task.
    void sleepPrepared();

public Q_SLOTS:
    void slotEnteringSleepMode();
    void slotWakeUp();
    void slotUserLoggedOut();
    // Builds the sensors anew. While the load runs, or when a task can't be paused
    // in reasonable time, that happens later.
    void slotSensorsReload();
    // Ignored for a preset that isn't valid, and before the load has ended.
    void changeActiveProfile(FanProfile profile);
    void deleteProfile(FanProfile profile);

private:
    void initialLoadThread();
    void updateThread();
    void controlFanSpeedThread();
    // False when the task could not be started.
    bool startTask(core::threads::Task& task, ReloadRendezvous::Member& member, const char* name,
                   const std::function<void()>& work);
    // Runs a task's work; an exception gives the fans back and goes on.
    void runTask(ReloadRendezvous::Member& member, const std::function<void()>& work);

    [[nodiscard]] bool isReadyForChanges() const;
    void restoreDefaultControl();
    void restoreControlUnlessDone();
    void restoreControlAfterException();
    void reloadSensors();
    void retrySensorsReload();
    void postReloadRetry();

    SMC::Service& m_smc;
    QSettingsCache& m_settings;
    const SystemInfo& m_systemInfo;
    core::threads::Clock& m_clock;
    const Host m_host;
    QFanProfileList* const m_profiles; // child
    TemperatureSensorProvider* const m_sensorProvider; // child

    core::threads::event m_eventStop; // set once, ends every task
    core::threads::event m_eventInitDone; // the load has ended
    core::threads::event m_eventWake; // ends the control task's wait during sleep
    std::atomic<bool> m_sleeping { false };
    std::atomic<bool> m_userLoggedOut { false };
    std::atomic<bool> m_isLoadOver { false };
    std::atomic<bool> m_reloadPending { false };
    bool m_isReloading = false;
    bool m_loadStarted = false;

    FanHardware m_hardware;
    ReloadRendezvous m_reload;
    ReloadRendezvous::Member m_updateMember;
    ReloadRendezvous::Member m_controlMember;
    const EngineContext m_context;

    core::threads::Task m_ThreadInit;
    core::threads::Task m_ThreadUpdate;
    core::threads::Task m_ThreadControl;
};
