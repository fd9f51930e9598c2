#pragma once

#include <QDBusConnection>
#include <QTemporaryDir>

#include "tests/support/processgroup.h"

// A message bus of the test's own: nothing is on it but what the test starts there.
// This process and those that it starts from now on take it for the user's or the
// system's bus; it must be made before they first ask for theirs.
class PrivateBus {
public:
    enum class Kind { Session, System };

    // Ends the test program when there is no bus to be had.
    explicit PrivateBus(Kind kind);
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;
    ~PrivateBus();

    // The variable that names the bus, and its value.
    [[nodiscard]] QString variable() const;
    [[nodiscard]] QString address() const;

    // The test's own connection, apart from that of the code under test.
    [[nodiscard]] const QDBusConnection& connection() const { return m_connection; }
    [[nodiscard]] bool hasService(const QString& name) const;
    // Whether somebody waits for this signal of an object.
    [[nodiscard]] bool hasListener(const QString& path, const QString& signal) const;
    // The names that stand on the bus, without the bus itself and the test's own.
    [[nodiscard]] QStringList visitors() const;

private:
    [[nodiscard]] QDBusConnection start();

    const Kind m_kind;
    QTemporaryDir m_folder;
    ProcessGroup m_daemon;
    QDBusConnection m_connection;
};
