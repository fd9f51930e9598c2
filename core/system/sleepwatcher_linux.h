#pragma once

#include <memory>

#include <QObject>
#include <QTimer>

class DelayLock;
class LoginManager;

namespace System {

// Tells of the machine's sleep as the login manager does. GUI thread.
class LinuxSleepWatcher final : public QObject {
    Q_OBJECT

public:
    LinuxSleepWatcher();
    ~LinuxSleepWatcher() override;

    void start();
    // From now on the sleep waits for the program, up to three seconds, until it is
    // prepared. Starts the watcher as well.
    void delaySleep();
    // Lets a sleep that waits begin.
    void sleepPrepared();

Q_SIGNALS:
    void enterSleepMode();
    void wakeUp();

private:
    void prepareForSleep(bool begins);

    std::unique_ptr<LoginManager> m_loginManager; // null unless started
    std::unique_ptr<DelayLock> m_lock; // null unless the sleep is to wait
    QTimer m_patience;
    bool m_isSleepBeginning = false;
    bool m_isRefusalLogged = false;
};

} // namespace System
