#include "app/sensors/tempsensordisk_win.h"

#include <span>
#include <utility>

#include "app/sensors/drives/driveidentity.h"
#include "app/sensors/drives/smartcommand.h"
#include "app/sensors/drives/storagecodes.h"

TempSensorDiskWin::TempSensorDiskWin(const DriveIdentity& identity,
                                     std::shared_ptr<StorageCalls> calls,
                                     StorageCalls::Handle driveHandle, std::int32_t diskNumber)
    : TempSensorDisk(identity, identity.type())
    , m_calls(std::move(calls))
    , m_driveHandle(driveHandle)
    , m_diskNumber(diskNumber)
{
}

TempSensorDiskWin::~TempSensorDiskWin()
{
    if (m_driveHandle != nullptr) {
        m_calls->closeHandle(m_driveHandle);
    }
}

void TempSensorDiskWin::UpdateValue()
{
    if (m_driveHandle == nullptr || type() == SensorType::nvme) {
        return;
    }
    if (m_calls->getDevicePowerState(m_driveHandle) == false) {
        keepValueInStandby();
        return;
    }
    const auto request
        = SmartCommand::input(SmartCommand::dataSize, AtaCommands::smartReadData, m_diskNumber);
    SmartCommand::ReadOutput output {};
    if (m_calls->deviceIoControl(m_driveHandle, StorageCodes::smartReceiveDriveData, request,
                                 output)) {
        storeSmartTemperature(std::span(output).subspan(SmartCommand::outputHeaderSize));
    }
}
