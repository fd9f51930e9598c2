#include "app/ui/tray/traycalls.h"

#include <cstddef>
#include <string>

#include <windows.h>
// After windows.h, which it needs.
#include <shellapi.h>

#include <QOperatingSystemVersion>
#include <QPixmap>

#include "core/log/log.h"

// Qt's own conversion; it is exported, and no header declares it.
extern Q_GUI_EXPORT HICON qt_pixmapToWinHICON(const QPixmap& pixmap);

namespace {

static_assert(TrayNotification::recordSize == offsetof(NOTIFYICONDATAW, hBalloonIcon));
static_assert(TrayNotification::longestTip + 1 == sizeof(NOTIFYICONDATAW::szTip) / sizeof(wchar_t));
static_assert(TrayNotification::HasMessage == NIF_MESSAGE);
static_assert(TrayNotification::HasIcon == NIF_ICON);
static_assert(TrayNotification::HasTip == NIF_TIP);
static_assert(TrayNotification::ShowsTip == NIF_SHOWTIP);
static_assert(static_cast<DWORD>(TrayAction::Add) == NIM_ADD);
static_assert(static_cast<DWORD>(TrayAction::Modify) == NIM_MODIFY);
static_assert(static_cast<DWORD>(TrayAction::Delete) == NIM_DELETE);
static_assert(static_cast<DWORD>(TrayAction::SetVersion) == NIM_SETVERSION);
static_assert(TrayVersionOld == NOTIFYICON_VERSION);
static_assert(TrayVersionCurrent == NOTIFYICON_VERSION_4);

HWND toHandle(TrayWindow window) { return reinterpret_cast<HWND>(window); }

// A function of user32.dll that not every Windows has; null without it.
template <typename Function> Function userFunction(const char* name)
{
    const FARPROC function = GetProcAddress(GetModuleHandleW(L"user32.dll"), name);
    return reinterpret_cast<Function>(reinterpret_cast<void*>(function));
}

LRESULT CALLBACK windowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    auto* const receiver
        = reinterpret_cast<TrayMessageReceiver*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (receiver != nullptr) {
        const auto result = receiver->receive({ message, wParam, lParam });
        if (result) {
            return *result;
        }
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

class TrayCallsSystem final : public TrayCalls {
public:
    bool hasCurrentVersion() override
    {
        return QOperatingSystemVersion::current()
            >= QOperatingSystemVersion(QOperatingSystemVersion::Windows, 6, 0);
    }

    TrayWindow createWindow(const QString& className, const QString& title,
                            TrayMessageReceiver& receiver) override
    {
        const std::wstring name = className.toStdWString();
        WNDCLASSW windowClass {};
        windowClass.lpfnWndProc = windowProcedure;
        windowClass.hInstance = GetModuleHandleW(nullptr);
        windowClass.lpszClassName = name.c_str();
        // An earlier icon of this process may have registered it.
        if (RegisterClassW(&windowClass) == 0 && GetLastError() != ERROR_CLASS_ALREADY_EXISTS) {
            logFailure("RegisterClassW");
            return 0;
        }
        const HWND window
            = CreateWindowExW(0, name.c_str(), title.toStdWString().c_str(), WS_OVERLAPPED,
                              CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, nullptr,
                              nullptr, windowClass.hInstance, nullptr);
        if (window == nullptr) {
            logFailure("CreateWindowExW");
            return 0;
        }
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&receiver));
        return reinterpret_cast<TrayWindow>(window);
    }

    void destroyWindow(TrayWindow window) override
    {
        // Nothing more for the receiver.
        SetWindowLongPtrW(toHandle(window), GWLP_USERDATA, 0);
        DestroyWindow(toHandle(window));
    }

    std::uint32_t registerMessage(const QString& name) override
    {
        return RegisterWindowMessageW(name.toStdWString().c_str());
    }

    bool allowMessageToWindow(TrayWindow window, std::uint32_t message) override
    {
        using Function = BOOL(WINAPI*)(HWND, UINT, DWORD, void*);
        static const auto function = userFunction<Function>("ChangeWindowMessageFilterEx");
        constexpr DWORD allow = 1; // MSGFLT_ALLOW
        if (function == nullptr) {
            return false;
        }
        if (function(toHandle(window), message, allow, nullptr) == 0) {
            logFailure("ChangeWindowMessageFilterEx");
        }
        return true;
    }

    bool allowMessageToProcess(std::uint32_t message) override
    {
        using Function = BOOL(WINAPI*)(UINT, DWORD);
        static const auto function = userFunction<Function>("ChangeWindowMessageFilter");
        constexpr DWORD add = 1; // MSGFLT_ADD
        if (function == nullptr) {
            return false;
        }
        if (function(message, add) == 0) {
            logFailure("ChangeWindowMessageFilter");
        }
        return true;
    }

    bool notify(TrayAction action, const TrayNotification& notification) override
    {
        NOTIFYICONDATAW data {};
        data.cbSize = notification.size;
        data.hWnd = toHandle(notification.window);
        data.uID = notification.id;
        data.uFlags = notification.flags;
        data.uCallbackMessage = notification.callbackMessage;
        data.hIcon = reinterpret_cast<HICON>(notification.icon);
        data.uVersion = notification.version;
        notification.tip.left(TrayNotification::longestTip).toWCharArray(data.szTip);
        return Shell_NotifyIconW(static_cast<DWORD>(action), &data) != 0;
    }

    QSize smallIconSize() override
    {
        return { GetSystemMetrics(SM_CXSMICON), GetSystemMetrics(SM_CYSMICON) };
    }

    TrayNativeIcon createIcon(const QImage& image) override
    {
        return reinterpret_cast<TrayNativeIcon>(qt_pixmapToWinHICON(QPixmap::fromImage(image)));
    }

    void destroyIcon(TrayNativeIcon icon) override { DestroyIcon(reinterpret_cast<HICON>(icon)); }

private:
    static void logFailure(const char* operation)
    {
        LOG_WARN("{} failed: {}", operation, qt_error_string(static_cast<int>(GetLastError())));
    }
};

} // namespace

std::unique_ptr<TrayCalls> makeTrayCalls() { return std::make_unique<TrayCallsSystem>(); }
