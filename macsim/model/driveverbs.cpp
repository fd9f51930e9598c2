#include "macsim/model/driveverbs.h"

#include <algorithm>
#include <vector>

namespace macsim {

namespace {

constexpr int longestDelay = 600000; // milliseconds

// Changes the drive's faults; false when the argument is wrong.
using Change
    = bool (*)(const QString& argument, SimulatedDrive& drive, SimulatedDrive::Faults& faults);

enum class Argument { None, Optional, Needed };

struct DriveVerb {
    const char* name;
    Argument argument;
    Change change;
    const char* help;
};

bool standby(const QString&, SimulatedDrive& drive, SimulatedDrive::Faults&)
{
    drive.setInStandby(true);
    return true;
}

bool wake(const QString&, SimulatedDrive& drive, SimulatedDrive::Faults&)
{
    drive.setInStandby(false);
    return true;
}

bool fail(const QString&, SimulatedDrive&, SimulatedDrive::Faults& faults)
{
    faults.failing = true;
    return true;
}

bool hang(const QString& argument, SimulatedDrive&, SimulatedDrive::Faults& faults)
{
    bool isNumber = true;
    const int delay = argument.isEmpty() ? 0 : argument.toInt(&isNumber);
    faults.hanging = true;
    faults.delay = std::chrono::milliseconds(delay);
    return argument.isEmpty() || (isNumber && delay > 0 && delay <= longestDelay);
}

bool unplug(const QString&, SimulatedDrive&, SimulatedDrive::Faults& faults)
{
    faults.unplugged = true;
    return true;
}

bool plug(const QString&, SimulatedDrive&, SimulatedDrive::Faults& faults)
{
    faults.unplugged = false;
    return true;
}

bool forbid(const QString& argument, SimulatedDrive&, SimulatedDrive::Faults& faults)
{
    faults.mayNotBeOpened = faults.mayNotBeOpened || argument == QLatin1String("open");
    faults.mayNotBeCommanded = faults.mayNotBeCommanded || argument == QLatin1String("commands");
    return argument == QLatin1String("open") || argument == QLatin1String("commands");
}

bool heal(const QString&, SimulatedDrive&, SimulatedDrive::Faults& faults)
{
    const bool wasUnplugged = faults.unplugged;
    faults = {};
    faults.unplugged = wasUnplugged;
    return true;
}

const std::vector<DriveVerb>& table()
{
    static const std::vector<DriveVerb> verbs {
        { "standby", Argument::None, standby, "standby                 its disks stop turning" },
        { "wake", Argument::None, wake, "wake                    they turn again" },
        { "fail", Argument::None, fail, "fail                    every command is aborted" },
        { "hang", Argument::Optional, hang,
          "hang [MS]               commands are answered so much later, or never" },
        { "unplug", Argument::None, unplug, "unplug                  it is gone" },
        { "plug", Argument::None, plug, "plug                    it is back" },
        { "forbid", Argument::Needed, forbid,
          "forbid open|commands    the program lacks the privilege" },
        { "heal", Argument::None, heal, "heal                    ends fail, hang and forbid" },
    };
    return verbs;
}

bool fits(Argument argument, int count)
{
    switch (argument) {
    case Argument::None:
        return count == 0;
    case Argument::Optional:
        return count <= 1;
    case Argument::Needed:
        return count == 1;
    }
    return false;
}

} // namespace

QString applyToDrive(const QStringList& words, SimulatedMac& mac, const DriveSwitch& driveSwitch)
{
    SimulatedDrive* const drive = mac.drive(words.value(0));
    if (drive == nullptr) {
        return QStringLiteral("There is no drive \"%1\"").arg(words.value(0));
    }
    const QString name = words.value(1);
    const auto verb = std::find_if(table().begin(), table().end(), [&name](const DriveVerb& entry) {
        return name == QLatin1String(entry.name);
    });
    if (verb == table().end()) {
        return QStringLiteral("Nothing to do to a drive: \"%1\"").arg(name);
    }
    SimulatedDrive::Faults faults = drive->faults();
    if (!fits(verb->argument, static_cast<int>(words.size()) - 2)
        || !verb->change(words.value(2), *drive, faults)) {
        return QStringLiteral("Wrong arguments for \"%1\"").arg(name);
    }
    const bool moved = faults.unplugged != drive->faults().unplugged;
    drive->setFaults(faults);
    if (moved && driveSwitch && !driveSwitch(words.first(), !faults.unplugged)) {
        return QStringLiteral("The drive's files can't be written");
    }
    return {};
}

QString driveHelp()
{
    QString text;
    for (const DriveVerb& verb : table()) {
        text += QStringLiteral("  %1\n").arg(QLatin1String(verb.help));
    }
    return text;
}

} // namespace macsim
