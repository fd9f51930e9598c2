#pragma once

#include <vector>

#include <QByteArray>
#include <QString>

// A disk that holds a mounted file system.
struct MountedDisk {
    QString name; // as the kernel calls it, such as "sda"
    QString device; // the path of its file
    bool isFixed = false;
    bool isUsb = false;
    QString runtimeStatusFile; // tells whether the kernel has put it to sleep

    bool operator==(const MountedDisk&) const = default;
};

// The disks, each one once, that lie under the file systems which the text of
// /proc/self/mountinfo lists: through partitions and through the layers between
// (encryption, volumes, arrays), down to all disks of a layer or of a file system
// that spans several. What isn't a disk of the SCSI layer, where ATA drives are, is
// left out.
[[nodiscard]] std::vector<MountedDisk> findMountedDisks(const QByteArray& mountInfo);
