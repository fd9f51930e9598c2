#include "app/smc/service_p.h"

#include <algorithm>
#include <cstring>

#include "app/smc/options.h"
#include "app/smc/platform.h"
#include "core/log/log.h"

namespace SMC {

namespace {

constexpr std::size_t maskBits = 8; // what the mask of forced fans has room for

} // namespace

Service::ServicePrivate::ServicePrivate(std::unique_ptr<Platform> smcPlatform)
    : platform(std::move(smcPlatform))
{
}

Service::ServicePrivate::~ServicePrivate() = default;

bool Service::ServicePrivate::readValue(const std::string& key, std::uint8_t length, Value& value)
{
    value.fill(0);
    const auto wanted = std::min<std::size_t>(length, value.size());
    return platform->readKey(key.c_str(), value.data(), static_cast<std::uint8_t>(wanted));
}

void Service::ServicePrivate::doInit()
{
    constexpr std::uint8_t sizeWithoutFans = 2;

    KeyInfo info;
    if (platform->getKeyInfo("F0Mn", info)) {
        const auto typeLength = static_cast<int>(qstrnlen(info.type.data(), info.type.size()));
        LOG_INFO("detectSmcFanKeySize KeyType {}",
                 core::log::singleLine(QString::fromLatin1(info.type.data(), typeLength)));
        LOG_INFO("detectSmcFanKeySize KeyLen {}", info.length);
        m_smcFanKeySize = info.length;
    } else {
        LOG_ERR("Unexpected failure at getKeyInfo, using 2, no fans?");
        m_smcFanKeySize = sizeWithoutFans;
    }
    m_smcFanModeKey = platform->getKeyInfo("FS! ", info) ? maskScheme : perFanScheme;
    m_dualFan = Options::isSet(Option::DualFan);
    m_xserveFanLimit = Options::isSet(Option::XserveFanLimit);
}

std::uint32_t Service::ServicePrivate::getSMCKeysCount()
{
    constexpr std::uint32_t highest = 65535;

    const std::lock_guard lock(mutex);
    Value value = {};
    if (!readValue("#KEY", 4, value)) {
        return 0;
    }
    const FourBytes bytes = { value[0], value[1], value[2], value[3] };
    const std::uint32_t count = bigEndianToNumber(bytes);
    LOG_INFO("getSMCKeysCount: {} {}", littleEndianToNumber(bytes), count);
    if (count > highest) {
        LOG_ERR("getSMCKeysCount failed");
        return 0;
    }
    return count;
}

bool Service::ServicePrivate::applesmc_get_entry_by_index(std::vector<KeyTableEntry>& table,
                                                          std::uint32_t index)
{
    const std::lock_guard lock(mutex);
    KeyTableEntry& entry = table[index];
    if (entry.valid != 0) {
        return true;
    }
    std::string name;
    KeyInfo info;
    if (!platform->getKeyByIndex(index, name) || !platform->getKeyInfo(name.c_str(), info)) {
        LOG_ERR("applesmc_get_entry_by_index failed");
        return false;
    }
    std::copy_n(name.begin(), std::min(name.size(), keyLength), entry.key.begin());
    entry.length = info.length;
    std::copy(info.type.begin(), info.type.end(), entry.type.begin());
    entry.attributes = info.attributes;
    entry.valid = 1;
    return true;
}

std::uint32_t Service::ServicePrivate::applesmc_get_lower_bound(std::vector<KeyTableEntry>& table,
                                                                std::uint32_t count,
                                                                const char* key)
{
    std::uint32_t begin = 0;
    std::uint32_t end = count;
    while (begin != end) {
        const std::uint32_t middle = begin + (end - begin) / 2;
        // The lock is free between two probes, so that readers need not wait.
        if (!applesmc_get_entry_by_index(table, middle)) {
            return 0;
        }
        if (std::strcmp(table[middle].key.data(), key) < 0) {
            begin = middle + 1;
        } else {
            end = middle;
        }
    }
    return begin;
}

bool Service::ServicePrivate::getFanRPM(const std::string& key, std::uint16_t& rpm)
{
    const std::lock_guard lock(mutex);
    Value value = {};
    if (readValue(key, m_smcFanKeySize, value)) {
        if (m_smcFanKeySize != 4) {
            rpm = fpe2ToRpm({ value[0], value[1] });
            return true;
        }
        if (const auto speed = floatToRpm({ value[0], value[1], value[2], value[3] })) {
            rpm = *speed;
            return true;
        }
    }
    LOG_ERR("Unable to read fan rpm, smc key {}", key);
    return false;
}

bool Service::ServicePrivate::setFanRPM(const std::string& key, std::uint16_t rpm)
{
    const std::lock_guard lock(mutex);
    Value value = {};
    if (m_smcFanKeySize == 2) {
        const TwoBytes bytes = rpmToFpe2(rpm);
        std::copy(bytes.begin(), bytes.end(), value.begin());
    } else if (m_smcFanKeySize == 4) {
        const FourBytes bytes = rpmToFloat(rpm);
        std::copy(bytes.begin(), bytes.end(), value.begin());
    } else {
        LOG_ERR("Unknown m_smcFanKeySize");
        return false;
    }
    if (!platform->writeKey(key.c_str(), value.data(), m_smcFanKeySize)) {
        LOG_ERR("Unable to set fan {} RPM {}", key, rpm);
        return false;
    }
    LOG_INFO("setFanRPM {} for {}", rpm, key);
    return true;
}

bool Service::ServicePrivate::readModeMask(std::uint8_t count, std::vector<bool>& modes)
{
    Value value = {};
    if (!readValue("FS! ", 2, value)) {
        LOG_ERR("Unable to read fans control mode, key {}", "FS! ");
        return false;
    }
    // Fans beyond the mask's bits read as automatic: ten fans shift no further
    // than the int that the byte becomes.
    for (std::uint8_t fan = 0; fan < count; ++fan) {
        modes.push_back((value[1] >> fan & 1) != 0);
    }
    return true;
}

bool Service::ServicePrivate::readModeKeys(std::uint8_t count, std::vector<bool>& modes)
{
    bool anyRead = false;
    for (std::uint8_t fan = 0; fan < count; ++fan) {
        const std::string key = fmt::format("F{}Md", fan);
        Value value = {};
        if (!readValue(key, 1, value)) {
            LOG_ERR("Unable to query fan mode {}", key);
            break;
        }
        modes.push_back(value[0] != 0);
        anyRead = true;
    }
    return anyRead;
}

bool Service::ServicePrivate::writeModeMask(const std::vector<bool>& modes)
{
    std::uint8_t mask = 0;
    for (std::size_t fan = 0; fan < std::min(modes.size(), maskBits); ++fan) {
        mask = static_cast<std::uint8_t>(mask | (modes[fan] ? 1U << fan : 0U));
    }
    const TwoBytes bytes = { 0, mask };
    if (!platform->writeKey("FS! ", bytes.data(), static_cast<std::uint8_t>(bytes.size()))) {
        LOG_ERR("Unable to set fan control modes");
        return false;
    }
    LOG_INFO("Set fans mode {}", mask);
    return true;
}

bool Service::ServicePrivate::writeModeKeys(std::vector<bool> modes)
{
    if (modes.empty()) {
        return false;
    }
    if (m_dualFan) {
        if (modes.size() == 1) {
            modes.push_back(modes.front());
        } else {
            LOG_ERR("Dual fan: unexpected error, must only one fan");
        }
    }
    // A false result ends the row, although the port transport gives it for a
    // success: so it is required, and such machines use a driver transport.
    for (std::size_t fan = 0; fan < modes.size(); ++fan) {
        const std::string key = fmt::format("F{}Md", fan);
        const std::uint8_t mode = modes[fan] ? 1 : 0;
        if (!platform->writeKey(key.c_str(), &mode, 1)) {
            LOG_ERR("Unable to set fan {} control mode", fan);
            return false;
        }
        LOG_INFO("Set fan {} mode {}", fan, mode);
    }
    return true;
}

} // namespace SMC
