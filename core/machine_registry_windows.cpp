#include "core/machine_registry.h"

#include <array>

#include <windows.h>

namespace core {

namespace {

constexpr REGSAM readInSystemsView = KEY_READ | KEY_WOW64_64KEY;
static_assert(readInSystemsView == 0x20119);

constexpr std::size_t longestText = 2048; // bytes
static_assert(sizeof(wchar_t) == 2);

} // namespace

MachineRegistryKey::MachineRegistryKey(const QString& path)
{
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, path.toStdWString().c_str(), 0, readInSystemsView, &key)
        == ERROR_SUCCESS) {
        m_key.reset(key);
    }
}

QString MachineRegistryKey::text(const QString& name) const
{
    std::array<wchar_t, longestText / sizeof(wchar_t)> buffer {};
    DWORD size = longestText;
    // Unlike its older relatives the call tells a text from other types, and ends
    // it where its writer didn't.
    if (RegGetValueW(m_key.get(), nullptr, name.toStdWString().c_str(), RRF_RT_REG_SZ, nullptr,
                     buffer.data(), &size)
        != ERROR_SUCCESS) {
        return {};
    }
    return QString::fromWCharArray(buffer.data());
}

void MachineRegistryKey::Close::operator()(HKEY__* key) const { RegCloseKey(key); }

} // namespace core
