#include "core/application/file_version.h"

#include <string>
#include <vector>

#include <windows.h>

namespace core {

namespace {

constexpr std::size_t longestPath = 32768; // characters

std::optional<FileVersion> versionOf(const wchar_t* path)
{
    DWORD ignored = 0;
    std::vector<BYTE> resource(GetFileVersionInfoSizeW(path, &ignored));
    void* block = nullptr;
    UINT size = 0;
    if (resource.empty()
        || GetFileVersionInfoW(path, 0, static_cast<DWORD>(resource.size()), resource.data()) == 0
        || VerQueryValueW(resource.data(), L"\\", &block, &size) == 0
        || size < sizeof(VS_FIXEDFILEINFO)) {
        return std::nullopt;
    }
    const auto& info = *static_cast<const VS_FIXEDFILEINFO*>(block);
    return FileVersion { { HIWORD(info.dwFileVersionMS), LOWORD(info.dwFileVersionMS),
                           HIWORD(info.dwFileVersionLS), LOWORD(info.dwFileVersionLS) } };
}

} // namespace

FileVersion readFileVersion()
{
    std::vector<wchar_t> path(longestPath);
    GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    return versionOf(path.data()).value_or(FileVersion());
}

std::optional<FileVersion> readFileVersion(const QString& path)
{
    return versionOf(path.toStdWString().c_str());
}

} // namespace core
