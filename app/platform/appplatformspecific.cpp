#include "app/platform/appplatformspecific.h"

AppPlatformSpecific::AppPlatformSpecific(QBrisoraApp& app, MachineIdentity& identity)
    : m_app(app)
    , m_identity(identity)
{
}

bool AppPlatformSpecific::installWriteAccess(QString& /*error*/) { return true; }

void AppPlatformSpecific::showWriteAccessError(const QString& /*error*/, QWidget* /*parent*/) { }
