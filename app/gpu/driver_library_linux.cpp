#include "app/gpu/driver_library.h"

#include <cerrno>

#include <dlfcn.h>

namespace GPU {

namespace {

class DriverLibraryLinux final : public DriverLibrary {
public:
    bool load(const char* fileName) override
    {
        m_library = dlopen(fileName, RTLD_NOW | RTLD_LOCAL);
        m_error = ELIBACC; // the loader leaves no number behind
        return m_library != nullptr;
    }

    Function find(const char* name) override
    {
        m_error = ENOSYS;
        return reinterpret_cast<Function>(dlsym(m_library, name));
    }

    void unload() override { dlclose(m_library); }

    std::uint32_t lastError() override { return static_cast<std::uint32_t>(m_error); }

private:
    void* m_library = nullptr;
    int m_error = 0;
};

} // namespace

std::unique_ptr<DriverLibrary> makeDriverLibrary()
{
    return std::make_unique<DriverLibraryLinux>();
}

} // namespace GPU
