#pragma once

#include <array>
#include <cstddef>

#include "app/gpu/driver_library.h"

// How the driver calls functions that it is given.
#if defined(_WIN32)
#define ADL_CALLBACK __stdcall
#else
#define ADL_CALLBACK
#endif

namespace GPU {

// The driver's records, as its publisher documents them.
struct AdapterInfo {
    int iSize;
    int iAdapterIndex;
    std::array<char, 256> strUDID;
    int iBusNumber;
    int iDeviceNumber;
    int iFunctionNumber;
    int iVendorID;
    std::array<char, 256> strAdapterName;
    std::array<char, 256> strDisplayName;
    int iPresent;
    int iExist;
    std::array<char, 256> strDriverPath;
    std::array<char, 256> strDriverPathExt;
    std::array<char, 256> strPNPString;
    int iOSDisplayIndex;
};
static_assert(sizeof(AdapterInfo) == 1572);
static_assert(offsetof(AdapterInfo, iBusNumber) == 264);
static_assert(offsetof(AdapterInfo, iVendorID) == 276);
static_assert(offsetof(AdapterInfo, strAdapterName) == 280);
static_assert(offsetof(AdapterInfo, strDisplayName) == 536);
static_assert(offsetof(AdapterInfo, iPresent) == 792);
static_assert(offsetof(AdapterInfo, iOSDisplayIndex) == 1568);

struct ADLTemperature {
    int iSize;
    int iTemperature; // thousandths of a degree Celsius
};
static_assert(sizeof(ADLTemperature) == 8);

struct ADLSingleSensorData {
    int supported;
    int value;
};

struct ADLPMLogDataOutput {
    int size;
    std::array<ADLSingleSensorData, 256> sensors;
};
static_assert(sizeof(ADLPMLogDataOutput) == 2052);

inline constexpr std::size_t ADL_PMLOG_TEMPERATURE_EDGE = 8;
// What the driver's functions give back when they succeed.
inline constexpr int ADL_OK = 0;

// The driver's library and its functions, each null where the library lacks it,
// and all of them without a library.
class amdGPUAPI {
public:
    using Allocate = void*(ADL_CALLBACK*)(int size);
    using Context = void*;

    // Loads it. The seam must outlive this object.
    explicit amdGPUAPI(DriverLibrary& library);
    amdGPUAPI(const amdGPUAPI&) = delete;
    amdGPUAPI& operator=(const amdGPUAPI&) = delete;
    ~amdGPUAPI();

    int (*ADL_Main_Control_Create)(Allocate allocate, int connectedAdaptersOnly) = nullptr;
    int (*ADL_Main_Control_Destroy)() = nullptr;
    int (*ADL_Adapter_NumberOfAdapters_Get)(int* count) = nullptr;
    int (*ADL_Adapter_AdapterInfo_Get)(AdapterInfo* adapters, int bytes) = nullptr;
    int (*ADL_Overdrive_Caps)(int adapter, int* supported, int* enabled, int* version) = nullptr;
    int (*ADL_Overdrive5_Temperature_Get)(int adapter, int controller, ADLTemperature* temperature)
        = nullptr;
    int (*ADL2_OverdriveN_Temperature_Get)(Context context, int adapter, int type, int* temperature)
        = nullptr;
    int (*ADL2_Main_Control_Create)(Allocate allocate, int connectedAdaptersOnly, Context* context)
        = nullptr;
    int (*ADL2_Main_Control_Destroy)(Context context) = nullptr;
    int (*ADL2_Adapter_Primary_Get)(Context context, int* adapter) = nullptr;
    int (*ADL2_New_QueryPMLogData_Get)(Context context, int adapter, ADLPMLogDataOutput* data)
        = nullptr;

private:
    [[nodiscard]] bool loadLibrary();

    DriverLibrary& m_library;
    const bool m_isLoaded;
};

} // namespace GPU
