#include "app/smc/platform_win_sys.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "app/smc/driver_request.h"
#include "app/smc/options.h"
#include "app/smc/reversed_name.h"
#include "build_config.h"
#include "core/log/log.h"
#include "smcd/protocol/records.h"

namespace SMC {

namespace {

namespace code = smcd::protocol::code;

constexpr std::uint32_t genericRead = 0x80000000;
constexpr std::uint32_t noSharing = 0;
constexpr std::uint32_t openExisting = 3;
constexpr std::uint32_t normalAttributes = 0x80;

// A key and its terminator.
using TerminatedKey = std::array<std::uint8_t, keyLength + 1>;

TerminatedKey terminated(const char* key)
{
    TerminatedKey record {};
    const FourBytes bytes = keyBytes(key);
    std::copy(bytes.begin(), bytes.end(), record.begin());
    return record;
}

} // namespace

PlatformWinProviderMacHAL::PlatformWinProviderMacHAL(std::unique_ptr<DriverCalls> calls,
                                                     core::threads::Clock& clock)
    : m_calls(std::move(calls))
    , m_clock(clock)
{
}

bool PlatformWinProviderMacHAL::open()
{
    wait();
    device = m_calls->createFile(turnedRound(BuildConfig::halDeviceReversed), genericRead,
                                 noSharing, openExisting, normalAttributes);
    if (device == nullptr) {
        LOG_ERR("Failed to open standard port X (error {}), will try inpout32",
                m_calls->lastError());
        return false;
    }
    LOG_INFO("Using standard port X");
    if (core::log::isStarted()) {
        logVersions();
    }
    return true;
}

void PlatformWinProviderMacHAL::wait()
{
    const std::string delay = Options::value(Option::ExtraDelay);
    if (!delay.empty()) {
        LOG_INFO("Extra delay of {}", delay);
        m_clock.sleep(static_cast<std::uint32_t>(std::max(0, std::stoi(delay))));
    }
}

void PlatformWinProviderMacHAL::logVersions()
{
    if (const auto tool = m_calls->fileVersion(turnedRound(BuildConfig::halToolReversed))) {
        LOG_INFO("Ex version {} ({})", core::log::singleLine(tool->version), tool->size);
    }
    if (const auto driver = m_calls->fileVersion(turnedRound(BuildConfig::halDriverReversed))) {
        LOG_INFO("Sy version {} ({})", core::log::singleLine(driver->version), driver->size);
    }
}

void PlatformWinProviderMacHAL::close()
{
    if (device != nullptr) {
        m_calls->closeHandle(device);
    }
}

bool PlatformWinProviderMacHAL::control(const char* operation, std::uint32_t code,
                                        std::span<const std::uint8_t> request,
                                        std::span<std::uint8_t> reply)
{
    if (device == nullptr) {
        LOG_ERR("Port X not opened");
        return false;
    }
    if (!m_calls->deviceIoControl(device, code, request, reply)) {
        LOG_ERR("{}: ioctl failed, GetLastError() = {}", operation, m_calls->lastError());
        return false;
    }
    return true;
}

bool PlatformWinProviderMacHAL::getKeyByIndex(std::uint32_t index, std::string& key)
{
    TerminatedKey reply {};
    if (!control("getKeyByIndex", code::halKeyByIndex, indexRequest(index), reply)) {
        return false;
    }
    key = keyIn(reply);
    return true;
}

bool PlatformWinProviderMacHAL::getKeyInfo(const char* key, KeyInfo& info)
{
    // The value's length, of which the low byte counts; the type; the attributes.
    constexpr std::size_t typePlace = 4;
    constexpr std::size_t attributesPlace = 8;
    std::array<std::uint8_t, 12> reply {};
    if (!control("GetKeyInfo", code::halKeyInfo, terminated(key), reply) || reply[0] == 0) {
        return false;
    }
    info.length = reply[0];
    std::copy_n(reply.begin() + typePlace, info.type.size(), info.type.begin());
    info.attributes = reply[attributesPlace];
    return true;
}

bool PlatformWinProviderMacHAL::readKey(const char* key, void* buffer, std::uint8_t length)
{
    return control("readKey", code::halRead, terminated(key),
                   { static_cast<std::uint8_t*>(buffer), length });
}

bool PlatformWinProviderMacHAL::writeKey(const char* key, const void* data, std::uint8_t length)
{
    const TerminatedKey record = terminated(key);
    const std::span value(static_cast<const std::uint8_t*>(data),
                          std::min<std::size_t>(length, valueRoom));
    std::vector<std::uint8_t> request(record.begin(), record.end());
    request.insert(request.end(), value.begin(), value.end());
    return control("writeKey", code::halWrite, request, {});
}

void PlatformWinProviderMacHAL::leaveFans()
{
    if (device != nullptr) {
        m_calls->leaveFans(device);
    }
}

} // namespace SMC
