#include "app/ui/tray/qtrayicon.h"

#include <QAction>
#include <QActionGroup>
#include <QMenu>

#include "app/fancontrol/fancontrol.h"
#include "app/sensors/tempsensorabstract.h"
#include "app/sensors/tempsensorprovider.h"
#include "app/settingskeys.h"
#include "app/ui/tray/qtrayiconplatform.h"
#include "app/ui/tray/traydrawing.h"
#include "core/settings/qsettingscache.h"

namespace {

constexpr double noReading = -1.0;

// Texts have no shortcuts: an "&" in a name is meant as one.
QString menuText(const QString& text)
{
    return QString(text).replace(QLatin1Char('&'), QLatin1String("&&"));
}

QString speedText(std::uint16_t rpm)
{
    return rpm == FanSpeeds::unread ? QStringLiteral("\u2013") : QString::number(rpm);
}

} // namespace

QTrayIcon::QTrayIcon(QWidget* window, QFanControl& fanControl, QSettingsCache& settings,
                     std::unique_ptr<QTrayIconPlatform> platform, const TrayMenuOptions& options)
    : QObject(window)
    , m_menu(new QMenu(window))
    , m_fanControl(fanControl)
    , m_fanCount(fanControl.fanCount())
    , m_platform(std::move(platform))
    , m_settings(settings)
    , m_options(options)
{
    m_menu->setObjectName(QStringLiteral("trayMenu"));
    connectPlatform();
    m_platform->setContextMenu(m_menu);
    setVisible(true);
    updateIcon();
    rebuildMenu();
    updateToolTip();
}

QTrayIcon::~QTrayIcon()
{
    // The window may have taken it away already.
    if (!m_menu.isNull()) {
        m_menu->deleteLater();
    }
}

void QTrayIcon::connectPlatform()
{
    connect(m_platform.get(), &QTrayIconPlatform::activated, this, &QTrayIcon::showMainWindow);
    connect(m_platform.get(), &QTrayIconPlatform::iconRestored, this, [this] {
        forgetShown();
        updateIcon();
    });
    // The chosen entry is still to be triggered then.
    connect(
        m_menu, &QMenu::aboutToHide, this,
        [this] {
            if (m_rebuildPending) {
                rebuildMenu();
            }
        },
        Qt::QueuedConnection);
}

void QTrayIcon::setVisible(bool visible)
{
    m_platform->setVisible(visible);
    forgetShown();
}

void QTrayIcon::forgetShown()
{
    m_shownReading.reset();
    m_shownToolTip.reset();
}

TemperatureSensorAbstract* QTrayIcon::selectedSensor() const
{
    const QString key = m_settings.getString(SettingsKeys::traySensor);
    return key.isEmpty() ? nullptr : m_fanControl.sensorProvider()->getSensorByKey(key);
}

void QTrayIcon::updateIcon()
{
    // Reserved: read, and without effect. The picture is in degrees Celsius.
    static_cast<void>(m_settings.getInt(SettingsKeys::fahrenheit));
    static_cast<void>(m_settings.getInt(SettingsKeys::trayFan, -1));

    std::uint32_t flags = TrayIconAlways;
    if (m_settings.getInt(SettingsKeys::preciseTemperature) != 0) {
        flags |= TrayIconPrecise;
    }
    double value = noReading;
    if (const auto* const sensor = selectedSensor()) {
        flags |= TrayIconReading;
        value = sensor->value();
    }
    const auto reading = std::make_pair(flags, trayReadingText(flags, value));
    if (m_shownReading == reading) {
        return;
    }
    m_platform->setIcon(flags, value);
    m_shownReading = reading;
}

void QTrayIcon::updateToolTip()
{
    QString toolTip;
    for (std::uint8_t fan = 0; fan < m_fanCount; ++fan) {
        const FanRecord& record = m_fanControl.getFans()[fan];
        toolTip
            += QStringLiteral("%1 - %2 RPM\n").arg(record.name(), speedText(record.rpmCurrent()));
    }
    toolTip = toolTip.trimmed();
    if (m_shownToolTip == toolTip) {
        return;
    }
    m_platform->setToolTip(toolTip);
    m_shownToolTip = toolTip;
}

void QTrayIcon::setUpdatesAvailable(bool available)
{
    m_options.isUpdateCheckAvailable = available;
    rebuildMenu();
}

void QTrayIcon::rebuildMenu()
{
    // Under the user's hand the menu stays as it is.
    m_rebuildPending = m_menu->isVisible();
    if (m_rebuildPending) {
        return;
    }
    const TrayMenuEntries entries = trayMenuEntries(m_fanControl, m_fanCount, m_options);
    if (m_shownEntries == entries) {
        return;
    }
    clearMenu();
    fillMenu(m_menu, entries);
    m_shownEntries = entries;
}

void QTrayIcon::clearMenu()
{
    // What is triggered may be the reason for the new menu, so nothing is deleted
    // at once.
    const QList<QAction*> actions = m_menu->actions();
    for (QAction* const action : actions) {
        m_menu->removeAction(action);
        if (QMenu* const submenu = action->menu()) {
            submenu->deleteLater(); // and the action with it
        } else {
            action->deleteLater();
        }
    }
}

void QTrayIcon::fillMenu(QMenu* menu, const TrayMenuEntries& entries)
{
    for (const TrayMenuEntry& entry : entries) {
        switch (entry.kind) {
        case TrayMenuEntry::Kind::Command:
            addCommand(menu, entry);
            break;
        case TrayMenuEntry::Kind::Header:
            menu->addAction(menuText(entry.text))->setEnabled(false);
            break;
        case TrayMenuEntry::Kind::Separator:
            menu->addSeparator();
            break;
        case TrayMenuEntry::Kind::Submenu:
            fillMenu(menu->addMenu(menuText(entry.text)), entry.entries);
            break;
        }
    }
}

void QTrayIcon::addCommand(QMenu* menu, const TrayMenuEntry& entry)
{
    QAction* const action = menu->addAction(menuText(entry.text));
    action->setEnabled(entry.isEnabled);
    if (entry.isDefault) {
        menu->setDefaultAction(action);
    }
    if (entry.signal != nullptr) {
        connect(action, &QAction::triggered, this, entry.signal);
    } else if (entry.preset) {
        action->setCheckable(entry.isChecked);
        action->setChecked(entry.isChecked);
        connect(action, &QAction::triggered, this, [this, action, preset = *entry.preset] {
            // Chosen again, the active preset stays the active one.
            if (action->isCheckable()) {
                action->setChecked(true);
            }
            Q_EMIT setActiveProfile(preset);
        });
    } else {
        action->setData(entry.fanCommand);
        auto* group = menu->findChild<QActionGroup*>();
        if (group == nullptr) {
            group = new QActionGroup(menu);
            connect(group, &QActionGroup::triggered, this, &QTrayIcon::slotProcessFanAction);
        }
        group->addAction(action);
    }
}

void QTrayIcon::slotProcessFanAction(QAction* action)
{
    const QStringList parts = action->data().toString().split(QLatin1Char(':'), Qt::SkipEmptyParts);
    if (parts.size() != 2) {
        return;
    }
    bool isNumber = false;
    const uint fan = parts[0].toUInt(&isNumber);
    if (!isNumber || fan >= m_fanCount) {
        return;
    }
    const auto id = static_cast<std::uint8_t>(fan);
    if (parts[1] == QLatin1String("control")) {
        Q_EMIT showFanDialog(id);
    } else if (parts[1] == QLatin1String("reset")) {
        Q_EMIT resetFanMode(id);
    }
}
