#pragma once

#include <memory>

#include <QByteArray>

#include "app/sensors/drives/drivecalls.h"
#include "app/sensors/tempsensordisk.h"

struct NvmeDrive;

// An NVMe drive under Linux. Its temperature is in a file of the kernel's, which may
// take as long to read as the drive takes to answer.
class TempSensorNvme final : public TempSensorDisk {
public:
    TempSensorNvme(const NvmeDrive& drive, std::shared_ptr<DriveCalls> calls);

    // Reads one small file, and allocates nothing.
    void UpdateValue() override;

private:
    const std::shared_ptr<DriveCalls> m_calls; // never null
    const QByteArray m_temperatureFile;
};
