#pragma once

#include <QDBusMessage>
#include <QVariantList>

#include "tests/support/processgroup.h"

class PrivateBus;

// A service on a test's bus, played by the package python3-dbusmock.
class MockService {
public:
    struct Method {
        QString name;
        QString in; // signatures of what it takes and gives
        QString out;
        QString code; // in Python; what it gives is called "ret"
    };

    // The place where the service offers its main interface. Ends the test program
    // when the service can't be played. templateName: one that the package has for
    // it, or empty for a service without methods. The bus must outlive the service.
    MockService(const PrivateBus& bus, const QString& service, const QString& path,
                const QString& interface, const QString& templateName = QString());
    MockService(const MockService&) = delete;
    MockService& operator=(const MockService&) = delete;
    ~MockService();

    void addMethod(const Method& method);
    void addObject(const QString& path, const QString& interface, const QList<Method>& methods);

    // Gives what the method gives; fails the test when it can't be called.
    QVariantList call(const QString& interface, const QString& method,
                      const QVariantList& arguments);
    // A signal of the main object and interface, or of others.
    void emitSignal(const QString& name, const QString& signature, const QVariantList& arguments);
    void emitSignalOf(const QString& path, const QString& interface, const QString& name,
                      const QString& signature, const QVariantList& arguments);
    // The arguments of each call of an object's method.
    [[nodiscard]] QList<QVariantList> calls(const QString& path, const QString& method);

private:
    QVariantList callAt(const QString& path, const QString& interface, const QString& method,
                        const QVariantList& arguments);

    const PrivateBus& m_bus;
    const QString m_service;
    const QString m_path;
    const QString m_interface;
    ProcessGroup m_process;
};
