// Sizes that the system's structures and this program's values have in a 32-bit
// program for Windows, and that the program counts on: nothing here runs.

#include <cstddef>
#include <type_traits>

#include <windows.h>
#include <setupapi.h>
#include <shellapi.h>
#include <winioctl.h>

#include "app/fancontrol/fancontrolmode.h"
#include "app/fancontrol/fanrecord.h"
#include "app/sensors/sensortype.h"
#include "app/sysinfo/sysinfo.h"

namespace {

template <typename Enumeration>
constexpr std::size_t valueSize = sizeof(std::underlying_type_t<Enumeration>);

static_assert(sizeof(void*) == 4);
static_assert(sizeof(wchar_t) == 2);

// Version resource; processors.
static_assert(sizeof(VS_FIXEDFILEINFO) == 52);
static_assert(sizeof(SYSTEM_LOGICAL_PROCESSOR_INFORMATION) == 24);
// Device interfaces.
static_assert(sizeof(SP_DEVICE_INTERFACE_DATA) == 28);
static_assert(sizeof(SP_DEVICE_INTERFACE_DETAIL_DATA_W) == 6);
// Commands to ATA drives.
static_assert(sizeof(SENDCMDINPARAMS) == 33);
// Icons of the notification area, in the form that knows balloons.
static_assert(NOTIFYICONDATAW_V3_SIZE == 952);

static_assert(valueSize<FanControlType> == 4);
static_assert(valueSize<FanLocation> == 4);
static_assert(valueSize<SensorType> == 4);
static_assert(valueSize<ModelFamily> == 1);

} // namespace
