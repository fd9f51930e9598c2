#include "app/gpu/provider_win_amd_api.h"

#include "core/log/log.h"

namespace GPU {

amdGPUAPI::amdGPUAPI(DriverLibrary& library)
    : m_library(library)
    , m_isLoaded(loadLibrary())
{
    if (!m_isLoaded) {
        return;
    }
    m_library.resolve("ADL_Main_Control_Create", ADL_Main_Control_Create);
    m_library.resolve("ADL_Main_Control_Destroy", ADL_Main_Control_Destroy);
    m_library.resolve("ADL_Adapter_NumberOfAdapters_Get", ADL_Adapter_NumberOfAdapters_Get);
    m_library.resolve("ADL_Adapter_AdapterInfo_Get", ADL_Adapter_AdapterInfo_Get);
    m_library.resolve("ADL_Overdrive_Caps", ADL_Overdrive_Caps);
    m_library.resolve("ADL_Overdrive5_Temperature_Get", ADL_Overdrive5_Temperature_Get);
    m_library.resolve("ADL2_OverdriveN_Temperature_Get", ADL2_OverdriveN_Temperature_Get);
    m_library.resolve("ADL2_Main_Control_Create", ADL2_Main_Control_Create);
    m_library.resolve("ADL2_Main_Control_Destroy", ADL2_Main_Control_Destroy);
    m_library.resolve("ADL2_Adapter_Primary_Get", ADL2_Adapter_Primary_Get);
    m_library.resolve("ADL2_New_QueryPMLogData_Get", ADL2_New_QueryPMLogData_Get);
}

amdGPUAPI::~amdGPUAPI()
{
    if (m_isLoaded) {
        m_library.unload();
    }
}

// A 32-bit program on a 64-bit system finds the driver under the second name.
bool amdGPUAPI::loadLibrary()
{
    for (const char* name : { "atiadlxx.dll", "atiadlxy.dll" }) {
        if (m_library.load(name)) {
            LOG_INFO("{} loaded", name);
            return true;
        }
    }
    LOG_ERR("Failed to load atiadlxx.dll, error = {}", m_library.lastError());
    return false;
}

} // namespace GPU
