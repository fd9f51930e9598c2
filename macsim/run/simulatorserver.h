#pragma once

#include <QLocalServer>
#include <QObject>

#include "macsim/model/controlverbs.h"
#include "macsim/model/portcontroller.h"

class QLocalSocket;

namespace macsim {

// The simulator's door: a local socket on which port faces exchange their records
// and control clients send one request each, a line with a JSON array of words.
// The reply is a line "ok" or "error" and the text after it, until the end.
class SimulatorServer : public QObject {
    Q_OBJECT

public:
    // Controller and verbs must outlive the server.
    SimulatorServer(PortController& controller, ControlVerbs& verbs, QObject* parent = nullptr);

    // Only the user may connect. A stale socket of the same path is replaced.
    [[nodiscard]] bool listen(const QString& path, QString& error);
    // Connected port faces.
    [[nodiscard]] int portFaces() const { return m_portFaces; }

Q_SIGNALS:
    void portFaceLeft();

private:
    PortController& m_controller;
    ControlVerbs& m_verbs;
    QLocalServer m_server;
    int m_portFaces = 0;

    void acceptConnections();
    void readFrom(QLocalSocket& socket);
    void servePorts(QLocalSocket& socket);
    void serveControl(QLocalSocket& socket);
    [[nodiscard]] quint8 answer(const QByteArray& record);
};

} // namespace macsim
