#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>

namespace macsim {

enum class DriveBus { Sata, Usb, Nvme };

// A drive as the machine's file describes it.
struct DriveDescription {
    QString name; // as the system calls it: "sda", "nvme0"
    DriveBus bus = DriveBus::Sata;
    bool isBusKnown = true; // false for a word that is none
    QString model; // at most 40 characters
    QString serial; // at most 20 characters
    QString firmware; // at most 8 characters
    int rotation = 0; // turns per minute, 1 for none
    int attribute = 194; // the one that shows the temperature; 0 for none
    bool removable = false;
    QString source; // the heat source that it is
    double offset = 0.0; // degrees Celsius above the source's temperature
    QStringList mounts; // a partition for each, with the place of its file system
    bool encrypted = false; // the last partition holds a volume, and that the file system

    [[nodiscard]] static DriveDescription parse(const QJsonObject& object);
};

} // namespace macsim
