#pragma once

#include <functional>
#include <memory>

#include <QString>

// A manager of X sessions for the programs that a test starts: it speaks the X
// session protocol with them over a local socket. Only one can be made in a process.
class XSessionManager {
public:
    // Ends the test program when it can't listen.
    XSessionManager();
    XSessionManager(const XSessionManager&) = delete;
    XSessionManager& operator=(const XSessionManager&) = delete;
    ~XSessionManager();

    // As the variable SESSION_MANAGER has it.
    [[nodiscard]] QString address() const;

    // Whether a program has registered and has done all that it was asked for.
    [[nodiscard]] bool hasIdleClient() const;

    // Has the program save its data: before the session ends, or just so.
    void saveYourself(bool sessionEnds);
    // Takes the end of the session back.
    void cancelShutdown();
    // The session ends now.
    void die();

private:
    class Server;
    const std::unique_ptr<Server> m_server;
};
