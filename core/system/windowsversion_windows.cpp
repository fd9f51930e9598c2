#include "core/system/windowsversion.h"

#include <initializer_list>

#include <windows.h>

namespace System {

bool isWindowsVersionAtLeast(unsigned major)
{
    OSVERSIONINFOEXW wanted {};
    wanted.dwOSVersionInfoSize = sizeof wanted;
    wanted.dwMajorVersion = major;
    constexpr DWORD parts = VER_MAJORVERSION | VER_MINORVERSION | VER_SERVICEPACKMAJOR;
    DWORDLONG conditions = 0;
    for (const DWORD part : { VER_MAJORVERSION, VER_MINORVERSION, VER_SERVICEPACKMAJOR }) {
        conditions = VerSetConditionMask(conditions, part, VER_GREATER_EQUAL);
    }
    return VerifyVersionInfoW(&wanted, parts, conditions) != 0;
}

} // namespace System
