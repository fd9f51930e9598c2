#pragma once

#include <vector>

#include <QByteArray>

#include "app/sensors/drives/driveidentity.h"

// An NVMe drive of which Linux tells the temperature in a file.
struct NvmeDrive {
    DriveIdentity identity; // model and serial
    QByteArray temperatureFile; // thousandths of a degree Celsius, as a decimal number
};

// All of them, mounted or not, by the kernel's hwmon files. Asks no drive.
[[nodiscard]] std::vector<NvmeDrive> findNvmeDrives();
