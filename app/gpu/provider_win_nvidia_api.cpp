#include "app/gpu/provider_win_nvidia_api.h"

#include "core/log/log.h"

namespace GPU {

namespace {

constexpr std::uint32_t initializeId = 0x0150E828;
constexpr std::uint32_t enumPhysicalGpusId = 0xE5AC921F;
constexpr std::uint32_t getFullNameId = 0xCEEE8E9F;
constexpr std::uint32_t getThermalSettingsId = 0xE3640A56;

// The library exports one function, which gives the others by number.
using QueryInterface = void*(std::uint32_t id);

template <typename Type>
void query(QueryInterface& queryInterface, std::uint32_t id, Type*& function)
{
    function = reinterpret_cast<Type*>(queryInterface(id));
}

} // namespace

bool NVApi::load(DriverLibrary& library)
{
    const bool isThere = library.load("nvapi.dll");
    QueryInterface* queryInterface = nullptr;
    if (!isThere || !library.resolve("nvapi_QueryInterface", queryInterface)) {
        LOG_WARN("LoadLibrary (nvapi.dll) failed with {}", library.lastError());
        if (isThere) {
            library.unload();
        }
        return false;
    }
    query(*queryInterface, initializeId, NvAPI_Initialize);
    query(*queryInterface, enumPhysicalGpusId, NvAPI_EnumPhysicalGPUs);
    query(*queryInterface, getFullNameId, NvAPI_GPU_GetFullName);
    query(*queryInterface, getThermalSettingsId, NvAPI_GPU_GetThermalSettings);
    if (NvAPI_EnumPhysicalGPUs == nullptr) {
        *this = {};
        library.unload();
        return false;
    }
    LOG_INFO("nvapi.dll loaded");
    return true;
}

} // namespace GPU
