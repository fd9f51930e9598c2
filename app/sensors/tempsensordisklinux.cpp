#include "app/sensors/tempsensordisklinux.h"

#include <utility>

#include "app/sensors/drives/atadrive.h"
#include "app/sensors/drives/driveidentity.h"

namespace {

constexpr std::int64_t slowAnswer = 1000; // milliseconds

} // namespace

TempSensorDiskLinux::TempSensorDiskLinux(const DriveIdentity& identity,
                                         std::unique_ptr<AtaDrive> drive,
                                         core::threads::Clock& clock)
    : TempSensorDisk(identity, identity.type())
    , m_drive(std::move(drive))
    , m_clock(clock)
{
}

TempSensorDiskLinux::~TempSensorDiskLinux() = default;

void TempSensorDiskLinux::UpdateValue()
{
    const std::int64_t begin = m_clock.elapsedMilliseconds();
    const AtaDrive::Power power = m_drive->power();
    if (m_clock.elapsedMilliseconds() - begin > slowAnswer) {
        return;
    }
    switch (power) {
    case AtaDrive::Power::standby:
        keepValueInStandby();
        break;
    case AtaDrive::Power::awake: {
        AtaDrive::Block data {};
        if (m_drive->readSmartData(data) == 0) {
            storeSmartTemperature(data);
        }
        break;
    }
    case AtaDrive::Power::unknown:
        break;
    }
}
