#include "macsim/run/facefile.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

namespace macsim {

bool writeFaceFile(const QString& path, const QByteArray& contents)
{
    if (!QDir().mkpath(QFileInfo(path).path())) {
        return false;
    }
    QSaveFile target(path);
    return target.open(QIODevice::WriteOnly) && target.write(contents) == contents.size()
        && target.commit();
}

bool linkFaceFile(const QString& path, const QString& target)
{
    const QDir folder(QFileInfo(path).path());
    if (QFileInfo(path).isSymLink()) {
        QFile::remove(path);
    }
    return QDir().mkpath(folder.path()) && QFile::link(folder.relativeFilePath(target), path);
}

} // namespace macsim
