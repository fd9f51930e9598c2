#include "app/smc/driver_calls.h"

#include <cstddef>
#include <vector>

#include <windows.h>
// After windows.h, which it needs.
#include <setupapi.h>

#include <QFileInfo>

#include "core/application/file_version.h"
#include "core/system/devicecalls_windows.h"

namespace SMC {

namespace {

static_assert(sizeof(SP_DEVICE_INTERFACE_DATA) == 28);
// The fixed part of the record that a device's path comes in: a size and the first
// character.
constexpr DWORD detailSize
    = offsetof(SP_DEVICE_INTERFACE_DETAIL_DATA_W, DevicePath) + sizeof(wchar_t);
static_assert(detailSize == 6);

class DriverCallsWindows final : public DeviceCallsWindows<DriverCalls> {
public:
    Handle setupDiGetClassDevs(const InterfaceClass& interfaceClass, std::uint32_t flags) override
    {
        m_class = toGuid(interfaceClass);
        const HDEVINFO list = SetupDiGetClassDevsW(&m_class, nullptr, nullptr, flags);
        return list == INVALID_HANDLE_VALUE ? nullptr : list;
    }

    bool setupDiEnumDeviceInterfaces(Handle list, std::uint32_t index) override
    {
        m_interface = {};
        m_interface.cbSize = sizeof(m_interface);
        return SetupDiEnumDeviceInterfaces(list, nullptr, &m_class, index, &m_interface) != FALSE;
    }

    std::optional<QString> setupDiGetDeviceInterfaceDetail(Handle list) override
    {
        DWORD size = 0;
        SetupDiGetDeviceInterfaceDetailW(list, &m_interface, nullptr, 0, &size, nullptr);
        if (size < detailSize) {
            return std::nullopt;
        }
        // Numbers, so that the record within is aligned; a terminator comes after it.
        std::vector<DWORD> record(size / sizeof(DWORD) + 2);
        auto* const detail
            = static_cast<SP_DEVICE_INTERFACE_DETAIL_DATA_W*>(static_cast<void*>(record.data()));
        detail->cbSize = detailSize;
        if (SetupDiGetDeviceInterfaceDetailW(list, &m_interface, detail, size, nullptr, nullptr)
            == FALSE) {
            return std::nullopt;
        }
        return QString::fromWCharArray(detail->DevicePath);
    }

    void setupDiDestroyDeviceInfoList(Handle list) override { SetupDiDestroyDeviceInfoList(list); }

    Handle openSCManager(std::uint32_t desiredAccess) override
    {
        return OpenSCManagerW(nullptr, nullptr, desiredAccess);
    }

    Handle openService(Handle manager, const QString& name, std::uint32_t desiredAccess) override
    {
        return OpenServiceW(static_cast<SC_HANDLE>(manager), name.toStdWString().c_str(),
                            desiredAccess);
    }

    bool startService(Handle service) override
    {
        return StartServiceW(static_cast<SC_HANDLE>(service), 0, nullptr) != FALSE;
    }

    bool controlService(Handle service, std::uint32_t control) override
    {
        SERVICE_STATUS status {};
        return ControlService(static_cast<SC_HANDLE>(service), control, &status) != FALSE;
    }

    void closeServiceHandle(Handle handle) override
    {
        CloseServiceHandle(static_cast<SC_HANDLE>(handle));
    }

    // The drivers know nothing of the program's end.
    void leaveFans(Handle) override { }

    std::optional<FileVersion> fileVersion(const QString& path) override
    {
        const auto version = core::readFileVersion(path);
        if (!version) {
            return std::nullopt;
        }
        const auto number
            = [&version](std::size_t part) { return QString::number(version->numbers.at(part)); };
        return FileVersion {
            QStringLiteral("%1.%2.%3.%4").arg(number(0), number(1), number(2), number(3)),
            static_cast<std::uint64_t>(QFileInfo(path).size())
        };
    }

private:
    GUID m_class {};
    SP_DEVICE_INTERFACE_DATA m_interface {};

    static GUID toGuid(const InterfaceClass& number)
    {
        GUID guid {};
        guid.Data1 = number.first;
        guid.Data2 = number.second;
        guid.Data3 = number.third;
        std::copy(number.rest.begin(), number.rest.end(), std::begin(guid.Data4));
        return guid;
    }
};

} // namespace

std::unique_ptr<DriverCalls> makeDriverCalls() { return std::make_unique<DriverCallsWindows>(); }

} // namespace SMC
