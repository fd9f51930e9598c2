#pragma once

#include <memory>
#include <optional>

#include <QDBusAbstractInterface>
#include <QDBusPendingCall>
#include <QDBusVariant>

// The desktop's settings as its portal tells them, on the session bus.
class PortalSettings final : public QDBusAbstractInterface {
    Q_OBJECT

public:
    PortalSettings();

    // Asks for the colour scheme.
    [[nodiscard]] QDBusPendingCall readColorScheme();
    // Whether a setting that has changed is the colour scheme.
    [[nodiscard]] static bool isColorScheme(const QString& nameSpace, const QString& key);
    // Whether a colour scheme, as it comes over the bus, is a dark one.
    [[nodiscard]] static bool isDark(QVariant colorScheme);

Q_SIGNALS:
    // Named as on the bus.
    void SettingChanged(const QString& nameSpace, const QString& key, const QDBusVariant& value);
};

// The look that those who follow the portal know of. GUI thread.
class KnownLook {
public:
    // The one object that all share while somebody holds it.
    [[nodiscard]] static std::shared_ptr<KnownLook> shared();
    // Empty when nobody follows the portal.
    [[nodiscard]] static std::optional<bool> isDarkNow();

    // Asks the portal, and waits up to half a second. Without an answer the look is
    // a light one.
    [[nodiscard]] static bool askPortal();

    void setDark(bool dark) { m_isDark = dark; }

private:
    std::optional<bool> m_isDark;
};
