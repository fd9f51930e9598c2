#include "core/system/darkmode.h"

#include "core/system/desktopportal_linux.h"

bool isDarkModeEnabled()
{
    const std::optional<bool> known = KnownLook::isDarkNow();
    return known ? *known : KnownLook::askPortal();
}
