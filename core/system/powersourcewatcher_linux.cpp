#include "core/system/powersourcewatcher_linux.h"

#include <QDBusConnection>

PowerServiceProxy::PowerServiceProxy()
    : QDBusAbstractInterface(
        QStringLiteral("org.freedesktop.UPower"), QStringLiteral("/org/freedesktop/UPower"),
        "org.freedesktop.DBus.Properties", QDBusConnection::systemBus(), nullptr)
{
}

namespace System {

LinuxPowerSourceWatcher::~LinuxPowerSourceWatcher() = default;

void LinuxPowerSourceWatcher::start()
{
    if (m_service) {
        return;
    }
    takeSource();
    m_service = std::make_unique<PowerServiceProxy>();
    connect(m_service.get(), &PowerServiceProxy::PropertiesChanged, this,
            [this](const QString& interface, const QVariantMap& changed,
                   const QStringList& invalidated) {
                const QString property = QStringLiteral("OnBattery");
                if (interface == QLatin1String("org.freedesktop.UPower")
                    && (changed.contains(property) || invalidated.contains(property))) {
                    lookForChange();
                }
            });
}

} // namespace System
