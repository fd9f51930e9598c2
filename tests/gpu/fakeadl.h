#pragma once

#include <algorithm>
#include <cstring>
#include <map>
#include <vector>

#include "app/gpu/provider_win_amd_api.h"
#include "tests/gpu/fakedriverlibrary.h"

// AMD's driver as the test describes it. One at a time.
class FakeAdl {
public:
    static constexpr int failure = -1;

    FakeAdl() { s_current = this; }
    FakeAdl(const FakeAdl&) = delete;
    FakeAdl& operator=(const FakeAdl&) = delete;
    ~FakeAdl() { s_current = nullptr; }

    struct Capabilities {
        int status = GPU::ADL_OK;
        int supported = 1;
        int enabled = 1;
        int version = 8;
    };

    // What the functions give back.
    int createStatus = GPU::ADL_OK;
    int create2Status = GPU::ADL_OK;
    bool createsContext = true;
    int countStatus = GPU::ADL_OK;
    int primaryStatus = GPU::ADL_OK;
    int listStatus = GPU::ADL_OK;
    int temperatureStatus = GPU::ADL_OK;

    int count = 0; // of the adapters, as the driver claims
    int primary = 0;
    std::vector<GPU::AdapterInfo> adapters; // as far as the caller's buffer reaches
    std::map<int, Capabilities> capabilities; // by adapter number
    GPU::ADLPMLogDataOutput log {};
    int thousandths = 0; // degrees, for the older calls

    // What has been asked.
    int sessions = 0; // that go on, of ADL and of ADL2
    int sessions2 = 0;
    int created = 0;
    int listBytes = -1;
    QStringList steps; // of a discovery
    QStringList calls; // of temperatures, with their arguments

    void add(const char* name, int bus, int device = 0, int function = 0, int vendor = 1002)
    {
        GPU::AdapterInfo adapter {};
        adapter.iAdapterIndex = static_cast<int>(adapters.size()) + 10;
        adapter.iBusNumber = bus;
        adapter.iDeviceNumber = device;
        adapter.iFunctionNumber = function;
        adapter.iVendorID = vendor;
        adapter.iPresent = 1;
        put("PCI_VEN_1002", adapter.strUDID);
        put(name, adapter.strAdapterName);
        put("\\\\.\\DISPLAY1", adapter.strDisplayName);
        adapters.push_back(adapter);
        count = static_cast<int>(adapters.size());
    }

    template <std::size_t size> static void put(const char* text, std::array<char, size>& buffer)
    {
        std::copy_n(text, std::min(std::strlen(text) + 1, size), buffer.begin());
    }

    [[nodiscard]] static FakeLoader::Functions functions()
    {
        return {
            { "ADL_Main_Control_Create", FakeLoader::entry(&create) },
            { "ADL_Main_Control_Destroy", FakeLoader::entry(&destroy) },
            { "ADL_Adapter_NumberOfAdapters_Get", FakeLoader::entry(&getCount) },
            { "ADL_Adapter_AdapterInfo_Get", FakeLoader::entry(&getList) },
            { "ADL_Overdrive_Caps", FakeLoader::entry(&getCapabilities) },
            { "ADL_Overdrive5_Temperature_Get", FakeLoader::entry(&getOverdrive5) },
            { "ADL2_OverdriveN_Temperature_Get", FakeLoader::entry(&getOverdriveN) },
            { "ADL2_Main_Control_Create", FakeLoader::entry(&create2) },
            { "ADL2_Main_Control_Destroy", FakeLoader::entry(&destroy2) },
            { "ADL2_Adapter_Primary_Get", FakeLoader::entry(&getPrimary) },
            { "ADL2_New_QueryPMLogData_Get", FakeLoader::entry(&getLog) },
        };
    }

private:
    using Allocate = GPU::amdGPUAPI::Allocate;
    using Context = GPU::amdGPUAPI::Context;

    static int create(Allocate allocate, int connectedOnly)
    {
        s_current->steps.append(QStringLiteral("create"));
        const bool isCallRight = allocate != nullptr && connectedOnly == 1;
        const int status = isCallRight ? s_current->createStatus : failure;
        if (status == GPU::ADL_OK) {
            ++s_current->sessions;
            ++s_current->created;
        }
        return status;
    }

    static int destroy()
    {
        --s_current->sessions;
        return GPU::ADL_OK;
    }

    static int create2(Allocate allocate, int connectedOnly, Context* context)
    {
        s_current->steps.append(QStringLiteral("create 2"));
        const bool isCallRight = allocate != nullptr && connectedOnly == 1;
        const int status = isCallRight ? s_current->create2Status : failure;
        if (status == GPU::ADL_OK && s_current->createsContext) {
            ++s_current->sessions2;
            *context = s_current;
        }
        return status;
    }

    static int destroy2(Context context)
    {
        if (context != s_current) {
            return failure;
        }
        --s_current->sessions2;
        return GPU::ADL_OK;
    }

    static int getCount(int* count)
    {
        s_current->steps.append(QStringLiteral("count"));
        *count = s_current->count;
        return s_current->countStatus;
    }

    static int getPrimary(Context context, int* adapter)
    {
        s_current->steps.append(QStringLiteral("primary"));
        *adapter = s_current->primary;
        return context == s_current ? s_current->primaryStatus : failure;
    }

    static int getList(GPU::AdapterInfo* adapters, int bytes)
    {
        s_current->steps.append(QStringLiteral("list"));
        s_current->listBytes = bytes;
        const auto room = static_cast<std::size_t>(bytes) / sizeof(GPU::AdapterInfo);
        std::copy_n(s_current->adapters.begin(), std::min(room, s_current->adapters.size()),
                    adapters);
        return s_current->listStatus;
    }

    static int getCapabilities(int adapter, int* supported, int* enabled, int* version)
    {
        s_current->steps.append(QStringLiteral("capabilities"));
        const Capabilities found = s_current->capabilities[adapter];
        *supported = found.supported;
        *enabled = found.enabled;
        *version = found.version;
        return found.status;
    }

    static int getLog(Context context, int adapter, GPU::ADLPMLogDataOutput* data)
    {
        s_current->note("log", context == s_current, adapter, data->size);
        data->sensors = s_current->log.sensors;
        return s_current->temperatureStatus;
    }

    static int getOverdriveN(Context context, int adapter, int type, int* temperature)
    {
        s_current->note("N", context == s_current, adapter, type);
        *temperature = s_current->thousandths;
        return s_current->temperatureStatus;
    }

    static int getOverdrive5(int adapter, int controller, GPU::ADLTemperature* temperature)
    {
        s_current->note("5", controller == 0, adapter, temperature->iSize);
        temperature->iTemperature = s_current->thousandths;
        return s_current->temperatureStatus;
    }

    void note(const char* function, bool isCallRight, int adapter, int argument)
    {
        calls.append(QStringLiteral("%1%2 %3 %4")
                         .arg(QLatin1String(function), QLatin1String(isCallRight ? "" : "!"),
                              QString::number(adapter), QString::number(argument)));
    }

    inline static FakeAdl* s_current = nullptr;
};
