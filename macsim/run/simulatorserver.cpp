#include "macsim/run/simulatorserver.h"

#include <array>

#include <QJsonArray>
#include <QJsonDocument>
#include <QLocalSocket>
#include <QRandomGenerator>
#include <QTcpSocket>

#include "macsim/portrecord.h"
#include "macsim/tcpaddress.h"

namespace macsim {

namespace {

constexpr const char* portFaceProperty = "isPortFace"; // of a connection
constexpr qint64 longestRequest = 65536; // bytes

QByteArray randomToken()
{
    std::array<quint32, TcpAddress::tokenLength / 8> numbers {};
    QRandomGenerator::system()->fillRange(numbers.data(), numbers.size());
    QByteArray token;
    for (const quint32 number : numbers) {
        token += QByteArray::number(number, 16).rightJustified(8, '0');
    }
    return token;
}

} // namespace

SimulatorServer::SimulatorServer(PortController& controller, DriveServer& drives,
                                 ControlVerbs& verbs, SimulatedMac& mac, QObject* parent)
    : QObject(parent)
    , m_controller(controller)
    , m_drives(drives)
    , m_verbs(verbs)
    , m_gpus(mac)
{
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&m_server, &QLocalServer::newConnection, this, &SimulatorServer::acceptConnections);
    connect(&m_loopbackServer, &QTcpServer::newConnection, this,
            &SimulatorServer::acceptLoopbackConnections);
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

std::optional<QString> SimulatorServer::listenOnLoopback(QString& error)
{
    if (!m_loopbackServer.listen(QHostAddress::LocalHost)) {
        error = QStringLiteral("No port on the loopback interface: %1")
                    .arg(m_loopbackServer.errorString());
        return std::nullopt;
    }
    m_token = randomToken();
    return QString::fromStdString(
        TcpAddress { m_loopbackServer.serverPort(), m_token.toStdString() }.text());
}

void SimulatorServer::acceptConnections()
{
    while (QLocalSocket* socket = m_server.nextPendingConnection()) {
        serve(*socket);
    }
}

void SimulatorServer::acceptLoopbackConnections()
{
    while (QTcpSocket* socket = m_loopbackServer.nextPendingConnection()) {
        // Each byte of the controller's protocol waits for the answer to the last one.
        socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        serve(*socket);
    }
}

template <typename Socket> void SimulatorServer::serve(Socket& socket)
{
    connect(&socket, &Socket::readyRead, this, [this, &socket] { readFrom(socket); });
    connect(&socket, &Socket::disconnected, this, [this, &socket] {
        socket.deleteLater();
        if (isPortFace(socket)) {
            --m_portFaces;
            Q_EMIT portFaceLeft();
        }
    });
}

void SimulatorServer::readFrom(QLocalSocket& socket)
{
    char first = 0;
    const bool isNew = !isPortFace(socket) && socket.peek(&first, 1) == 1;
    if (isNew && DriveServer::takes(first)) {
        m_drives.serve(socket);
        socket.flush();
        return;
    }
    if (isNew && static_cast<quint8>(first) <= portrecord::lastOperation) {
        notePortFace(socket);
    }
    if (isPortFace(socket)) {
        servePorts(socket);
        socket.flush();
    } else {
        serveControl(socket);
    }
}

void SimulatorServer::readFrom(QTcpSocket& socket)
{
    if (!isPortFace(socket)) {
        if (socket.bytesAvailable() < m_token.size()) {
            return;
        }
        if (socket.read(m_token.size()) != m_token) {
            socket.abort();
            return;
        }
        notePortFace(socket);
    }
    servePorts(socket);
    socket.flush();
}

bool SimulatorServer::isPortFace(const QIODevice& socket)
{
    return socket.property(portFaceProperty).toBool();
}

void SimulatorServer::notePortFace(QIODevice& socket)
{
    socket.setProperty(portFaceProperty, true);
    ++m_portFaces;
}

void SimulatorServer::servePorts(QIODevice& socket)
{
    constexpr auto size = static_cast<qint64>(portrecord::Request {}.size());
    while (socket.bytesAvailable() >= size) {
        const QByteArray record = socket.read(size);
        socket.putChar(static_cast<char>(answer(record)));
    }
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
        return m_gpus.answer(byte(0), port, byte(3));
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
