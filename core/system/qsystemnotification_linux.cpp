#include "core/system/qsystemnotification.h"

#include <utility>

#include "core/system/darkmodewatcher_linux.h"
#include "core/system/powersourcewatcher_linux.h"
#include "core/system/sleepwatcher_linux.h"

class QSystemNotificationPrivate {
public:
    explicit QSystemNotificationPrivate(System::PowerSourceWatcher::Reader readPowerSource)
        : powerSourceWatcher(std::move(readPowerSource))
    {
    }

    System::LinuxSleepWatcher sleepWatcher;
    System::LinuxPowerSourceWatcher powerSourceWatcher;
    System::LinuxDarkModeWatcher darkModeWatcher;
};

QSystemNotification::QSystemNotification(QObject* parent,
                                         System::PowerSourceWatcher::Reader readPowerSource)
    : QObject(parent)
    , m_private(std::make_unique<QSystemNotificationPrivate>(std::move(readPowerSource)))
{
    connect(&m_private->sleepWatcher, &System::LinuxSleepWatcher::enterSleepMode, this,
            &QSystemNotification::enterSleepMode);
    connect(&m_private->sleepWatcher, &System::LinuxSleepWatcher::wakeUp, this,
            &QSystemNotification::wakeUp);
    connect(&m_private->powerSourceWatcher, &System::PowerSourceWatcher::powerSourceChanged, this,
            &QSystemNotification::powerSourceChanged);
    connect(&m_private->darkModeWatcher, &System::DarkModeWatcher::darkModeChanged, this,
            &QSystemNotification::darkModeChanged);
}

QSystemNotification::~QSystemNotification() = default;

void QSystemNotification::sleepPrepared() { m_private->sleepWatcher.sleepPrepared(); }

void QSystemNotification::startSleepEvents(bool isPreparedFor)
{
    m_private->sleepWatcher.start();
    if (isPreparedFor) {
        m_private->sleepWatcher.delaySleep();
    }
}

void QSystemNotification::startDarkModeWatcher() { m_private->darkModeWatcher.start(); }

void QSystemNotification::startPowerSourceWatcher() { m_private->powerSourceWatcher.start(); }
