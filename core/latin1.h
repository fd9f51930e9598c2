#pragma once

#include <cstddef>

#include <QLatin1String>

namespace core {

// A constant text of the program's own, known at compile time to every compiler.
template <std::size_t size> [[nodiscard]] constexpr QLatin1String latin1(const char (&text)[size])
{
    return QLatin1String(text, static_cast<int>(size) - 1);
}

} // namespace core
