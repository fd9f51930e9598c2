#include "smcd/writerules.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cmath>

namespace smcd {

namespace {

constexpr double fpe2Steps = 4.0; // per RPM

// The fan of a key such as "F3Tg".
std::optional<std::size_t> fanOf(const Key& key)
{
    const bool isFan = key[0] == 'F' && key[1] >= '0' && key[1] <= '9';
    return isFan ? std::optional(static_cast<std::size_t>(key[1] - '0')) : std::nullopt;
}

bool endsWith(const Key& key, char first, char second)
{
    return key[2] == first && key[3] == second;
}

} // namespace

std::optional<double> speedOf(Bytes value)
{
    if (value.size() == 2) {
        return (value[0] << 8 | value[1]) / fpe2Steps;
    }
    if (value.size() == 4) {
        std::uint32_t bits = 0;
        for (std::size_t byte = value.size(); byte > 0; --byte) {
            bits = bits << 8 | value[byte - 1];
        }
        return static_cast<double>(std::bit_cast<float>(bits));
    }
    return std::nullopt;
}

WriteRules::WriteRules(KeyReader& reader)
    : m_reader(reader)
{
}

std::uint32_t WriteRules::check(const Key& key, Bytes value, WriteEffect& effect)
{
    const std::optional<std::size_t> fan = fanOf(key);
    const bool isMode = fan && endsWith(key, 'M', 'd');
    const bool isTarget = fan && endsWith(key, 'T', 'g');
    if (key != maskKey && !isMode && !isTarget) {
        return EACCES;
    }
    std::size_t length = 0;
    if (const std::uint32_t error = m_reader.length(key, length); error != 0) {
        return error;
    }
    if (value.size() != length) {
        return EINVAL;
    }
    if (isMode) {
        return checkMode(*fan, value, effect);
    }
    return isTarget ? checkTarget(*fan, value) : checkMask(value, effect);
}

std::uint32_t WriteRules::fanCount(std::size_t& count)
{
    if (!m_fanCount) {
        std::vector<std::uint8_t> value;
        if (const std::uint32_t error = m_reader.read(fanCountKey, value); error != 0) {
            return error;
        }
        m_fanCount = std::min<std::size_t>(value.front(), mostFans);
    }
    count = *m_fanCount;
    return 0;
}

std::uint32_t WriteRules::checkMask(Bytes value, WriteEffect& effect)
{
    std::size_t count = 0;
    if (const std::uint32_t error = fanCount(count); error != 0) {
        return error;
    }
    if (value.size() != maskLength) {
        return EINVAL;
    }
    const std::bitset<maskFans> bits(value[1]);
    for (std::size_t fan = 0; fan < maskFans; ++fan) {
        if (bits[fan] && fan >= count) {
            return ERANGE;
        }
        effect.sets[maskPlace(fan)] = bits[fan];
        effect.clears[maskPlace(fan)] = !bits[fan];
    }
    return value[0] == 0 ? 0 : ERANGE;
}

std::uint32_t WriteRules::checkMode(std::size_t fan, Bytes value, WriteEffect& effect)
{
    std::size_t count = 0;
    if (const std::uint32_t error = fanCount(count); error != 0) {
        return error;
    }
    if (fan >= count) {
        return ENOENT;
    }
    if (value.size() != 1) {
        return EINVAL;
    }
    effect.sets[modePlace(fan)] = value[0] == 1;
    effect.clears[modePlace(fan)] = value[0] == 0;
    return value[0] <= 1 ? 0 : ERANGE;
}

std::uint32_t WriteRules::checkTarget(std::size_t fan, Bytes value)
{
    std::size_t count = 0;
    double lowest = 0.0;
    double highest = 0.0;
    std::uint32_t error = fanCount(count);
    if (error == 0 && fan >= count) {
        error = ENOENT;
    }
    if (error == 0) {
        error = limit(fanKey(fan, 'M', 'n'), lowest);
    }
    if (error == 0) {
        error = limit(fanKey(fan, 'M', 'x'), highest);
    }
    if (error != 0) {
        return error;
    }
    const std::optional<double> speed = speedOf(value);
    if (!speed) {
        return EINVAL;
    }
    // The program knows whole RPM only: what is left of a limit when it is cut.
    return *speed >= std::floor(lowest) && *speed <= highest ? 0 : ERANGE;
}

std::uint32_t WriteRules::limit(const Key& key, double& rpm)
{
    std::vector<std::uint8_t> value;
    if (const std::uint32_t error = m_reader.read(key, value); error != 0) {
        return error;
    }
    const std::optional<double> speed = speedOf(value);
    if (!speed || !std::isfinite(*speed) || *speed < 0.0) {
        return EIO;
    }
    rpm = *speed;
    return 0;
}

} // namespace smcd
