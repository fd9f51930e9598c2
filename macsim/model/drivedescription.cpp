#include "macsim/model/drivedescription.h"

#include <algorithm>
#include <array>
#include <utility>

#include <QJsonArray>

namespace macsim {

namespace {

constexpr std::array<std::pair<const char*, DriveBus>, 3> busWords { {
    { "sata", DriveBus::Sata },
    { "usb", DriveBus::Usb },
    { "nvme", DriveBus::Nvme },
} };

} // namespace

DriveDescription DriveDescription::parse(const QJsonObject& object)
{
    const auto text
        = [&object](const char* name) { return object[QLatin1String(name)].toString(); };
    DriveDescription drive;
    drive.name = text("name");
    const auto* const bus
        = std::find_if(busWords.begin(), busWords.end(), [word = text("bus")](const auto& entry) {
              return word == QLatin1String(entry.first);
          });
    drive.isBusKnown = bus != busWords.end();
    drive.bus = drive.isBusKnown ? bus->second : DriveBus::Sata;
    drive.model = text("model");
    drive.serial = text("serial");
    drive.firmware = text("firmware");
    drive.rotation = object[QLatin1String("rotation")].toInt();
    drive.attribute = object[QLatin1String("attribute")].toInt(drive.attribute);
    drive.removable = object[QLatin1String("removable")].toBool();
    drive.source = text("heat");
    drive.offset = object[QLatin1String("offset")].toDouble();
    drive.encrypted = object[QLatin1String("encrypted")].toBool();
    const QJsonArray mounts = object[QLatin1String("mounts")].toArray();
    for (const QJsonValue& mount : mounts) {
        drive.mounts.append(mount.toString());
    }
    return drive;
}

} // namespace macsim
