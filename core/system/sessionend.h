#pragma once

#include <memory>

#include <QObject>

// The end of the user's session as the system tells it. One object hears of it for
// the whole process, so that who takes note of it does so before anybody acts on
// it: loggingOff comes before ending, whoever has connected first. GUI thread.
class SessionEnd final : public QObject {
    Q_OBJECT

public:
    // Made when it is first asked for, which needs an application object, and kept
    // as long as somebody holds it. A slot must not let go of the last hold.
    [[nodiscard]] static std::shared_ptr<SessionEnd> shared();
    ~SessionEnd() override;

Q_SIGNALS:
    // The user logs off: the session ends, the system runs on.
    void loggingOff();
    // The session is about to end, for whatever reason. When the slots return, the
    // system goes on with it.
    void ending();

private:
    class Source; // what hears of it, on each system in its own way

    SessionEnd();

    void announce(bool isLogOff);
    // For systems that tell of their shutdown, or that nothing came of it, apart
    // from the session's end.
    void prepareForShutdown(bool begins);
    void endSession();

    bool m_isShuttingDown = false;
    const std::unique_ptr<Source> m_source;
};
