#include "app/ui/tray/trayplatform.h"

#include "app/ui/tray/qtrayiconwin.h"
#include "app/ui/tray/traycalls.h"

std::unique_ptr<QTrayIconPlatform> makeTrayPlatform()
{
    return std::make_unique<QTrayIconWin>(makeTrayCalls());
}

bool isTrayAvailable() { return true; }
