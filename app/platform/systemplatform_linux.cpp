#include "app/platform/systemplatform.h"

#include "app/platform/appplatformlinux.h"

std::unique_ptr<AppPlatformSpecific> makeSystemPlatform(QBrisoraApp& app, MachineIdentity& identity)
{
    return std::make_unique<AppPlatformLinux>(app, identity);
}
