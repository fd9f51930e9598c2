#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <QString>

#include "app/fancontrol/fanprofile.h"

class QFanControl;
class QTrayIcon;

// One line of the tray icon's menu. A value, so that a menu is built anew only when
// it is to show something else.
struct TrayMenuEntry {
    enum class Kind { Command, Header, Separator, Submenu };

    Kind kind = Kind::Command;
    QString text; // as people read it
    bool isEnabled = true;
    bool isDefault = false;
    bool isChecked = false;

    // What a command does: one of these.
    void (QTrayIcon::*signal)() = nullptr;
    std::optional<FanProfile> preset; // to be activated
    QString fanCommand; // "0:control" or "0:reset", with the fan's id

    std::vector<TrayMenuEntry> entries; // of a submenu

    friend bool operator==(const TrayMenuEntry& left, const TrayMenuEntry& right);
};

using TrayMenuEntries = std::vector<TrayMenuEntry>;

// Which entries the tray icon's menu can offer.
struct TrayMenuOptions {
    // Addresses that this build knows; an entry without one is left out.
    bool hasWebsite = true;
    bool hasRatingPage = true;
    bool hasSocialPage = true;
    // What can't be used now is shown, but disabled.
    bool isUpdateCheckAvailable = true;
};

// The whole menu, in the interface's language, for so many fans of the engine's.
[[nodiscard]] TrayMenuEntries trayMenuEntries(const QFanControl& fanControl, std::uint8_t fanCount,
                                              const TrayMenuOptions& options);
