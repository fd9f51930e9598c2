#include "app/platform/systemplatform.h"

#include <utility>

#include "app/platform/appplatformwin.h"
#include "app/platform/autostartcalls.h"
#include "app/platform/windowscalls.h"

std::unique_ptr<AppPlatformSpecific> makeSystemPlatform(PlatformHost host)
{
    return std::make_unique<AppPlatformWin>(std::move(host), makeWindowsCalls(),
                                            makeAutostartCalls());
}
