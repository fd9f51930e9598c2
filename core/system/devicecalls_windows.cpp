#include "core/system/devicecalls_windows.h"

#include <windows.h>

DeviceCalls::Handle WindowsDevices::createFile(const QString& path, std::uint32_t desiredAccess,
                                               std::uint32_t shareMode,
                                               std::uint32_t creationDisposition,
                                               std::uint32_t flagsAndAttributes)
{
    const HANDLE handle = CreateFileW(path.toStdWString().c_str(), desiredAccess, shareMode,
                                      nullptr, creationDisposition, flagsAndAttributes, nullptr);
    return handle == INVALID_HANDLE_VALUE ? nullptr : handle;
}

std::optional<std::size_t> WindowsDevices::deviceIoControl(DeviceCalls::Handle device,
                                                           std::uint32_t code,
                                                           std::span<const std::uint8_t> request,
                                                           std::span<std::uint8_t> reply)
{
    DWORD returned = 0;
    // Windows takes the request as writable and leaves it alone.
    const BOOL isDone = DeviceIoControl(device, code, const_cast<std::uint8_t*>(request.data()),
                                        static_cast<DWORD>(request.size()), reply.data(),
                                        static_cast<DWORD>(reply.size()), &returned, nullptr);
    return isDone != FALSE ? std::optional<std::size_t>(returned) : std::nullopt;
}

void WindowsDevices::closeHandle(DeviceCalls::Handle handle) { CloseHandle(handle); }

std::uint32_t WindowsDevices::lastError() { return GetLastError(); }
