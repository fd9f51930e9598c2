#pragma once

#include <QString>

#include "macsim/model/machinedescription.h"

namespace macsim {

// The machine as the system's files show it, laid out under a folder: identity
// and firmware table, processors, power supply and an empty hwmon.
class MachineFace {
public:
    // The description must outlive the face.
    MachineFace(const MachineDescription& machine, const QString& root);

    // Writes all files; a portable starts on AC. False when one can't be written.
    [[nodiscard]] bool create() const;
    // Changes the power supply's files. False when one can't be written or the
    // machine has no battery.
    [[nodiscard]] bool setOnBattery(bool onBattery) const;

private:
    const MachineDescription& m_machine;
    QString m_root;

    [[nodiscard]] bool write(const QString& path, const QByteArray& contents) const;
    [[nodiscard]] QByteArray processors() const;
};

} // namespace macsim
