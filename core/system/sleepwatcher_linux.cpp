#include "core/system/sleepwatcher_linux.h"

#include <utility>

#include <QDBusServiceWatcher>

#include "core/log/log.h"
#include "core/system/loginmanager_linux.h"

namespace System {

namespace {

// How long the sleep waits for this program at most; milliseconds. The login
// manager's own patience is five seconds, unless its settings say otherwise.
constexpr int preparationTime = 3000;

} // namespace

LinuxSleepWatcher::LinuxSleepWatcher()
{
    m_patience.setSingleShot(true);
    m_patience.setTimerType(Qt::PreciseTimer);
    m_patience.setInterval(preparationTime);
    connect(&m_patience, &QTimer::timeout, this, &LinuxSleepWatcher::sleepPrepared);
}

LinuxSleepWatcher::~LinuxSleepWatcher() = default;

void LinuxSleepWatcher::start()
{
    if (!m_loginManager) {
        m_loginManager = std::make_unique<LoginManager>();
        connect(m_loginManager.get(), &LoginManager::PrepareForSleep, this,
                &LinuxSleepWatcher::prepareForSleep);
        // A manager that is gone tells of no wake, nor does the next one.
        const auto* const presence = new QDBusServiceWatcher(
            m_loginManager->service(), m_loginManager->connection(),
            QDBusServiceWatcher::WatchForUnregistration, m_loginManager.get());
        connect(presence, &QDBusServiceWatcher::serviceUnregistered, this, [this] {
            if (m_isSleepBeginning) {
                prepareForSleep(false);
            }
        });
    }
}

void LinuxSleepWatcher::delaySleep()
{
    if (m_lock) {
        return;
    }
    start();
    m_lock = std::make_unique<DelayLock>(*m_loginManager, QStringLiteral("sleep"),
                                         QStringLiteral("Gets ready for the sleep"));
    connect(m_lock.get(), &DelayLock::refused, this, [this](const QString& reason) {
        if (std::exchange(m_isRefusalLogged, true)) {
            return;
        }
        LOG_INFO("The system's sleep can't be delayed: {}", core::log::singleLine(reason));
    });
    m_lock->take();
}

void LinuxSleepWatcher::sleepPrepared()
{
    // What comes too late must not give up the lock for the next sleep.
    if (m_isSleepBeginning && m_lock) {
        m_patience.stop();
        m_lock->release();
    }
}

void LinuxSleepWatcher::prepareForSleep(bool begins)
{
    m_isSleepBeginning = begins;
    if (begins) {
        m_patience.start();
        Q_EMIT enterSleepMode();
        return;
    }
    m_patience.stop();
    Q_EMIT wakeUp();
    if (m_lock) {
        m_lock->take();
    }
}

} // namespace System
