#pragma once

#include <optional>

#include <QLocalServer>
#include <QObject>
#include <QTcpServer>

#include "macsim/model/controlverbs.h"
#include "macsim/model/portcontroller.h"
#include "macsim/run/driveserver.h"
#include "macsim/run/gpurecords.h"

class QIODevice;
class QLocalSocket;
class QTcpSocket;

namespace macsim {

// The simulator's door: a local socket on which port faces exchange their records,
// drive faces one record each, and control clients send one request each, a line
// with a JSON array of words. The reply is a line "ok" or "error" and the text after
// it, until the end.
//
// Port faces under Wine can't use that socket. For them there is a second door, on
// the loopback interface and on request only, where nothing but records is served.
class SimulatorServer : public QObject {
    Q_OBJECT

public:
    // All of them must outlive the server.
    SimulatorServer(PortController& controller, DriveServer& drives, ControlVerbs& verbs,
                    SimulatedMac& mac, QObject* parent = nullptr);

    // Only the user may connect. A stale socket of the same path is replaced.
    [[nodiscard]] bool listen(const QString& path, QString& error);
    // Opens the second door. Gives the value of MACSIM_TCP, with a token that nobody
    // can guess; nothing on failure, and error says why.
    [[nodiscard]] std::optional<QString> listenOnLoopback(QString& error);
    // Connected port faces.
    [[nodiscard]] int portFaces() const { return m_portFaces; }

Q_SIGNALS:
    void portFaceLeft();

private:
    PortController& m_controller;
    DriveServer& m_drives;
    ControlVerbs& m_verbs;
    GpuRecords m_gpus;
    QLocalServer m_server;
    QTcpServer m_loopbackServer;
    QByteArray m_token; // of the second door
    int m_portFaces = 0;

    void acceptConnections();
    void acceptLoopbackConnections();
    template <typename Socket> void serve(Socket& socket);
    void readFrom(QLocalSocket& socket);
    void readFrom(QTcpSocket& socket);
    [[nodiscard]] static bool isPortFace(const QIODevice& socket);
    void notePortFace(QIODevice& socket);
    void servePorts(QIODevice& socket);
    void serveControl(QLocalSocket& socket);
    [[nodiscard]] quint8 answer(const QByteArray& record);
};

} // namespace macsim
