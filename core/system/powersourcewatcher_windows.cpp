#include "core/system/powersourcewatcher_windows.h"

#include <windows.h>

#include "core/system/systemmessages.h"
#include "core/system/windowsversion.h"

namespace System {

namespace {

constexpr wchar_t className[] = L"OrvaneBatteryWatcherClass";

// 5D3E9A59-E9D5-4B00-A6BD-FF34FF516548
constexpr GUID powerSourceSetting
    = { 0x5D3E9A59, 0xE9D5, 0x4B00, { 0xA6, 0xBD, 0xFF, 0x34, 0xFF, 0x51, 0x65, 0x48 } };

// Older systems lack them.
struct PowerFunctions {
    using Register = HPOWERNOTIFY(WINAPI*)(HANDLE, LPCGUID, DWORD);
    using Unregister = BOOL(WINAPI*)(HPOWERNOTIFY);

    Register registerNotification = nullptr;
    Unregister unregisterNotification = nullptr;
};

template <typename Function> Function functionOf(HMODULE library, const char* name)
{
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

const PowerFunctions& powerFunctions()
{
    static const PowerFunctions functions = [] {
        PowerFunctions found;
        if (HMODULE library = GetModuleHandleW(L"USER32.DLL")) {
            found.registerNotification
                = functionOf<PowerFunctions::Register>(library, "RegisterPowerSettingNotification");
            found.unregisterNotification = functionOf<PowerFunctions::Unregister>(
                library, "UnregisterPowerSettingNotification");
        }
        return found;
    }();
    return functions;
}

LRESULT CALLBACK windowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    auto* const watcher
        = reinterpret_cast<WindowsPowerSourceWatcher*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (watcher == nullptr
        || meaningOfMessage(message, wParam, lParam) != MessageMeaning::PowerSettingChange) {
        return DefWindowProcW(window, message, wParam, lParam);
    }
    watcher->lookForChange();
    return 1;
}

bool registerWindowClass()
{
    const HINSTANCE program = GetModuleHandleW(nullptr);
    WNDCLASSW windowClass {};
    if (GetClassInfoW(program, className, &windowClass) != 0) {
        return true;
    }
    windowClass = {};
    windowClass.lpfnWndProc = windowProcedure;
    windowClass.hInstance = program;
    windowClass.lpszClassName = className;
    return RegisterClassW(&windowClass) != 0;
}

} // namespace

void WindowsPowerSourceWatcher::DestroyWindow::operator()(HWND__* window) const
{
    ::DestroyWindow(window);
}

void WindowsPowerSourceWatcher::Unregister::operator()(void* notification) const
{
    powerFunctions().unregisterNotification(notification);
}

WindowsPowerSourceWatcher::~WindowsPowerSourceWatcher() { stop(); }

void WindowsPowerSourceWatcher::start()
{
    takeSource();
    if (m_notification || !isWindowsVersionAtLeast(6)) {
        return;
    }
    const PowerFunctions& functions = powerFunctions();
    if (functions.registerNotification == nullptr || functions.unregisterNotification == nullptr
        || !makeWindow()) {
        return;
    }
    m_notification.reset(functions.registerNotification(m_window.get(), &powerSourceSetting,
                                                        DEVICE_NOTIFY_WINDOW_HANDLE));
}

void WindowsPowerSourceWatcher::stop()
{
    m_notification.reset();
    m_window.reset();
}

bool WindowsPowerSourceWatcher::makeWindow()
{
    if (m_window) {
        return true;
    }
    if (!registerWindowClass()) {
        return false;
    }
    m_window.reset(CreateWindowExW(0, className, L"Battery Watcher", 0, 0, 0, 0, 0, nullptr,
                                   nullptr, GetModuleHandleW(nullptr), nullptr));
    if (!m_window) {
        return false;
    }
    SetWindowLongPtrW(m_window.get(), GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    return true;
}

} // namespace System
