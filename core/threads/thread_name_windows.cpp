#include "core/threads/thread_name.h"

#include <windows.h>

#include <QString>

namespace core::threads {

void setCurrentThreadName(const std::string& name)
{
    using SetDescription = HRESULT(WINAPI*)(HANDLE, PCWSTR);
    // Not every release of Windows has it.
    const auto address = GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "SetThreadDescription");
    const auto setDescription
        = reinterpret_cast<SetDescription>(reinterpret_cast<void (*)()>(address));
    if (setDescription != nullptr) {
        setDescription(GetCurrentThread(), QString::fromStdString(name).toStdWString().c_str());
    }
}

} // namespace core::threads
