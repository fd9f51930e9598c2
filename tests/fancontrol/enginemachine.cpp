#include "tests/fancontrol/enginemachine.h"

#include <chrono>
#include <utility>

#include <QSettings>
#include <QTest>

#include "app/fancontrol/fanprofile.h"
#include "app/smc/options.h"
#include "core/threads/event.h"
#include "core/threads/wfmo_monitor.h"
#include "resources/resources.h"

namespace {

constexpr std::chrono::milliseconds waitLimit(EngineMachine::patience);
// How often a wait looks at the clock that the test moves; milliseconds of real
// time.
constexpr std::uint32_t pollInterval = 1;

QString toText(const FakeSmcPlatform::Write& write)
{
    const int raw = write.value.size() == 2 ? write.value[0] * 256 + write.value[1] : -1;
    const QString key = QString::fromStdString(write.key);
    const bool isMask = key == QLatin1String("FS! ");
    return isMask ? QStringLiteral("FS! %1").arg(raw)
                  : QStringLiteral("%1 %2").arg(key).arg(raw / 4);
}

} // namespace

std::int64_t SteppingClock::elapsedMilliseconds() const
{
    const std::lock_guard lock(m_mutex);
    return m_elapsed;
}

QDateTime SteppingClock::now() const
{
    static const QDateTime start(QDate(2026, 1, 1), QTime(0, 0), Qt::UTC);
    return start.addMSecs(elapsedMilliseconds());
}

int SteppingClock::waitForEvents(const std::vector<core::threads::event*>& events, bool waitAll,
                                 std::uint32_t milliseconds)
{
    const bool isGui = std::this_thread::get_id() == m_guiThread;
    const bool isTimed = milliseconds != core::threads::event::infinite;
    const int timedWait = isTimed && !isGui ? 1 : 0;

    std::unique_lock lock(m_mutex);
    const std::int64_t end = m_elapsed + milliseconds;
    ++(isGui ? m_guiWaitsBegun : m_waitsBegun);
    m_timedWaits += timedWait;
    m_changed.notify_all();
    int result = core::threads::wfmo_monitor::timedOut;
    do {
        lock.unlock();
        core::threads::wfmo_monitor monitor;
        result = monitor.waitForMultipleEvents(events, waitAll, pollInterval);
        lock.lock();
    } while (result == core::threads::wfmo_monitor::timedOut && (!isTimed || m_elapsed < end));
    m_timedWaits -= timedWait;
    return result;
}

void SteppingClock::advance(std::int64_t milliseconds)
{
    const std::lock_guard lock(m_mutex);
    m_elapsed += milliseconds;
}

int SteppingClock::waitsBegun() const
{
    const std::lock_guard lock(m_mutex);
    return m_waitsBegun;
}

int SteppingClock::timedWaits() const
{
    const std::lock_guard lock(m_mutex);
    return m_timedWaits;
}

bool SteppingClock::waitForWaitsBegun(int count) const
{
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, waitLimit, [this, count] { return m_waitsBegun >= count; });
}

bool SteppingClock::waitForGuiWaitsBegun(int count) const
{
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, waitLimit, [this, count] { return m_guiWaitsBegun >= count; });
}

void EngineMachine::prepareProcess()
{
    initResources();
    qRegisterMetaType<uint8_t>("uint8_t");
    qRegisterMetaType<uint32_t>("uint32_t");
}

EngineMachine::EngineMachine(const QString& model)
    : identity(model)
    , systemInfo(identity)
    , settings(std::make_unique<QSettings>(m_folder.filePath(QStringLiteral("settings.ini")),
                                           QSettings::IniFormat))
{
    SMC::Options::clear();
    FanProfile::setFanCount(0);

    auto hooked = std::make_unique<HookedPlatform>();
    platform = hooked.get();
    smc = &hooked->fake;
    smc->addFan(0, "Left", 2500, 2000, 6000);
    smc->addFan(1, "Right", 3000, 2000, 6000);
    smc->setTemperature("TA0P", 30.0);
    smc->setTemperature("TC0P", 55.0);
    smc->setTemperature("TG0P", 45.0);
    // The search for temperatures needs a key that comes after them.
    smc->setKey("VRev", "ui8 ", { 1 });

    service = std::make_unique<SMC::Service>(std::move(hooked));
    makeEngine();
}

EngineMachine::~EngineMachine() { engine.reset(); }

void EngineMachine::makeEngine()
{
    engine.reset();
    engine = std::make_unique<QFanControl>(
        *service, settings, systemInfo, clock,
        QFanControl::Host {
            [this] { return hasWindow.load(); }, [this] { return isVisible.load(); },
            [this] { return hasWriteAccess.load(); }, [this] { return powerSource; },
            [](bool, bool) { return TempSensorDisk::List(); }, std::move(gpuProvider) });
}

void EngineMachine::removeFans() { smc->setKey("FNum", "ui8 ", { 0 }); }

void EngineMachine::open()
{
    QVERIFY(service->open());
    smc->clearRecord();
}

void EngineMachine::load()
{
    open();
    engine->initialLoad(false);
}

void EngineMachine::start(int tasks)
{
    const int begun = clock.waitsBegun();
    engine->startThreads();
    QVERIFY(clock.waitForWaitsBegun(begun + tasks));
}

void EngineMachine::tick(int count)
{
    for (int i = 0; i < count; ++i) {
        const int begun = clock.waitsBegun();
        const int expected = clock.timedWaits();
        QVERIFY(expected > 0); // somebody waits for the time to pass
        clock.advance(EngineContext::passInterval);
        QVERIFY(clock.waitForWaitsBegun(begun + expected));
    }
}

void EngineMachine::reload()
{
    const int waiting = clock.timedWaits();
    engine->slotSensorsReload();
    // Each task has left its wait for the reload.
    QTRY_COMPARE_WITH_TIMEOUT(clock.timedWaits(), waiting, patience);
}

TemperatureSensorAbstract* EngineMachine::sensor(const char* key) const
{
    return engine->sensorProvider()->getSensorByKey(QString::fromLatin1(key));
}

QStringList EngineMachine::takeWrites()
{
    QStringList result;
    const auto writes = smc->writes();
    for (const auto& write : writes) {
        result.append(toText(write));
    }
    smc->clearRecord();
    return result;
}

QString EngineMachine::takeLastWrite()
{
    const QStringList writes = takeWrites();
    return writes.value(writes.size() - 1);
}

QStringList EngineMachine::takeReads()
{
    QStringList result;
    const auto reads = smc->reads();
    for (const auto& key : reads) {
        result.append(QString::fromStdString(key));
    }
    smc->clearRecord();
    return result;
}
