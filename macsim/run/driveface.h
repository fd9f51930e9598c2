#pragma once

#include <QStringList>

#include "macsim/model/simulatedmac.h"

namespace macsim {

// The machine's drives as the system's files show them, laid out under a folder:
// block devices with their partitions and volumes, device files, mounted file
// systems, and the temperatures of NVMe drives.
class DriveFace {
public:
    // The machine must outlive the face.
    DriveFace(const SimulatedMac& mac, const QString& root);

    // Writes the files of all drives that are plugged in. False when one can't be
    // written.
    [[nodiscard]] bool create() const;
    // Takes a drive's files away, or puts them there.
    [[nodiscard]] bool setPlugged(const QString& name, bool isPlugged) const;
    // Writes the temperatures of NVMe drives as they are now.
    [[nodiscard]] bool refresh() const;

private:
    struct Drive;
    struct Partition;

    const SimulatedMac& m_mac;
    QString m_root;

    [[nodiscard]] QString inside(const QString& path) const;
    [[nodiscard]] std::vector<Drive> drives() const;
    [[nodiscard]] bool add(const Drive& drive) const;
    [[nodiscard]] bool addDevice(const QString& place, const QByteArray& number) const;
    [[nodiscard]] bool addNvmeController(const Drive& drive) const;
    [[nodiscard]] bool writeTemperature(const Drive& drive) const;
    [[nodiscard]] bool remove(const Drive& drive) const;
    [[nodiscard]] bool writeMounts() const;
};

} // namespace macsim
