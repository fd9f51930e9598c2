#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <QTemporaryDir>

#include "app/fancontrol/fancontrol.h"
#include "app/fancontrol/fanprofilelist.h"
#include "app/sensors/tempsensorabstract.h"
#include "app/sensors/tempsensorprovider.h"
#include "app/smc/platform.h"
#include "app/smc/service.h"
#include "app/sysinfo/sysinfo.h"
#include "core/settings/qsettingscache.h"
#include "core/threads/clock.h"
#include "tests/support/fakemachineidentity.h"
#include "tests/support/fakesmcplatform.h"
#include "tests/support/logcapture.h"

// A manual clock that counts the waits of the engine's tasks, so that a test can
// tell when they have done a pass. The thread that makes it is the GUI thread,
// whose waits are counted by themselves.
class SteppingClock final : public core::threads::Clock {
public:
    std::int64_t elapsedMilliseconds() const override;
    QDateTime now() const override;
    void sleep(std::uint32_t milliseconds) override { advance(milliseconds); }
    int waitForEvents(const std::vector<core::threads::event*>& events, bool waitAll,
                      std::uint32_t milliseconds) override;

    void advance(std::int64_t milliseconds);

    // Waits that the tasks have begun since the start, those of them that go on
    // and will time out, and waits for more of them in real time.
    [[nodiscard]] int waitsBegun() const;
    [[nodiscard]] int timedWaits() const;
    [[nodiscard]] bool waitForWaitsBegun(int count) const;
    [[nodiscard]] bool waitForGuiWaitsBegun(int count) const;

private:
    const std::thread::id m_guiThread = std::this_thread::get_id();
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    std::int64_t m_elapsed = 0;
    int m_waitsBegun = 0;
    int m_timedWaits = 0;
    int m_guiWaitsBegun = 0;
};

// The fake controller, with something that happens at each access.
class HookedPlatform final : public SMC::Platform {
public:
    // Called before each read or write, on the thread that does it; may block or
    // throw. To be set while no task runs.
    std::function<void(const std::string& key)> onRead;
    std::function<void(const std::string& key)> onWrite;
    FakeSmcPlatform fake;

    bool open() override { return fake.open(); }
    void close() override { fake.close(); }
    bool getKeyByIndex(std::uint32_t index, std::string& key) override
    {
        return fake.getKeyByIndex(index, key);
    }
    bool getKeyInfo(const char* key, SMC::KeyInfo& info) override
    {
        return fake.getKeyInfo(key, info);
    }
    bool readKey(const char* key, void* buffer, std::uint8_t length) override
    {
        if (onRead) {
            onRead(std::string(key).substr(0, 4));
        }
        return fake.readKey(key, buffer, length);
    }
    bool writeKey(const char* key, const void* data, std::uint8_t length) override
    {
        if (onWrite) {
            onWrite(std::string(key).substr(0, 4));
        }
        return fake.writeKey(key, data, length);
    }
};

// A machine of the given model with an engine on it: by default two fans of 2000
// to 6000 RPM that run at 2500 and 3000, and the sensors TA0P (30 degrees), TC0P
// (55) and TG0P (45), which the engine finds under these keys.
class EngineMachine {
public:
    // How long a test waits for what must come; milliseconds of real time.
    static constexpr int patience = 20000;

    // Once, before the first machine: resources and the types of the signals.
    static void prepareProcess();

    explicit EngineMachine(const QString& model = QStringLiteral("MacBookPro11,3"));
    ~EngineMachine();

    // The controller has none; before load().
    void removeFans();

    // Opens the controller, forgets its record, and loads.
    void open();
    void load();
    // Starts the tasks and waits until those that run have done their first pass.
    void start(int tasks = 2);
    // Lets the time of one pause pass and waits for the passes that follow.
    void tick(int count = 1);
    // Reloads the sensors and waits for the pass that the tasks begin then. Not
    // while one of them is parked.
    void reload();
    // A new engine, as after a restart of the program, with the GPUs that have
    // been provided for it.
    void makeEngine();

    [[nodiscard]] TemperatureSensorAbstract* sensor(const char* key) const;
    // What was written since the last call: "FS! 3" for a mask, "F0Tg 2500" for a
    // speed.
    [[nodiscard]] QStringList takeWrites();
    // The last of them, empty when there was none.
    [[nodiscard]] QString takeLastWrite();
    [[nodiscard]] QStringList takeReads();

    FakeMachineIdentity identity;
    SteppingClock clock;
    LogCapture log;
    HookedPlatform* platform = nullptr;
    FakeSmcPlatform* smc = nullptr;
    std::atomic<bool> hasWindow { true };
    std::atomic<bool> isVisible { true };
    std::atomic<bool> hasWriteAccess { true };
    System::PowerSource powerSource = System::PowerSourceAC;
    std::unique_ptr<GPU::Provider> gpuProvider; // for the next engine

private:
    QTemporaryDir m_folder;

public:
    const SystemInfo systemInfo;
    QSettingsCache settings;
    std::unique_ptr<SMC::Service> service;
    std::unique_ptr<QFanControl> engine;
};
