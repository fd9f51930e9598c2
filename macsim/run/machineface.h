#pragma once

#include <optional>

#include <QString>

#include "macsim/model/machinedescription.h"

namespace macsim {

// The machine as the system's files show it, laid out under a folder: identity
// and firmware table, processors, power supply, GPUs and an empty hwmon. Drives have
// a face of their own.
class MachineFace {
public:
    // The description must outlive the face.
    MachineFace(const MachineDescription& machine, const QString& root);

    // Writes all files; a portable starts on AC. False when one can't be written.
    [[nodiscard]] bool create() const;
    // Changes the power supply's files. False when one can't be written or the
    // machine has no battery.
    [[nodiscard]] bool setOnBattery(bool onBattery) const;
    // Whether the driver of this GPU, by its place in the machine's list, tells its
    // temperature as a file.
    [[nodiscard]] bool hasTemperatureFile(std::size_t gpu) const;
    // Changes that file, in degrees Celsius; without a value there is none. False
    // when it can't be written.
    [[nodiscard]] bool setGpuTemperature(std::size_t gpu, std::optional<double> celsius) const;

private:
    const MachineDescription& m_machine;
    QString m_root;

    [[nodiscard]] bool write(const QString& path, const QByteArray& contents) const;
    [[nodiscard]] QByteArray processors() const;
    [[nodiscard]] bool createGpu(std::size_t index) const;
    [[nodiscard]] QString pciFolder(std::size_t gpu) const;
    [[nodiscard]] QString temperatureFile(std::size_t gpu) const;
};

} // namespace macsim
