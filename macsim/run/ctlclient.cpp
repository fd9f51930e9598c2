#include "macsim/run/ctlclient.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QLocalSocket>

namespace macsim {

namespace {

constexpr int patience = 10000; // milliseconds

} // namespace

ControlReply requestControl(const QString& socketPath, const QStringList& words)
{
    QLocalSocket socket;
    socket.connectToServer(socketPath);
    if (!socket.waitForConnected(patience)) {
        return {
            false,
            QStringLiteral("No simulator at \"%1\": %2").arg(socketPath, socket.errorString())
        };
    }
    socket.write(QJsonDocument(QJsonArray::fromStringList(words)).toJson(QJsonDocument::Compact)
                 + '\n');
    while (socket.state() == QLocalSocket::ConnectedState && socket.waitForReadyRead(patience)) { }
    const QByteArray answer = socket.readAll();
    const int lineEnd = static_cast<int>(answer.indexOf('\n'));
    if (lineEnd < 0) {
        return { false, QStringLiteral("The simulator gave no reply") };
    }
    return { answer.left(lineEnd) == "ok", QString::fromUtf8(answer.mid(lineEnd + 1)) };
}

} // namespace macsim
