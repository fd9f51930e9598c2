#include "core/system/darkmodewatcher_linux.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>

#include "core/system/darkmode.h"
#include "core/system/desktopportal_linux.h"

namespace System {

LinuxDarkModeWatcher::LinuxDarkModeWatcher() = default;

LinuxDarkModeWatcher::~LinuxDarkModeWatcher() = default;

void LinuxDarkModeWatcher::start()
{
    if (m_settings) {
        return;
    }
    m_settings = std::make_unique<PortalSettings>();
    connect(m_settings.get(), &PortalSettings::SettingChanged, this,
            [this](const QString& nameSpace, const QString& key, const QDBusVariant& value) {
                if (PortalSettings::isColorScheme(nameSpace, key)) {
                    take(PortalSettings::isDark(value.variant()));
                }
            });
    const bool isDark = isDarkModeEnabled();
    m_known = KnownLook::shared();
    m_known->setDark(isDark);
    takeLook(isDark);

    // A portal that is only being started has not answered in time.
    m_request = std::make_unique<QDBusPendingCallWatcher>(m_settings->readColorScheme());
    connect(m_request.get(), &QDBusPendingCallWatcher::finished, this,
            [this](QDBusPendingCallWatcher* request) {
                if (!request->isError()) {
                    take(PortalSettings::isDark(request->reply().arguments().value(0)));
                }
            });
}

// Whoever hears of the change learns the same by asking.
void LinuxDarkModeWatcher::take(bool dark)
{
    m_known->setDark(dark);
    compareLook(dark);
}

} // namespace System
