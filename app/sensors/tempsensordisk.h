#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "app/sensors/tempsensorabstract.h"

struct DriveIdentity;

// The temperature that a drive reports about itself.
class TempSensorDisk : public TemperatureSensorAbstract {
public:
    using List = std::vector<std::unique_ptr<TemperatureSensorAbstract>>;

    // A sensor for each drive of this machine that can be asked: ATA drives with
    // mounted file systems if showSmartDrives, NVMe drives if showNvmeDrives, as
    // far as the system knows a way to ask them. Every failure is a line in the log
    // and a sensor less. May take as long as the drives take to answer.
    [[nodiscard]] static List loadAvailableSensors(bool showSmartDrives, bool showNvmeDrives);

    [[nodiscard]] int getMinTemperature() const override;
    [[nodiscard]] int getMaxTemperature() const override;

protected:
    TempSensorDisk(const DriveIdentity& identity, SensorType type);

    // Stores the temperature in the answer to SMART READ DATA, if it has one.
    void storeSmartTemperature(std::span<const std::uint8_t> smartData);
    // For a drive that is asleep and stays so: its last value counts as read. A
    // drive that hasn't been read yet has none to count.
    void keepValueInStandby();
};
