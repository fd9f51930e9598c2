#include "core/system/darkmodewatcher_windows.h"

#include <array>
#include <system_error>

#include <windows.h>

#include "core/system/darkmode.h"
#include "core/system/windowsversion.h"

namespace System {

namespace {

constexpr wchar_t themeKey[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Themes\\Personalize";

HANDLE makeEvent() { return CreateEventW(nullptr, TRUE, FALSE, nullptr); }

} // namespace

void WindowsDarkModeWatcher::CloseKey::operator()(HKEY__* key) const { RegCloseKey(key); }

void WindowsDarkModeWatcher::CloseEvent::operator()(void* event) const { CloseHandle(event); }

WindowsDarkModeWatcher::~WindowsDarkModeWatcher() { stop(); }

void WindowsDarkModeWatcher::start()
{
    HKEY key = nullptr;
    if (m_key || !isWindowsVersionAtLeast(10)
        || RegOpenKeyExW(HKEY_CURRENT_USER, themeKey, 0, KEY_NOTIFY, &key) != ERROR_SUCCESS) {
        return;
    }
    m_key.reset(key);
    m_changeEvent.reset(makeEvent());
    m_stopEvent.reset(makeEvent());
    if (!m_changeEvent || !m_stopEvent) {
        return;
    }
    takeLook(isDarkModeEnabled());
    try {
        m_task.start("brisora-theme", [this] { run(); });
    } catch (const std::system_error&) {
        // The look stays as it is.
    }
}

void WindowsDarkModeWatcher::stop()
{
    if (m_stopEvent) {
        SetEvent(m_stopEvent.get());
        m_task.join();
    }
    m_changeEvent.reset();
    m_stopEvent.reset();
    m_key.reset();
}

void WindowsDarkModeWatcher::run()
{
    const std::array<HANDLE, 2> events { m_stopEvent.get(), m_changeEvent.get() };
    DWORD wait = WAIT_FAILED;
    do {
        // Armed before the look is read, so that no change slips in between.
        ResetEvent(m_changeEvent.get());
        const bool isArmed = awaitChange();
        compareLook(isDarkModeEnabled());
        if (!isArmed) {
            return;
        }
        wait = WaitForMultipleObjects(events.size(), events.data(), FALSE, INFINITE);
    } while (wait == WAIT_OBJECT_0 + 1);
}

bool WindowsDarkModeWatcher::awaitChange() const
{
    return RegNotifyChangeKeyValue(m_key.get(), FALSE, REG_NOTIFY_CHANGE_LAST_SET,
                                   m_changeEvent.get(), TRUE)
        == ERROR_SUCCESS;
}

} // namespace System
