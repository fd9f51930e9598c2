// Tells the running program that the session ends, as the system does at log-off,
// but leaves it to the program to end: the system would soon terminate it, so that
// its exit code and its last steps could not be seen. Ends with 0 when the program
// agreed and has dealt with the end, or was gone by then; with 1 when there is none
// or it did not.

#include <string_view>

#include <windows.h>

namespace {

constexpr UINT patience = 20000; // milliseconds

BOOL CALLBACK takeMainWindow(HWND window, LPARAM found)
{
    constexpr std::wstring_view titleStart = L"Brisora ";
    wchar_t title[titleStart.size() + 1] {};
    GetWindowTextW(window, title, static_cast<int>(std::size(title)));
    if (title != titleStart) {
        return TRUE;
    }
    *reinterpret_cast<HWND*>(found) = window;
    return FALSE;
}

bool send(HWND window, UINT message, WPARAM first, DWORD_PTR& result)
{
    constexpr auto logOff = static_cast<LPARAM>(ENDSESSION_LOGOFF);
    return SendMessageTimeoutW(window, message, first, logOff, SMTO_NORMAL, patience, &result) != 0;
}

} // namespace

int main()
{
    HWND window = nullptr;
    EnumWindows(takeMainWindow, reinterpret_cast<LPARAM>(&window));
    DWORD_PTR agrees = 0;
    if (window == nullptr || !send(window, WM_QUERYENDSESSION, 0, agrees) || agrees == 0) {
        return 1;
    }
    // The program may close at the question already.
    DWORD_PTR ignored = 0;
    const bool done = send(window, WM_ENDSESSION, TRUE, ignored) || IsWindow(window) == 0;
    return done ? 0 : 1;
}
