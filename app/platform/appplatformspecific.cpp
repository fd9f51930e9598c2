#include "app/platform/appplatformspecific.h"

#include <utility>

AppPlatformSpecific::AppPlatformSpecific(PlatformHost host)
    : m_host(std::move(host))
{
}

bool AppPlatformSpecific::installWriteAccess(QString& /*error*/) { return true; }

void AppPlatformSpecific::showWriteAccessError(const QString& /*error*/, QWidget* /*parent*/) { }
