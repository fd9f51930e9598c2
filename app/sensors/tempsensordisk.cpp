#include "app/sensors/tempsensordisk.h"

#include "app/sensors/drives/driveidentity.h"
#include "app/sensors/drives/smartattributes.h"

namespace {

constexpr int minTemperature = 42;
constexpr int solidStateMaxTemperature = 70;
constexpr int rotatingMaxTemperature = 52;

} // namespace

TempSensorDisk::TempSensorDisk(const DriveIdentity& identity, SensorType type)
    : TemperatureSensorAbstract(identity.key(), identity.model, type, QString())
{
}

int TempSensorDisk::getMinTemperature() const { return minTemperature; }

int TempSensorDisk::getMaxTemperature() const
{
    return type() == SensorType::ssd || type() == SensorType::nvme ? solidStateMaxTemperature
                                                                   : rotatingMaxTemperature;
}

void TempSensorDisk::storeSmartTemperature(std::span<const std::uint8_t> smartData)
{
    if (const auto celsius = smartTemperature(smartData)) {
        storeValue(*celsius);
    }
}

void TempSensorDisk::keepValueInStandby()
{
    if (successfulReads() > 0) {
        countSuccessfulRead();
    }
}
