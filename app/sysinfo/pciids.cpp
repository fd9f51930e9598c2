#include "app/sysinfo/pciids.h"

#include <QFile>

namespace PciIds {

QStringList paths()
{
    return { QStringLiteral("/usr/share/misc/pci.ids"),
             QStringLiteral("/usr/share/hwdata/pci.ids") };
}

QByteArray read(const QStringList& paths)
{
    for (const QString& path : paths) {
        QFile file(path);
        const QByteArray contents = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        if (!contents.isEmpty()) {
            return contents;
        }
    }
    return QByteArray();
}

} // namespace PciIds
