#include "core/system/sessionend.h"

std::shared_ptr<SessionEnd> SessionEnd::shared()
{
    static std::weak_ptr<SessionEnd> current;
    std::shared_ptr<SessionEnd> result = current.lock();
    if (!result) {
        result.reset(new SessionEnd);
        current = result;
    }
    return result;
}

void SessionEnd::announce(bool isLogOff)
{
    if (isLogOff) {
        Q_EMIT loggingOff();
    }
    Q_EMIT ending();
}

void SessionEnd::prepareForShutdown(bool begins)
{
    m_isShuttingDown = begins;
    if (begins) {
        announce(false);
    }
}

void SessionEnd::endSession() { announce(!m_isShuttingDown); }
