// AMD's driver library on Windows for tests: a machine with one GPU of 57 degrees.

#include <algorithm>
#include <type_traits>

#include "app/gpu/provider_win_amd_api.h"
#include "tests/gpu/drivers/export.h"

#if defined(_WIN32)
// As the driver calls it.
static_assert(std::is_same_v<GPU::amdGPUAPI::Allocate, void*(__stdcall*)(int)>);
#endif

namespace {

using GPU::ADL_OK;
using Allocate = GPU::amdGPUAPI::Allocate;
using Context = GPU::amdGPUAPI::Context;

int context = 0; // its address stands for the session
constexpr int failure = -1;

// A driver hands out lists in memory of the caller's.
int tryToAllocate(Allocate allocate)
{
    return allocate(0) == nullptr && allocate(-1) == nullptr ? ADL_OK : failure;
}

} // namespace

DRIVER_EXPORT int ADL_Main_Control_Create(Allocate allocate, int)
{
    return tryToAllocate(allocate);
}

DRIVER_EXPORT int ADL_Main_Control_Destroy() { return ADL_OK; }

DRIVER_EXPORT int ADL2_Main_Control_Create(Allocate allocate, int, Context* created)
{
    *created = &context;
    return tryToAllocate(allocate);
}

DRIVER_EXPORT int ADL2_Main_Control_Destroy(Context) { return ADL_OK; }

DRIVER_EXPORT int ADL_Adapter_NumberOfAdapters_Get(int* count)
{
    *count = 1;
    return ADL_OK;
}

DRIVER_EXPORT int ADL_Adapter_AdapterInfo_Get(GPU::AdapterInfo* adapters, int bytes)
{
    if (bytes != sizeof(GPU::AdapterInfo)) {
        return failure;
    }
    constexpr char text[] = "Radeon R9 M370X";
    adapters[0].iVendorID = 1002;
    std::copy_n(text, sizeof(text), adapters[0].strAdapterName.begin());
    return ADL_OK;
}

DRIVER_EXPORT int ADL2_Adapter_Primary_Get(Context, int* adapter)
{
    *adapter = 0;
    return ADL_OK;
}

DRIVER_EXPORT int ADL_Overdrive_Caps(int, int* supported, int* enabled, int* version)
{
    *supported = 1;
    *enabled = 1;
    *version = 8;
    return ADL_OK;
}

DRIVER_EXPORT int ADL2_New_QueryPMLogData_Get(Context session, int, GPU::ADLPMLogDataOutput* data)
{
    data->sensors[GPU::ADL_PMLOG_TEMPERATURE_EDGE] = { 1, 57 };
    return session == &context ? ADL_OK : failure;
}
