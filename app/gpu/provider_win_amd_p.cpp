#include "app/gpu/provider_win_amd_p.h"

#include <cstdlib>

#include "app/gpu/driver_text.h"
#include "core/log/log.h"

namespace GPU {

namespace {

constexpr int connectedAdaptersOnly = 1;
// As the driver tells the vendor's PCI number 0x1002.
constexpr int amdVendor = 1002;
// Beyond any real list, and little enough to allocate.
constexpr int mostAdapters = 1024;
constexpr double thousandths = 1000.0;

// For lists that the driver hands out, of which no function in use makes any.
void* ADL_CALLBACK allocate(int size)
{
    return size > 0 ? std::malloc(static_cast<std::size_t>(size)) : nullptr;
}

std::uint32_t locationKey(const AdapterInfo& adapter)
{
    const std::uint32_t bus = static_cast<std::uint8_t>(adapter.iBusNumber);
    const std::uint32_t device = static_cast<std::uint32_t>(adapter.iDeviceNumber) & 31U;
    const std::uint32_t function = static_cast<std::uint32_t>(adapter.iFunctionNumber) & 7U;
    return (((bus << 5U) | device) << 3U) | function;
}

const char* yesOrNo(bool value) { return value ? "yes" : "no"; }

void logAdapter(int number, const AdapterInfo& adapter, bool isPrimary)
{
    using core::log::singleLine;
    LOG_INFO("Adapter[{}]\n\tAdapter Index: {}\n\tUDID: {}\n\tLocation: PCI bus {}, device {}, "
             "function {}\n\tVendorID: {}\n\tAdapter Name: {}\n\tDisplay Name: {}\n"
             "\tPresent: {}\n\tPrimary: {}",
             number, adapter.iAdapterIndex, singleLine(driverText(adapter.strUDID)),
             adapter.iBusNumber, adapter.iDeviceNumber, adapter.iFunctionNumber, adapter.iVendorID,
             singleLine(driverText(adapter.strAdapterName)),
             singleLine(driverText(adapter.strDisplayName)), yesOrNo(adapter.iPresent != 0),
             yesOrNo(isPrimary));
}

} // namespace

ProviderWindowsAMDPrivate::ProviderWindowsAMDPrivate(DriverLibrary& library)
    : amdGPUAPI(library)
{
}

ProviderWindowsAMDPrivate::~ProviderWindowsAMDPrivate() { endSession(); }

bool ProviderWindowsAMDPrivate::initADL()
{
    endSession();
    if (!startSession()) {
        LOG_ERR("ADL init failed");
        endSession();
        return false;
    }
    return true;
}

bool ProviderWindowsAMDPrivate::startSession()
{
    if (ADL_Main_Control_Create == nullptr || ADL_Main_Control_Destroy == nullptr
        || ADL_Adapter_NumberOfAdapters_Get == nullptr || ADL_Adapter_AdapterInfo_Get == nullptr
        || ADL2_Adapter_Primary_Get == nullptr) {
        return false;
    }
    m_isCreated = ADL_Main_Control_Create(&allocate, connectedAdaptersOnly) == ADL_OK;
    if (ADL2_Main_Control_Create == nullptr
        || ADL2_Main_Control_Create(&allocate, connectedAdaptersOnly, &m_context) != ADL_OK
        || m_context == nullptr) {
        m_context = nullptr;
        LOG_ERR("Failed to initialize ADL2 context");
        return false;
    }
    return m_isCreated;
}

void ProviderWindowsAMDPrivate::endSession()
{
    if (m_context != nullptr && ADL2_Main_Control_Destroy != nullptr) {
        ADL2_Main_Control_Destroy(m_context);
    }
    m_context = nullptr;
    if (m_isCreated) {
        ADL_Main_Control_Destroy();
    }
    m_isCreated = false;
}

std::vector<ProviderWindowsAMDPrivate::Adapter> ProviderWindowsAMDPrivate::findAdapters()
{
    std::vector<Adapter> result;
    const int count = adapterCount();
    const int primary = primaryAdapter();
    const std::vector<AdapterInfo> adapters = readAdapterList(count);
    for (int i = 0; i < static_cast<int>(adapters.size()); ++i) {
        const AdapterInfo& adapter = adapters[static_cast<std::size_t>(i)];
        if (adapter.iVendorID != amdVendor
            || !m_adaptersByLocation.emplace(locationKey(adapter), i).second) {
            continue;
        }
        logAdapter(i, adapter, i == primary);
        result.push_back({ driverText(adapter.strAdapterName), { i, overdriveVersion(i) } });
    }
    return result;
}

// 0 for a count that can't be that of a list.
int ProviderWindowsAMDPrivate::adapterCount() const
{
    int count = 0;
    return ADL_Adapter_NumberOfAdapters_Get(&count) == ADL_OK && count > 0 && count <= mostAdapters
        ? count
        : 0;
}

int ProviderWindowsAMDPrivate::primaryAdapter() const
{
    int adapter = -1;
    return ADL2_Adapter_Primary_Get(m_context, &adapter) == ADL_OK ? adapter : -1;
}

std::vector<AdapterInfo> ProviderWindowsAMDPrivate::readAdapterList(int count) const
{
    std::vector<AdapterInfo> adapters(static_cast<std::size_t>(count));
    const auto bytes = static_cast<int>(adapters.size() * sizeof(AdapterInfo));
    if (adapters.empty() || ADL_Adapter_AdapterInfo_Get(adapters.data(), bytes) != ADL_OK) {
        LOG_ERR("ADL_Adapter_AdapterInfo_Get failed");
        return {};
    }
    LOG_INFO("ADL_Adapter_AdapterInfo_Get {}", count);
    return adapters;
}

int ProviderWindowsAMDPrivate::overdriveVersion(int adapter) const
{
    int supported = -1;
    int enabled = -1;
    int version = -1;
    if (ADL_Overdrive_Caps == nullptr
        || ADL_Overdrive_Caps(adapter, &supported, &enabled, &version) != ADL_OK) {
        LOG_ERR("Can’t get Overdrive capabilities");
        return -1;
    }
    LOG_INFO("iOverdriveSupported - {}, iOverdriveEnabled = {}, iOverdriveVersion = {}", supported,
             enabled, version);
    return version;
}

double ProviderWindowsAMDPrivate::getCoreTemperature(const AdapterHandle& adapter) const
{
    if (adapter.overdriveVersion >= 8) {
        return readPMLog(adapter.adapterIndex);
    }
    return adapter.overdriveVersion == 7 ? readOverdriveN(adapter.adapterIndex)
                                         : readOverdrive5(adapter.adapterIndex);
}

double ProviderWindowsAMDPrivate::readPMLog(int adapter) const
{
    ADLPMLogDataOutput data {};
    data.size = sizeof(data);
    if (ADL2_New_QueryPMLogData_Get == nullptr
        || ADL2_New_QueryPMLogData_Get(m_context, adapter, &data) != ADL_OK) {
        LOG_WARN("ADL2_New_QueryPMLogData_Get failed");
        return 0.0;
    }
    const ADLSingleSensorData& edge = data.sensors[ADL_PMLOG_TEMPERATURE_EDGE];
    if (edge.supported == 0) {
        LOG_WARN("ADL_PMLOG_TEMPERATURE_EDGE not supported");
        return 0.0;
    }
    return edge.value;
}

double ProviderWindowsAMDPrivate::readOverdriveN(int adapter) const
{
    constexpr int edgeTemperature = 1;
    int temperature = 0;
    if (ADL2_OverdriveN_Temperature_Get == nullptr
        || ADL2_OverdriveN_Temperature_Get(m_context, adapter, edgeTemperature, &temperature)
            != ADL_OK) {
        LOG_WARN("ADL2_OverdriveN_Temperature_Get failed");
        return 0.0;
    }
    return temperature / thousandths;
}

double ProviderWindowsAMDPrivate::readOverdrive5(int adapter) const
{
    constexpr int thermalController = 0;
    ADLTemperature temperature {};
    temperature.iSize = sizeof(temperature);
    if (ADL_Overdrive5_Temperature_Get == nullptr
        || ADL_Overdrive5_Temperature_Get(adapter, thermalController, &temperature) != ADL_OK) {
        LOG_WARN("ADL_Overdrive5_Temperature_Get failed");
        return 0.0;
    }
    return temperature.iTemperature / thousandths;
}

} // namespace GPU
