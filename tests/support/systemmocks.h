#pragma once

#include "tests/support/mockservice.h"

// The services of a Linux desktop that the program listens to, on a test's bus.

// Tells of sleep and shutdown and gives locks against them. On the system's bus.
class LoginManagerMock {
public:
    explicit LoginManagerMock(const PrivateBus& bus);

    void prepareForSleep(bool begins);
    void prepareForShutdown(bool begins);
    // What the locks hold up that are held now: "sleep", "shutdown".
    [[nodiscard]] QStringList heldLocks();

    MockService service;
};

// Ends sessions of one client. On the session's bus.
class SessionManagerMock {
public:
    explicit SessionManagerMock(const PrivateBus& bus);

    // Whether a client waits to hear of the end.
    [[nodiscard]] bool hasClient() const;
    [[nodiscard]] int registrations();
    [[nodiscard]] int unregistrations();
    void askForEnd();
    void endSession();
    // How often the client has agreed.
    [[nodiscard]] int agreements();

    MockService service;

private:
    const PrivateBus& m_bus;
};

// Tells whether the machine runs on battery. On the system's bus.
class PowerServiceMock {
public:
    explicit PowerServiceMock(const PrivateBus& bus);

    // Tells it as a change, whether it is one or not.
    void tell(bool onBattery);
    // The same, without the new value.
    void tellThatItChanged();
    // A property that is none of the program's business.
    void tellOfTheLid();

    MockService service;
};

// The desktop's settings. On the session's bus.
class PortalMock {
public:
    // scheme: 0 for no wish, 1 for dark, 2 for light.
    explicit PortalMock(const PrivateBus& bus, unsigned scheme = 0);

    // What it answers when it is asked, after so many seconds.
    void setScheme(unsigned scheme, double seconds = 0.0);
    // Tells of the change of a setting.
    void tell(const QString& nameSpace, const QString& key, unsigned value);
    // Both, for the scheme.
    void change(unsigned scheme);

    MockService service;
};
