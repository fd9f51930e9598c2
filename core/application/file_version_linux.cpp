#include "core/application/file_version.h"

#include "build_config.h"

namespace core {

FileVersion readFileVersion()
{
    return { { BuildConfig::versionMajor, BuildConfig::versionMinor, BuildConfig::versionPatch,
               BuildConfig::versionBuild } };
}

std::optional<FileVersion> readFileVersion(const QString& /*path*/) { return std::nullopt; }

} // namespace core
