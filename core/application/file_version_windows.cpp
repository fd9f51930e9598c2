#include "core/application/file_version.h"

#include <vector>

#include <windows.h>

namespace core {

namespace {

constexpr std::size_t longestPath = 32768; // characters

} // namespace

FileVersion readFileVersion()
{
    std::vector<wchar_t> path(longestPath);
    GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    DWORD ignored = 0;
    std::vector<BYTE> resource(GetFileVersionInfoSizeW(path.data(), &ignored));
    void* block = nullptr;
    UINT size = 0;
    if (resource.empty()
        || GetFileVersionInfoW(path.data(), 0, static_cast<DWORD>(resource.size()), resource.data())
            == 0
        || VerQueryValueW(resource.data(), L"\\", &block, &size) == 0
        || size < sizeof(VS_FIXEDFILEINFO)) {
        return {};
    }
    const auto& info = *static_cast<const VS_FIXEDFILEINFO*>(block);
    return { { HIWORD(info.dwFileVersionMS), LOWORD(info.dwFileVersionMS),
               HIWORD(info.dwFileVersionLS), LOWORD(info.dwFileVersionLS) } };
}

} // namespace core
