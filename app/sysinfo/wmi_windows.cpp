#include "app/sysinfo/wmi.h"

#include <utility>

#include <windows.h>
#include <wbemidl.h>

#include "app/sysinfo/windowsrecords.h"
#include "app/sysinfo/wmivalue.h"

namespace {

struct ReleaseObject {
    void operator()(IUnknown* object) const { object->Release(); }
};
template <typename Interface> using ComPointer = std::unique_ptr<Interface, ReleaseObject>;

struct FreeText {
    void operator()(OLECHAR* text) const { SysFreeString(text); }
};
using ComText = std::unique_ptr<OLECHAR, FreeText>;

ComText makeText(const wchar_t* text) { return ComText(SysAllocString(text)); }

// COM for the calling thread. A thread that has chosen another model keeps it, and
// the calls work there as well.
class ComOfThread {
public:
    ComOfThread()
        : m_result(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))
    {
    }
    ComOfThread(const ComOfThread&) = delete;
    ComOfThread& operator=(const ComOfThread&) = delete;
    ~ComOfThread()
    {
        if (isOwn()) {
            CoUninitialize();
        }
    }

    [[nodiscard]] bool isUsable() const { return isOwn() || m_result == RPC_E_CHANGED_MODE; }

private:
    [[nodiscard]] bool isOwn() const { return m_result == S_OK || m_result == S_FALSE; }

    const HRESULT m_result;
};

// One property of a row.
class Property {
public:
    Property(IWbemClassObject& row, const wchar_t* name)
    {
        VariantInit(&m_value);
        row.Get(name, 0, &m_value, nullptr, nullptr);
    }
    Property(const Property&) = delete;
    Property& operator=(const Property&) = delete;
    ~Property() { VariantClear(&m_value); }

    [[nodiscard]] const VARIANT& value() const { return m_value; }

private:
    VARIANT m_value;
};

// The rows of an answer, one after the other.
class Rows {
public:
    explicit Rows(ComPointer<IEnumWbemClassObject> answer)
        : m_answer(std::move(answer))
    {
    }

    // Nothing after the last one, and when the question could not be answered, or
    // not in time: other sources tell as well.
    [[nodiscard]] ComPointer<IWbemClassObject> next()
    {
        IWbemClassObject* row = nullptr;
        ULONG count = 0;
        if (m_answer) {
            m_answer->Next(patience, 1, &row, &count);
        }
        return ComPointer<IWbemClassObject>(row);
    }

private:
    static constexpr LONG patience = 10000; // milliseconds

    const ComPointer<IEnumWbemClassObject> m_answer;
};

// One of the interface's folders of classes.
class Namespace {
public:
    Namespace(IWbemLocator& locator, const wchar_t* path)
    {
        IWbemServices* services = nullptr;
        locator.ConnectServer(makeText(path).get(), nullptr, nullptr, nullptr,
                              WBEM_FLAG_CONNECT_USE_MAX_WAIT, nullptr, nullptr, &services);
        m_services.reset(services);
    }

    [[nodiscard]] bool isConnected() const { return m_services != nullptr; }

    [[nodiscard]] Rows query(const wchar_t* text) const
    {
        IEnumWbemClassObject* answer = nullptr;
        m_services->ExecQuery(makeText(L"WQL").get(), makeText(text).get(), forwardOnly, nullptr,
                              &answer);
        return Rows(ComPointer<IEnumWbemClassObject>(answer));
    }

    [[nodiscard]] Rows instancesOf(const wchar_t* className) const
    {
        IEnumWbemClassObject* answer = nullptr;
        m_services->CreateInstanceEnum(makeText(className).get(), forwardOnly, nullptr, &answer);
        return Rows(ComPointer<IEnumWbemClassObject>(answer));
    }

private:
    static constexpr LONG forwardOnly = WBEM_FLAG_FORWARD_ONLY | WBEM_FLAG_RETURN_IMMEDIATELY;
    static_assert(forwardOnly == 0x30);

    ComPointer<IWbemServices> m_services;
};

ComPointer<IWbemLocator> makeLocator()
{
    void* locator = nullptr;
    CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator, &locator);
    return ComPointer<IWbemLocator>(static_cast<IWbemLocator*>(locator));
}

} // namespace

WmiSystemData readManagementData()
{
    WmiSystemData data;
    const ComOfThread com;
    if (!com.isUsable()) {
        return data;
    }
    // Fails where the process has already settled it, which is good as well.
    CoInitializeSecurity(nullptr, -1, nullptr, nullptr, RPC_C_AUTHN_LEVEL_PKT_PRIVACY,
                         RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE, nullptr);
    const ComPointer<IWbemLocator> locator = makeLocator();
    if (!locator) {
        return data;
    }
    const Namespace system(*locator, L"ROOT\\CIMV2");
    if (!system.isConnected()) {
        return data;
    }
    Rows controllers = system.query(L"SELECT Name FROM Win32_VideoController");
    while (const auto controller = controllers.next()) {
        if (const auto name = WmiValue::text(Property(*controller, L"Name").value())) {
            data.videoControllers.append(*name);
        }
    }
    if (const auto computer = system.query(L"SELECT * FROM Win32_ComputerSystem").next()) {
        const Property manufacturer(*computer, L"Manufacturer");
        const Property model(*computer, L"Model");
        data.manufacturer = WmiValue::text(manufacturer.value()).value_or(QString());
        data.model = WmiValue::text(model.value()).value_or(QString());
    }

    const Namespace drivers(*locator, L"ROOT\\WMI");
    if (drivers.isConnected()) {
        if (const auto tables = drivers.instancesOf(L"MSSMBios_RawSMBiosTables").next()) {
            const Property firmware(*tables, L"SMBiosData");
            data.smbiosData = WindowsRecords::firmwareBlock(WmiValue::bytes(firmware.value()));
        }
    }
    return data;
}
