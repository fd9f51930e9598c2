#include "core/system/sessionend.h"

#include <windows.h>

#include <QAbstractNativeEventFilter>
#include <QCoreApplication>

#include "core/system/systemmessages.h"

class SessionEnd::Source final : public QAbstractNativeEventFilter {
public:
    explicit Source(SessionEnd& sessionEnd)
        : m_sessionEnd(sessionEnd)
    {
        QCoreApplication::instance()->installNativeEventFilter(this);
    }

    bool nativeEventFilter(const QByteArray& eventType, void* message, long* result) override
    {
        Q_UNUSED(result)
        if (eventType == "windows_generic_MSG") {
            const auto& received = *static_cast<const MSG*>(message);
            const auto meaning
                = System::meaningOfMessage(received.message, received.wParam, received.lParam);
            const bool isLogOff = meaning == System::MessageMeaning::LogOff;
            if (isLogOff || meaning == System::MessageMeaning::SessionEnd) {
                m_sessionEnd.announce(isLogOff);
            }
        }
        return false;
    }

private:
    SessionEnd& m_sessionEnd;
};

SessionEnd::SessionEnd()
    : m_source(std::make_unique<Source>(*this))
{
}

// The filter takes itself out.
SessionEnd::~SessionEnd() = default;
