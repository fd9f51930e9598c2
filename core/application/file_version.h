#pragma once

#include <array>

namespace core {

// The version of the running program: major, minor, patch, build.
struct FileVersion {
    std::array<int, 4> numbers = {};
};

// As the executable itself tells it.
[[nodiscard]] FileVersion readFileVersion();

} // namespace core
