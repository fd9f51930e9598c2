#include "core/application/file_version.h"

#include "build_config.h"

namespace core {

FileVersion readFileVersion()
{
    return { { BuildConfig::versionMajor, BuildConfig::versionMinor, BuildConfig::versionPatch,
               BuildConfig::versionBuild } };
}

} // namespace core
