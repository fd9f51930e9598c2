#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <string>

#include <QtEndian>

#include "app/smc/encoding.h"

// What the records of both drivers are made of.
namespace SMC {

// The name that a record begins with, up to a terminator.
[[nodiscard]] inline std::string keyIn(std::span<const std::uint8_t> record)
{
    const auto name = record.first(keyLength);
    return { name.begin(), std::find(name.begin(), name.end(), 0) };
}

[[nodiscard]] inline FourBytes indexRequest(std::uint32_t index)
{
    FourBytes request {};
    qToLittleEndian(index, request.data());
    return request;
}

} // namespace SMC
