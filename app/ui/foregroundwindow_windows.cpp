#include "app/ui/foregroundwindow.h"

#include <windows.h>

#include <QWidget>

void bringToForeground(QWidget* window)
{
    window->activateWindow();

    const auto handle = reinterpret_cast<HWND>(window->winId());
    if (IsIconic(handle) != 0) {
        ShowWindow(handle, SW_RESTORE);
    }
    // Only the thread that has the foreground may hand it over.
    const DWORD ownThread = GetCurrentThreadId();
    const DWORD foregroundThread = GetWindowThreadProcessId(GetForegroundWindow(), nullptr);
    const bool attached = AttachThreadInput(ownThread, foregroundThread, TRUE) != 0;
    SetForegroundWindow(handle);
    BringWindowToTop(handle);
    SetFocus(handle);
    if (attached) {
        AttachThreadInput(ownThread, foregroundThread, FALSE);
    }
}
