#include "app/smc/encoding.h"

#include <cmath>
#include <cstring>

namespace SMC {

namespace {

static_assert(sizeof(float) == sizeof(FourBytes));

float singleFrom(const FourBytes& bytes)
{
    // The controller's order is that of every machine this program runs on.
    float single = 0;
    std::memcpy(&single, bytes.data(), bytes.size());
    return single;
}

} // namespace

std::uint16_t fpe2ToRpm(const TwoBytes& bytes)
{
    return static_cast<std::uint16_t>((bytes[0] << 6) | (bytes[1] >> 2));
}

TwoBytes rpmToFpe2(std::uint16_t rpm)
{
    const auto fixedPoint = static_cast<std::uint16_t>(rpm << 2);
    return { static_cast<std::uint8_t>(fixedPoint >> 8),
             static_cast<std::uint8_t>(fixedPoint & 0xFF) };
}

std::optional<std::uint16_t> floatToRpm(const FourBytes& bytes)
{
    constexpr float span = 65536.0F;
    const float single = singleFrom(bytes);
    if (!std::isfinite(single) || single < 0) {
        return std::nullopt;
    }
    return static_cast<std::uint16_t>(std::fmod(std::trunc(single), span));
}

FourBytes rpmToFloat(std::uint16_t rpm)
{
    const auto single = static_cast<float>(rpm);
    FourBytes bytes;
    std::memcpy(bytes.data(), &single, bytes.size());
    return bytes;
}

double sp78ToCelsius(const TwoBytes& bytes) { return bytes[1] * 0.00390625 + bytes[0]; }

double floatToCelsius(const FourBytes& bytes) { return static_cast<double>(singleFrom(bytes)); }

std::uint32_t bigEndianToNumber(const FourBytes& bytes)
{
    std::uint32_t number = 0;
    for (const std::uint8_t byte : bytes) {
        number = number << 8 | byte;
    }
    return number;
}

FourBytes numberToBigEndian(std::uint32_t number)
{
    return { static_cast<std::uint8_t>(number >> 24), static_cast<std::uint8_t>(number >> 16),
             static_cast<std::uint8_t>(number >> 8), static_cast<std::uint8_t>(number) };
}

std::uint32_t littleEndianToNumber(const FourBytes& bytes)
{
    return bigEndianToNumber({ bytes[3], bytes[2], bytes[1], bytes[0] });
}

FourBytes keyBytes(const char* key)
{
    FourBytes bytes = {};
    for (std::size_t i = 0; i < keyLength && key[i] != '\0'; ++i) {
        bytes[i] = static_cast<std::uint8_t>(key[i]);
    }
    return bytes;
}

} // namespace SMC
