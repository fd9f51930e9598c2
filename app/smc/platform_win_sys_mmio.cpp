#include "app/smc/platform_win_sys_mmio.h"

#include <algorithm>
#include <utility>

#include <QScopeGuard>

#include "app/smc/driver_request.h"
#include "app/smc/options.h"
#include "core/log/log.h"
#include "smcd/protocol/records.h"

namespace SMC {

namespace {

namespace code = smcd::protocol::code;

constexpr InterfaceClass smcInterface {
    0xaee3a6c3, 0x067a, 0x4919, { 0x9b, 0xc7, 0xcd, 0xed, 0x78, 0x63, 0x46, 0xa7 }
};
// Of devices that are present, by their interfaces.
constexpr std::uint32_t presentInterfaces = 0x12;
constexpr std::uint32_t noMoreItems = 259;
// Beyond any machine: an endless list must end.
constexpr std::uint32_t mostInterfaces = 256;
constexpr int longestDevicePath = 256; // characters

constexpr std::uint32_t genericReadAndWrite = 0xC0000000;
constexpr std::uint32_t shareReadAndWrite = 3;
constexpr std::uint32_t openExisting = 3;
constexpr std::uint32_t noAttributes = 0;
constexpr std::uint32_t normalAttributes = 0x80;

constexpr std::uint32_t allManagerAccess = 0xF003F;
constexpr std::uint32_t allServiceAccess = 0xF01FF;
constexpr std::uint32_t stopControl = 1;

} // namespace

PlatformWinProviderMMIO::PlatformWinProviderMMIO(std::unique_ptr<DriverCalls> calls)
    : m_calls(std::move(calls))
{
}

bool PlatformWinProviderMMIO::open()
{
    QString name; // of a plug-and-play device only
    if (Options::isSet(Option::NonPnpDriver)) {
        LOG_INFO("Trying to open SMC using with non-PNP driver");
        startOrStopAppleSMC2Service(false);
        device = m_calls->createFile(QStringLiteral("\\\\.\\APPLESMCNONPNP"), genericReadAndWrite,
                                     shareReadAndWrite, openExisting, normalAttributes);
    } else {
        LOG_INFO("Trying to open SMC using with PNP driver");
        device = OpenAppleSMCDevice(name);
    }
    if (device == nullptr) {
        LOG_ERR("Create file failed to open {}, error {}", core::log::singleLine(name),
                m_calls->lastError());
    }
    return device != nullptr;
}

DeviceCalls::Handle PlatformWinProviderMMIO::OpenAppleSMCDevice(QString& name)
{
    const DeviceCalls::Handle list = m_calls->setupDiGetClassDevs(smcInterface, presentInterfaces);
    if (list == nullptr) {
        LOG_ERR("SetupDiGetClassDevs failed with error {}", m_calls->lastError());
        return nullptr;
    }
    const auto destroy = qScopeGuard([this, list] { m_calls->setupDiDestroyDeviceInfoList(list); });
    return findDevice(list, name);
}

DeviceCalls::Handle PlatformWinProviderMMIO::findDevice(DeviceCalls::Handle list, QString& name)
{
    for (std::uint32_t index = 0; index < mostInterfaces; ++index) {
        if (m_calls->setupDiEnumDeviceInterfaces(list, index)) {
            if (const DeviceCalls::Handle found = OpenOneDevice(list, name)) {
                return found;
            }
        } else if (m_calls->lastError() == noMoreItems) {
            if (index == 0) {
                LOG_ERR("No interfaces found, driver doesn't seem to be installed");
                name = QStringLiteral("<no-interface>");
            }
            break;
        }
    }
    return nullptr;
}

DeviceCalls::Handle PlatformWinProviderMMIO::OpenOneDevice(DeviceCalls::Handle list, QString& name)
{
    const auto path = m_calls->setupDiGetDeviceInterfaceDetail(list);
    if (!path) {
        return nullptr;
    }
    name = path->left(longestDevicePath);
    const DeviceCalls::Handle opened = m_calls->createFile(
        *path, genericReadAndWrite, shareReadAndWrite, openExisting, noAttributes);
    if (opened == nullptr) {
        LOG_ERR("FAILED to open {}", core::log::singleLine(name));
    }
    return opened;
}

void PlatformWinProviderMMIO::startOrStopAppleSMC2Service(bool stop)
{
    const DeviceCalls::Handle manager = m_calls->openSCManager(allManagerAccess);
    if (manager == nullptr) {
        LOG_INFO("OpenSCManager failed with error {}", m_calls->lastError());
        return;
    }
    startOrStop(manager, stop);
    m_calls->closeServiceHandle(manager);
}

// Only the opening of the device decides: a service that runs already refuses to
// start, and that is a line in the log alone.
void PlatformWinProviderMMIO::startOrStop(DeviceCalls::Handle manager, bool stop)
{
    const DeviceCalls::Handle service
        = m_calls->openService(manager, QStringLiteral("AppleSMC2"), allServiceAccess);
    if (service == nullptr) {
        LOG_INFO("OpenService failed with error {}", m_calls->lastError());
        return;
    }
    if (stop) {
        if (!m_calls->controlService(service, stopControl)) {
            LOG_ERR("ControlService failed with error {}", m_calls->lastError());
        }
    } else if (!m_calls->startService(service)) {
        LOG_ERR("StartService failed with error {}", m_calls->lastError());
    }
    m_calls->closeServiceHandle(service);
}

void PlatformWinProviderMMIO::close()
{
    if (device != nullptr) {
        m_calls->closeHandle(device);
    }
    if (Options::isSet(Option::NonPnpDriver)) {
        startOrStopAppleSMC2Service(true);
    }
}

std::optional<std::size_t> PlatformWinProviderMMIO::control(std::uint32_t code,
                                                            std::span<const std::uint8_t> request,
                                                            std::span<std::uint8_t> reply)
{
    if (device == nullptr) {
        LOG_ERR("The device is not opened");
        return std::nullopt;
    }
    const auto filled = m_calls->deviceIoControl(device, code, request, reply);
    if (!filled) {
        LOG_ERR("Error in DeviceIoControl {}", m_calls->lastError());
    }
    return filled;
}

bool PlatformWinProviderMMIO::getKeyByIndex(std::uint32_t index, std::string& key)
{
    FourBytes reply {};
    if (control(code::mmioKeyByIndex, indexRequest(index), reply) != reply.size()) {
        return false;
    }
    key = keyIn(reply);
    return true;
}

bool PlatformWinProviderMMIO::getKeyInfo(const char* key, KeyInfo& info)
{
    // The length, the type, the attributes.
    std::array<std::uint8_t, 6> reply {};
    if (control(code::mmioKeyInfo, keyBytes(key), reply) != reply.size()) {
        return false;
    }
    info.length = reply.front();
    std::copy_n(reply.begin() + 1, info.type.size(), info.type.begin());
    info.attributes = reply.back();
    return true;
}

// The length isn't sent: the driver gives the key's whole value.
bool PlatformWinProviderMMIO::readKey(const char* key, void* buffer, std::uint8_t /*length*/)
{
    std::array<std::uint8_t, valueRoom> reply {};
    const auto filled = control(code::mmioRead, keyBytes(key), reply);
    if (filled) {
        std::copy_n(reply.begin(), std::min(*filled, reply.size()),
                    static_cast<std::uint8_t*>(buffer));
    }
    return filled.has_value();
}

bool PlatformWinProviderMMIO::writeKey(const char* key, const void* data, std::uint8_t length)
{
    // The key, the value's length, the value.
    std::array<std::uint8_t, keyLength + 1 + valueRoom> request {};
    const FourBytes name = keyBytes(key);
    std::copy(name.begin(), name.end(), request.begin());
    const auto size = std::min<std::size_t>(length, valueRoom);
    request[keyLength] = static_cast<std::uint8_t>(size);
    std::copy_n(static_cast<const std::uint8_t*>(data), size, request.begin() + keyLength + 1);
    std::array<std::uint8_t, 1> reply {};
    return control(code::mmioWrite, request, reply) == reply.size();
}

void PlatformWinProviderMMIO::leaveFans()
{
    if (device != nullptr) {
        m_calls->leaveFans(device);
    }
}

} // namespace SMC
