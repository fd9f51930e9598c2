#include "core/system/sessionend.h"

#include <QEvent>
#include <QGuiApplication>
#include <QSessionManager>

#include "core/system/loginmanager_linux.h"
#include "core/system/sessionclient_linux.h"

class SessionEnd::Source final : public QObject {
public:
    explicit Source(SessionEnd& sessionEnd)
        : m_sessionEnd(sessionEnd)
        , m_shutdownLock(m_loginManager, QStringLiteral("shutdown"),
                         QStringLiteral("Ends in an orderly way"))
    {
        connect(&m_loginManager, &LoginManager::PrepareForShutdown, this,
                &Source::prepareForShutdown);
        m_shutdownLock.take();
        connect(&m_sessionClient, &SessionClient::sessionEnds, this,
                [this] { m_sessionEnd.endSession(); });
        if (auto* application = qobject_cast<QGuiApplication*>(QCoreApplication::instance())) {
            connect(application, &QGuiApplication::commitDataRequest, this, &Source::takeRequest);
            connect(application, &QGuiApplication::saveStateRequest, this, &Source::takeRequest);
        }
    }

    // A manager that speaks the X session protocol has each program save its data
    // first, which may come to nothing or be all that it wants; at the end of the
    // session it asks the application object to quit.
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Quit && watched == QCoreApplication::instance()) {
            m_sessionEnd.endSession();
        }
        return false;
    }

private:
    void prepareForShutdown(bool begins)
    {
        m_sessionEnd.prepareForShutdown(begins);
        if (begins) {
            m_shutdownLock.release();
        } else {
            m_shutdownLock.take();
        }
    }

    // A filter of the application object sees every event of the program, so that
    // it is there only when it has something to wait for.
    void takeRequest(QSessionManager& manager)
    {
        // Whether the program starts with the session is for the user to say.
        manager.setRestartHint(QSessionManager::RestartNever);
        QCoreApplication::instance()->installEventFilter(this);
    }

    SessionEnd& m_sessionEnd;
    LoginManager m_loginManager;
    DelayLock m_shutdownLock;
    SessionClient m_sessionClient;
};

SessionEnd::SessionEnd()
    : m_source(std::make_unique<Source>(*this))
{
}

SessionEnd::~SessionEnd() = default;
