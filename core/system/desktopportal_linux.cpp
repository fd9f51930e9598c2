#include "core/system/desktopportal_linux.h"

#include <QDBusConnection>
#include <QDBusMessage>

namespace {

QString appearance() { return QStringLiteral("org.freedesktop.appearance"); }
QString colorScheme() { return QStringLiteral("color-scheme"); }

std::weak_ptr<KnownLook>& knownLook()
{
    static std::weak_ptr<KnownLook> look;
    return look;
}

} // namespace

PortalSettings::PortalSettings()
    : QDBusAbstractInterface(QStringLiteral("org.freedesktop.portal.Desktop"),
                             QStringLiteral("/org/freedesktop/portal/desktop"),
                             "org.freedesktop.portal.Settings", QDBusConnection::sessionBus(),
                             nullptr)
{
}

QDBusPendingCall PortalSettings::readColorScheme()
{
    return asyncCall(QStringLiteral("Read"), appearance(), colorScheme());
}

bool PortalSettings::isColorScheme(const QString& nameSpace, const QString& key)
{
    return nameSpace == appearance() && key == colorScheme();
}

bool PortalSettings::isDark(QVariant colorScheme)
{
    constexpr unsigned prefersDark = 1;
    // An answer is a variant in a variant.
    while (colorScheme.userType() == qMetaTypeId<QDBusVariant>()) {
        colorScheme = colorScheme.value<QDBusVariant>().variant();
    }
    return colorScheme.toUInt() == prefersDark;
}

std::shared_ptr<KnownLook> KnownLook::shared()
{
    std::shared_ptr<KnownLook> look = knownLook().lock();
    if (!look) {
        look = std::make_shared<KnownLook>();
        knownLook() = look;
    }
    return look;
}

std::optional<bool> KnownLook::isDarkNow()
{
    const std::shared_ptr<KnownLook> look = knownLook().lock();
    return look ? look->m_isDark : std::nullopt;
}

bool KnownLook::askPortal()
{
    constexpr int patience = 500; // milliseconds
    PortalSettings settings;
    settings.setTimeout(patience);
    QDBusPendingCall call = settings.readColorScheme();
    call.waitForFinished();
    return !call.isError() && PortalSettings::isDark(call.reply().arguments().value(0));
}
