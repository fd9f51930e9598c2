#include "app/smc/service.h"

#include <algorithm>
#include <iterator>

#include "app/smc/options.h"
#include "app/smc/platform.h"
#include "app/smc/service_p.h"
#include "core/log/log.h"

namespace SMC {

namespace {

constexpr std::uint8_t fanCountUnknown = 0xFF;
constexpr std::uint8_t fanNameLength = 16;
constexpr std::size_t fanNameOffset = 4;

std::string fanKey(FanKeyKind kind, std::uint8_t fan)
{
    switch (kind) {
    case FanKeyKind::Actual:
        return fmt::format("F{}Ac", fan);
    case FanKeyKind::Min:
        return fmt::format("F{}Mn", fan);
    case FanKeyKind::Max:
        return fmt::format("F{}Mx", fan);
    case FanKeyKind::Target:
        return fmt::format("F{}Tg", fan);
    case FanKeyKind::Safe:
        return fmt::format("F{}Sf", fan);
    }
    return {};
}

std::string trimmed(const std::string& text)
{
    constexpr char whiteSpace[] = " \t\n\v\f\r";
    const auto first = text.find_first_not_of(whiteSpace);
    if (first == std::string::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(whiteSpace) - first + 1);
}

bool isCoreTemperature(const char* key)
{
    static constexpr const char* coreKeys[] = { "TCAC", "TCBC", "TC0C", "TC1C", "TC2C", "TC3C" };
    return std::any_of(std::begin(coreKeys), std::end(coreKeys),
                       [key](const char* coreKey) { return std::string(key) == coreKey; });
}

} // namespace

Service::Service(std::unique_ptr<Platform> platform)
    : d(std::make_unique<ServicePrivate>(std::move(platform)))
{
}

Service::~Service() = default;

bool Service::open()
{
    if (!d->platform->open()) {
        return false;
    }
    connect(d->platform.get(), &Platform::error_unexpected_disconnect, this,
            &Service::error_unexpected_disconnect);
    d->doInit();
    return true;
}

void Service::close() { d->platform->close(); }

void Service::leaveFans()
{
    const std::lock_guard lock(d->mutex);
    d->platform->leaveFans();
}

std::uint8_t Service::getFanCount()
{
    // The result is kept, a failure's too, so that all who use the count agree.
    if (const std::uint8_t known = d->fanCount; known != fanCountUnknown) {
        return known;
    }
    constexpr std::uint8_t countLimit = 10; // a key has room for one digit

    const std::lock_guard lock(d->mutex);
    if (const std::uint8_t known = d->fanCount; known != fanCountUnknown) {
        return known;
    }
    ServicePrivate::Value value = {};
    if (!d->readValue("FNum", 1, value)) {
        LOG_ERR("Unable to read number of fans");
        d->fanCount = 0;
        return 0;
    }
    std::uint8_t count = value[0];
    if (count > countLimit) {
        LOG_WARN("{} fans reported, using {}", count, countLimit);
        count = countLimit;
    }
    if (d->m_dualFan && count == 2) {
        LOG_INFO("Dual fan: the mac has a dual-fan cooler with two syncronized fans.");
        count = 1;
    } else if (d->m_xserveFanLimit) {
        LOG_INFO("XServe 10 fans limit");
        count = countLimit;
    }
    d->fanCount = count;
    return count;
}

std::string Service::getFanName(std::uint8_t fan)
{
    const std::string key = fmt::format("F{}ID", fan);
    ServicePrivate::Value value = {};
    std::string name;
    {
        const std::lock_guard lock(d->mutex);
        if (d->readValue(key, fanNameLength, value)) {
            const auto* const begin = value.data() + fanNameOffset;
            const auto* const end = value.data() + fanNameLength;
            name = trimmed(std::string(begin, std::find(begin, end, 0)));
        } else {
            LOG_ERR("Unable to read fan {:d} name. smc key {}", fan, key);
        }
    }
    return name.empty() ? fmt::format("Fan {}", fan) : name;
}

bool Service::getFanRPM(std::uint8_t fan, FanKeyKind kind, std::uint16_t& rpm)
{
    return d->getFanRPM(fanKey(kind, fan), rpm);
}

bool Service::setFanRPM(std::uint8_t fan, std::uint16_t rpm)
{
    bool result = d->setFanRPM(fanKey(FanKeyKind::Target, fan), rpm);
    if (d->m_dualFan) {
        if (fan == 0) {
            result = d->setFanRPM(fanKey(FanKeyKind::Target, 1), rpm);
        } else {
            LOG_ERR("Dual fan: unexpected error, fan index is supposed to be 0");
        }
    }
    return result;
}

bool Service::getFansControlModes(std::vector<bool>& modes)
{
    const std::uint8_t count = getFanCount();
    const std::lock_guard lock(d->mutex);
    switch (d->m_smcFanModeKey) {
    case ServicePrivate::maskScheme:
        return d->readModeMask(count, modes);
    case ServicePrivate::perFanScheme:
        return d->readModeKeys(count, modes);
    default:
        LOG_ERR("Unknown m_smcFanModeKey");
        return false;
    }
}

bool Service::setFansControlModes(const std::vector<bool>& modes)
{
    if (modes.size() != getFanCount()) {
        LOG_ERR("setFansControlModes: fanCount != vModes.size()");
        return false;
    }
    const std::lock_guard lock(d->mutex);
    switch (d->m_smcFanModeKey) {
    case ServicePrivate::maskScheme:
        return d->writeModeMask(modes);
    case ServicePrivate::perFanScheme:
        return d->writeModeKeys(modes);
    default:
        LOG_ERR("Unknown m_smcFanModeKey");
        return false;
    }
}

bool Service::getTemperatureKeys(std::vector<std::string>& keys)
{
    {
        const std::lock_guard lock(d->mutex);
        keys = d->temperatureKeys;
    }
    if (!keys.empty()) {
        return true;
    }
    const std::uint32_t count = d->getSMCKeysCount();
    if (count == 0) {
        return false;
    }
    std::vector<KeyTableEntry> table;
    try {
        table.resize(count);
    } catch (const std::bad_alloc&) {
        LOG_ERR("std::bad_alloc for keysCount {}", count);
        return false;
    }
    const std::uint32_t begin = d->applesmc_get_lower_bound(table, count, "T");
    const std::uint32_t end = d->applesmc_get_lower_bound(table, count, "U");
    // A real controller has keys on both sides of the temperatures.
    if (begin == 0 || end == 0 || end <= begin || end >= count) {
        LOG_ERR("one of applesmc_get_lower_bound failed {}, {}, {}", begin, end, count);
        return false;
    }
    for (std::uint32_t index = begin; index < end; ++index) {
        if (!d->applesmc_get_entry_by_index(table, index)) {
            continue;
        }
        const std::string type = table[index].type.data();
        if (type != "sp78" && type != "flt ") {
            continue;
        }
        keys.emplace_back(table[index].key.data());
        const std::lock_guard lock(d->mutex);
        if (d->m_smcTemperatureKeySize == 0) {
            d->m_smcTemperatureKeySize = type == "flt " ? 4 : 2;
        }
    }

    const std::lock_guard lock(d->mutex);
    if (d->temperatureKeys.empty()) {
        d->temperatureKeys = keys;
    }
    return true;
}

bool Service::getTemperature(const char* key, double& value, double* rawValue)
{
    constexpr double lowest = 0; // both limits are themselves no temperatures
    constexpr double highest = 127;

    const std::lock_guard lock(d->mutex);
    ServicePrivate::Value bytes = {};
    if (!d->readValue(key, d->m_smcTemperatureKeySize, bytes)) {
        return false;
    }
    // Any other size leaves the caller's value as it is, to be tested below.
    if (d->m_smcTemperatureKeySize == 2) {
        value = sp78ToCelsius({ bytes[0], bytes[1] });
    } else if (d->m_smcTemperatureKeySize == 4) {
        value = floatToCelsius({ bytes[0], bytes[1], bytes[2], bytes[3] });
    }
    if (rawValue != nullptr) {
        *rawValue = value;
    }
    if (!(value > lowest && value < highest)) {
        LOG_WARN("getTemperature - skipping sensor {} with value of {}",
                 core::log::singleLine(QString::fromLatin1(key)), value);
        return false;
    }
    if (!d->m_invertCoreTemps) {
        d->m_invertCoreTemps = Options::isSet(Option::InvertCoreTemps);
    }
    if (*d->m_invertCoreTemps && isCoreTemperature(key)) {
        value = 100.0 - value;
    }
    return true;
}

bool Service::setKeyboardBacklight(std::uint8_t level)
{
    const std::lock_guard lock(d->mutex);
    const TwoBytes bytes = { level, 0 };
    return d->platform->writeKey("LKSB", bytes.data(), static_cast<std::uint8_t>(bytes.size()));
}

bool Service::getKeyboardBacklight(std::uint8_t& level)
{
    const std::lock_guard lock(d->mutex);
    ServicePrivate::Value value = {};
    if (!d->readValue("LKSB", 2, value)) {
        return false;
    }
    level = value[0];
    return true;
}

} // namespace SMC
