#include "app/sensors/tempsensordisk.h"

#include "app/sensors/drives/driveletterwalk.h"
#include "app/sensors/drives/storagecalls.h"

// NVMe drives can't be asked here, whatever the setting says.
TempSensorDisk::List TempSensorDisk::loadAvailableSensors(bool showSmartDrives,
                                                          [[maybe_unused]] bool showNvmeDrives)
{
    return DriveLetterWalk(makeStorageCalls(), showSmartDrives).run();
}
