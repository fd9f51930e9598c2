#include "core/application/instance_address.h"

#include <sys/un.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace core {

QString instanceServerName(const QString& instanceKey)
{
    const QString folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    const QFileInfo info(folder);
    if (!QDir::isAbsolutePath(folder) || !info.isDir() || !info.isWritable()
        || info.ownerId() != ::geteuid()) {
        return instanceKey;
    }
    const QString path = QDir(folder).filePath(instanceKey);
    const bool fits
        = QFile::encodeName(path).size() < static_cast<int>(sizeof(sockaddr_un::sun_path));
    return fits ? path : instanceKey;
}

QString instanceLockPath(const QString& instanceKey)
{
    const QString name = instanceServerName(instanceKey);
    if (QDir::isAbsolutePath(name)) {
        return name + QLatin1String(".lock");
    }
    return QDir::temp().filePath(
        QStringLiteral("%1-%2.lock").arg(instanceKey, QString::number(::geteuid())));
}

} // namespace core
