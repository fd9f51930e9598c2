#include "app/ui/tray/traymenu.h"

#include <iterator>

#include "app/fancontrol/fancontrol.h"
#include "app/fancontrol/fanprofilelist.h"
#include "app/ui/texts.h"
#include "app/ui/tray/qtrayicon.h"
#include "core/application_flags.h"

namespace {

using Kind = TrayMenuEntry::Kind;

TrayMenuEntry command(const char* textKey, void (QTrayIcon::*signal)(), bool isEnabled = true)
{
    TrayMenuEntry entry;
    entry.text = uiText(textKey);
    entry.signal = signal;
    entry.isEnabled = isEnabled;
    return entry;
}

TrayMenuEntry header(const char* textKey)
{
    TrayMenuEntry entry;
    entry.kind = Kind::Header;
    entry.text = uiText(textKey);
    entry.isEnabled = false;
    return entry;
}

TrayMenuEntry separator()
{
    TrayMenuEntry entry;
    entry.kind = Kind::Separator;
    return entry;
}

TrayMenuEntry submenu(const QString& text, const TrayMenuEntries& entries)
{
    TrayMenuEntry entry;
    entry.kind = Kind::Submenu;
    entry.text = text;
    entry.entries = entries;
    return entry;
}

TrayMenuEntry presetCommand(const FanProfile& preset, const QString& name, bool isActive)
{
    TrayMenuEntry entry;
    entry.text = name;
    entry.preset = preset;
    entry.isChecked = isActive;
    return entry;
}

TrayMenuEntry fanCommand(const char* textKey, int fan, QLatin1String word)
{
    TrayMenuEntry entry;
    entry.text = uiText(textKey);
    entry.fanCommand = QStringLiteral("%1:%2").arg(QString::number(fan), word);
    return entry;
}

void append(TrayMenuEntries& entries, const TrayMenuEntries& more)
{
    entries.insert(entries.end(), more.begin(), more.end());
}

TrayMenuEntries presetEntries(const QFanProfileList& profiles)
{
    TrayMenuEntries entries;
    entries.push_back(header("TrayMenu/itemFanPresets"));
    for (const auto& preset : profiles.predefinedProfiles()) {
        const bool isActive = preset.id() == FanProfilePredefined::automaticId
            ? profiles.isActiveAutomatic()
            : profiles.isActiveFullBlast();
        entries.push_back(presetCommand(preset, preset.name(), isActive));
    }
    const int active = profiles.activeCustomIndex();
    int index = 0;
    for (const auto& preset : profiles.customProfiles()) {
        entries.push_back(presetCommand(preset, preset.name(), index == active));
        ++index;
    }
    if (profiles.isUnsaved()) {
        entries.push_back(
            submenu(uiText("Presets/presetCurrentUnsaved"),
                    { command("Presets/presetMenuSave", &QTrayIcon::unsavedSave),
                      command("Presets/presetMenuDiscard", &QTrayIcon::unsavedDiscard) }));
    }
    return entries;
}

TrayMenuEntries fanEntries(const QFanControl& fanControl, std::uint8_t fanCount)
{
    TrayMenuEntries entries;
    entries.push_back(header("TrayMenu/itemAvailableFans"));
    for (std::uint8_t fan = 0; fan < fanCount; ++fan) {
        const FanControlMode mode = fanControl.getFanMode(fan);
        TrayMenuEntries commands;
        commands.push_back(
            fanCommand("MainWindow/popupMenuItemControl", fan, QLatin1String("control")));
        if (!mode.isAutomatic()) {
            commands.push_back(separator());
            commands.push_back(
                fanCommand("MainWindow/popupMenuItemReset", fan, QLatin1String("reset")));
        }
        entries.push_back(submenu(
            QStringLiteral("%1 - %2").arg(fanControl.getFans()[fan].name(), mode.displayText(true)),
            commands));
    }
    entries.push_back(separator());
    return entries;
}

TrayMenuEntries moreEntries(const TrayMenuOptions& options)
{
    TrayMenuEntries entries {
        command("MainWindow/buttonAbout", &QTrayIcon::showAboutDialog),
        command("TrayMenu/itemCheckForUpdates", &QTrayIcon::checkForUpdates,
                options.isUpdateCheckAvailable),
        command("PreferencesWindow/buttonCopyTechInfo", &QTrayIcon::copyTechInfo),
    };
    if (options.hasRatingPage || options.hasSocialPage) {
        entries.push_back(separator());
    }
    if (options.hasRatingPage) {
        entries.push_back(command("TrayMenu/itemRateApp", &QTrayIcon::rateApp));
    }
    if (options.hasSocialPage) {
        entries.push_back(command("TrayMenu/itemFollowTwitter", &QTrayIcon::followTwitter));
    }
    if (options.hasWebsite) {
        entries.push_back(separator());
        entries.push_back(command("TrayMenu/itemWebsite", &QTrayIcon::gotoWebsite));
    }
    return entries;
}

bool isSamePreset(const std::optional<FanProfile>& left, const std::optional<FanProfile>& right)
{
    if (!left || !right) {
        return left.has_value() == right.has_value();
    }
    return left->name() == right->name() && left->hasSameModes(*right);
}

} // namespace

bool operator==(const TrayMenuEntry& left, const TrayMenuEntry& right)
{
    return left.kind == right.kind && left.text == right.text && left.isEnabled == right.isEnabled
        && left.isDefault == right.isDefault && left.isChecked == right.isChecked
        && left.signal == right.signal && isSamePreset(left.preset, right.preset)
        && left.fanCommand == right.fanCommand && left.entries == right.entries;
}

TrayMenuEntries trayMenuEntries(const QFanControl& fanControl, std::uint8_t fanCount,
                                const TrayMenuOptions& options)
{
    TrayMenuEntries entries { command("TrayMenu/itemShow", &QTrayIcon::showMainWindow),
                              separator() };
    entries.front().isDefault = true;
    if (fanCount > 0) {
        if (!core::flags::isSet(core::flags::noSmcWrite)) {
            append(entries, presetEntries(*fanControl.profiles()));
        }
        append(entries, fanEntries(fanControl, fanCount));
    }
    append(entries,
           {
               command("MainWindow/buttonPreferences", &QTrayIcon::showPreferences),
               separator(),
               submenu(uiText("TrayMenu/itemMoreLinks"), moreEntries(options)),
               separator(),
               command("TrayMenu/itemExit", &QTrayIcon::exit),
           });
    return entries;
}
