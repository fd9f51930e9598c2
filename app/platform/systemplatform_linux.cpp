#include "app/platform/systemplatform.h"

#include <utility>

#include "app/platform/appplatformlinux.h"

std::unique_ptr<AppPlatformSpecific> makeSystemPlatform(PlatformHost host)
{
    return std::make_unique<AppPlatformLinux>(std::move(host));
}
