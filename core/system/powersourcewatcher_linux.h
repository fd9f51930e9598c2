#pragma once

#include <memory>

#include <QDBusAbstractInterface>

#include "core/system/powersourcewatcher.h"

// The power service on the system bus, as far as it tells what has changed.
class PowerServiceProxy final : public QDBusAbstractInterface {
    Q_OBJECT

public:
    PowerServiceProxy();

Q_SIGNALS:
    // Named as on the bus.
    void PropertiesChanged(const QString& interface, const QVariantMap& changed,
                           const QStringList& invalidated);
};

namespace System {

// Looks at the kernel's files whenever the power service tells of another source.
// GUI thread.
class LinuxPowerSourceWatcher final : public PowerSourceWatcher {
    Q_OBJECT

public:
    using PowerSourceWatcher::PowerSourceWatcher;
    ~LinuxPowerSourceWatcher() override;

    void start();

private:
    std::unique_ptr<PowerServiceProxy> m_service; // null unless started
};

} // namespace System
