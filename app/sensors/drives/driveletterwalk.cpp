#include "app/sensors/drives/driveletterwalk.h"

#include <algorithm>
#include <array>
#include <span>
#include <utility>

#include <QScopeGuard>
#include <QtEndian>

#include "app/sensors/drives/smartcommand.h"
#include "app/sensors/drives/storagecodes.h"
#include "app/sensors/tempsensordisk_win.h"
#include "core/log/log.h"

namespace {

constexpr int letterCount = 32;

// How volumes and drives are opened.
constexpr std::uint32_t readAndWrite = 0xC0000000;
constexpr std::uint32_t shareReadAndWrite = 3;
constexpr std::uint32_t openExisting = 3;
constexpr std::uint32_t systemAttribute = 4;

template <std::size_t place, std::size_t size>
std::uint32_t numberAt(const std::array<std::uint8_t, size>& record)
{
    static_assert(place + sizeof(std::uint32_t) <= size);
    return qFromLittleEndian<std::uint32_t>(record.data() + place);
}

} // namespace

DriveLetterWalk::DriveLetterWalk(std::shared_ptr<StorageCalls> calls, bool showSmartDrives)
    : m_calls(std::move(calls))
    , m_showSmartDrives(showSmartDrives)
{
}

TempSensorDisk::List DriveLetterWalk::run()
{
    LOG_INFO("Loading available SMART drives");
    const std::uint32_t letters = m_calls->getLogicalDrives();
    LOG_INFO("GetLogicalDrives returned {}", letters);
    for (int index = 0; index < letterCount; ++index) {
        if (((letters >> index) & 1U) != 0) {
            checkLetter(static_cast<char>('A' + index));
        }
    }
    return std::move(m_sensors);
}

StorageCalls::Handle DriveLetterWalk::open(const QString& path)
{
    return m_calls->createFile(path, readAndWrite, shareReadAndWrite, openExisting,
                               systemAttribute);
}

void DriveLetterWalk::checkLetter(char letter)
{
    const QString root = QLatin1Char(letter) + QStringLiteral(":\\");
    LOG_INFO("Checking drive {}", root);
    const std::uint32_t type = m_calls->getDriveType(root);
    if (type != StorageCodes::fixedDrive) {
        LOG_INFO("The drive is NOT fixed ({})", type);
        return;
    }
    LOG_INFO("Drive is fixed");

    const QString path = QStringLiteral("\\\\.\\") + QLatin1Char(letter) + QLatin1Char(':');
    const StorageCalls::Handle volume = open(path);
    if (volume == nullptr) {
        const std::uint32_t error = m_calls->lastError();
        LOG_INFO("Failed to open mounted volume {}, GetLastError() = {}", path, error);
        return;
    }
    const auto close = qScopeGuard([this, volume] { m_calls->closeHandle(volume); });
    checkVolume(volume);
}

void DriveLetterWalk::checkVolume(StorageCalls::Handle volume)
{
    const auto diskNumber = firstDiskOf(volume);
    if (!diskNumber) {
        LOG_WARN("Failed to get IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS");
        return;
    }
    LOG_INFO("Phisical disk number: {}", *diskNumber);
    if (std::find(m_seenDisks.begin(), m_seenDisks.end(), *diskNumber) == m_seenDisks.end()) {
        m_seenDisks.push_back(*diskNumber);
        checkDisk(*diskNumber);
    }
}

std::optional<std::int32_t> DriveLetterWalk::firstDiskOf(StorageCalls::Handle volume)
{
    // The number of extents, then the extents: room for one.
    constexpr std::size_t firstDiskNumber = 8;
    std::array<std::uint8_t, 32> extents {};
    if (!m_calls->deviceIoControl(volume, StorageCodes::getVolumeDiskExtents, {}, extents)
        && m_calls->lastError() != StorageCodes::moreData) {
        return std::nullopt;
    }
    return static_cast<std::int32_t>(numberAt<firstDiskNumber>(extents));
}

// A drive that turns out to be of no use stays open until the program ends, which
// is harmless and required: only a sensor closes its drive.
void DriveLetterWalk::checkDisk(std::int32_t diskNumber)
{
    const QString path = QStringLiteral("\\\\.\\PHYSICALDRIVE%1").arg(diskNumber);
    const StorageCalls::Handle drive = open(path);
    if (drive == nullptr) {
        const std::uint32_t error = m_calls->lastError();
        LOG_INFO("Failed to open device {}, GetLastError() = {}", path, error);
        return;
    }
    if (busTypeOf(drive) == StorageCodes::usbBus) {
        LOG_INFO("Skipping USB drive");
        return;
    }
    if (!m_showSmartDrives || !takesSmartCommands(drive) || !enableSmart(drive, diskNumber)) {
        return;
    }
    LOG_INFO("Adding drive {}", path);
    if (const auto identity = identify(drive, diskNumber)) {
        LOG_INFO("Adding drive {}", core::log::singleLine(identity->model));
        m_sensors.push_back(
            std::make_unique<TempSensorDiskWin>(*identity, m_calls, drive, diskNumber));
    }
}

std::uint32_t DriveLetterWalk::busTypeOf(StorageCalls::Handle drive)
{
    constexpr std::array<std::uint8_t, 12> standardDeviceProperty {};
    constexpr std::size_t descriptorSize = 551;
    constexpr std::size_t sizeField = 4;
    constexpr std::size_t busType = 28;
    std::array<std::uint8_t, descriptorSize> descriptor {};
    qToLittleEndian(static_cast<std::uint32_t>(descriptorSize), descriptor.data() + sizeField);
    return m_calls->deviceIoControl(drive, StorageCodes::queryProperty, standardDeviceProperty,
                                    descriptor)
        ? numberAt<busType>(descriptor)
        : 0;
}

bool DriveLetterWalk::takesSmartCommands(StorageCalls::Handle drive)
{
    constexpr std::size_t capabilitiesField = 4;
    std::array<std::uint8_t, 24> version {};
    if (!m_calls->deviceIoControl(drive, StorageCodes::smartGetVersion, {}, version)) {
        const std::uint32_t error = m_calls->lastError();
        LOG_WARN("Failed to get SMART_GET_VERSION, GetLastError() = {}", error);
        return false;
    }
    const std::uint32_t capabilities = numberAt<capabilitiesField>(version);
    if ((capabilities & StorageCodes::takesSmartCommands) == 0) {
        LOG_WARN("CAP_SMART_CMD doesn't present ({})", capabilities);
        return false;
    }
    return true;
}

bool DriveLetterWalk::enableSmart(StorageCalls::Handle drive, std::int32_t diskNumber)
{
    const auto request = SmartCommand::input(0, AtaCommands::smartEnable, diskNumber);
    SmartCommand::PlainOutput output {};
    if (!m_calls->deviceIoControl(drive, StorageCodes::smartSendDriveCommand, request, output)) {
        const std::uint32_t error = m_calls->lastError();
        LOG_WARN("Smart is not enabled, GetLastError() = {}", error);
        return false;
    }
    return true;
}

std::optional<DriveIdentity> DriveLetterWalk::identify(StorageCalls::Handle drive,
                                                       std::int32_t diskNumber)
{
    const auto request
        = SmartCommand::input(SmartCommand::dataSize, AtaCommands::identifyDevice, diskNumber);
    SmartCommand::ReadOutput output {};
    if (!m_calls->deviceIoControl(drive, StorageCodes::smartReceiveDriveData, request, output)) {
        const std::uint32_t error = m_calls->lastError();
        LOG_WARN("readSmartIdentify failed, GetLastError() = {}", error);
        return std::nullopt;
    }
    return DriveIdentity::parse(std::span(output).subspan(SmartCommand::outputHeaderSize));
}
