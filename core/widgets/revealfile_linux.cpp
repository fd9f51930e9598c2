#include "core/widgets/revealfile.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QFileInfo>
#include <QStringList>
#include <QUrl>

bool showInFileManager(const QString& path)
{
    constexpr int patience = 2000; // milliseconds; the file manager may have to start
    auto message = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.FileManager1"),
                                                  QStringLiteral("/org/freedesktop/FileManager1"),
                                                  QStringLiteral("org.freedesktop.FileManager1"),
                                                  QStringLiteral("ShowItems"));
    const QString address
        = QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath()).toString(QUrl::FullyEncoded);
    message << QStringList { address } << QString();
    const QDBusMessage reply = QDBusConnection::sessionBus().call(message, QDBus::Block, patience);
    return reply.type() == QDBusMessage::ReplyMessage;
}
