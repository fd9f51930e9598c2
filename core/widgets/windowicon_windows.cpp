#include "core/widgets/windowicon.h"

#include <windows.h>

#include <QPixmap>

// Qt's own conversion; it is exported, and no header declares it.
extern Q_GUI_EXPORT QPixmap qt_pixmapFromWinHICON(HICON icon);

QIcon windowIcon()
{
    static const QIcon icon = [] {
        QIcon result;
        for (const int size : { 16, 32, 64, 128 }) {
            const auto handle = static_cast<HICON>(LoadImageW(
                GetModuleHandleW(nullptr), MAKEINTRESOURCEW(1), IMAGE_ICON, size, size, 0));
            if (handle != nullptr) {
                result.addPixmap(qt_pixmapFromWinHICON(handle));
                DestroyIcon(handle);
            }
        }
        return result;
    }();
    return icon;
}
