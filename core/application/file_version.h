#pragma once

#include <array>
#include <optional>

#include <QString>

namespace core {

// The version of a program: major, minor, patch, build.
struct FileVersion {
    std::array<int, 4> numbers = {};
};

// As the executable itself tells it.
[[nodiscard]] FileVersion readFileVersion();
// Of another file; nothing for one without a version, as all are on Linux.
[[nodiscard]] std::optional<FileVersion> readFileVersion(const QString& path);

} // namespace core
