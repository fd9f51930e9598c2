#include "macsim/run/simulatorserver.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QLocalSocket>

#include "macsim/portrecord.h"

namespace macsim {

namespace {

constexpr const char* isPortFace = "isPortFace"; // property of a connection
constexpr qint64 longestRequest = 65536; // bytes

} // namespace

SimulatorServer::SimulatorServer(PortController& controller, ControlVerbs& verbs, QObject* parent)
    : QObject(parent)
    , m_controller(controller)
    , m_verbs(verbs)
{
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&m_server, &QLocalServer::newConnection, this, &SimulatorServer::acceptConnections);
}

bool SimulatorServer::listen(const QString& path, QString& error)
{
    QLocalServer::removeServer(path);
    if (!m_server.listen(path)) {
        error = QStringLiteral("%1: %2").arg(path, m_server.errorString());
        return false;
    }
    return true;
}

void SimulatorServer::acceptConnections()
{
    while (QLocalSocket* socket = m_server.nextPendingConnection()) {
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { readFrom(*socket); });
        connect(socket, &QLocalSocket::disconnected, this, [this, socket] {
            socket->deleteLater();
            if (socket->property(isPortFace).toBool()) {
                --m_portFaces;
                Q_EMIT portFaceLeft();
            }
        });
    }
}

void SimulatorServer::readFrom(QLocalSocket& socket)
{
    char first = 0;
    if (!socket.property(isPortFace).toBool() && socket.peek(&first, 1) == 1
        && static_cast<quint8>(first) <= portrecord::in) {
        socket.setProperty(isPortFace, true);
        ++m_portFaces;
    }
    if (socket.property(isPortFace).toBool()) {
        servePorts(socket);
    } else {
        serveControl(socket);
    }
}

void SimulatorServer::servePorts(QLocalSocket& socket)
{
    constexpr auto size = static_cast<qint64>(portrecord::Request {}.size());
    while (socket.bytesAvailable() >= size) {
        const QByteArray record = socket.read(size);
        socket.putChar(static_cast<char>(answer(record)));
    }
    socket.flush();
}

quint8 SimulatorServer::answer(const QByteArray& record)
{
    const auto byte = [&record](int index) { return static_cast<quint8>(record.at(index)); };
    const auto port = static_cast<quint16>(byte(1) | (byte(2) << 8));
    switch (byte(0)) {
    case portrecord::openQuery:
        return 1;
    case portrecord::out:
        m_controller.write(port, byte(3));
        return 1;
    case portrecord::in:
        return m_controller.read(port);
    default:
        return 0;
    }
}

void SimulatorServer::serveControl(QLocalSocket& socket)
{
    if (!socket.canReadLine()) {
        if (socket.bytesAvailable() > longestRequest) {
            socket.abort();
        }
        return;
    }
    QStringList words;
    const QJsonArray request = QJsonDocument::fromJson(socket.readLine()).array();
    for (const QJsonValue& word : request) {
        words.append(word.toString());
    }
    const ControlReply reply = m_verbs.execute(words);
    socket.write(reply.ok ? "ok\n" : "error\n");
    socket.write(reply.text.toUtf8());
    socket.disconnectFromServer();
}

} // namespace macsim
