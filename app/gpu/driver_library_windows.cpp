#include "app/gpu/driver_library.h"

#include <array>
#include <string>

#include <windows.h>

namespace GPU {

namespace {

// Drivers lie in the system's own folder. Nothing is looked for elsewhere: the
// program may run with rights that its surroundings don't have.
std::string systemFolder()
{
    std::array<char, MAX_PATH> folder {};
    const UINT length = GetSystemDirectoryA(folder.data(), static_cast<UINT>(folder.size()));
    return { folder.data(), length < folder.size() ? length : 0 };
}

class DriverLibraryWindows final : public DriverLibrary {
public:
    bool load(const char* fileName) override
    {
        const std::string path = systemFolder() + '\\' + fileName;
        m_library = LoadLibraryExA(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
        m_error = GetLastError();
        return m_library != nullptr;
    }

    Function find(const char* name) override
    {
        const auto function = reinterpret_cast<Function>(GetProcAddress(m_library, name));
        m_error = GetLastError();
        return function;
    }

    void unload() override { FreeLibrary(m_library); }

    std::uint32_t lastError() override { return m_error; }

private:
    HMODULE m_library = nullptr;
    DWORD m_error = 0;
};

} // namespace

std::unique_ptr<DriverLibrary> makeDriverLibrary()
{
    return std::make_unique<DriverLibraryWindows>();
}

} // namespace GPU
