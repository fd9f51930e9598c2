#include "core/application/instance_address.h"

#include <QDir>

namespace core {

// Named pipes lie in a place of their own.
QString instanceServerName(const QString& instanceKey) { return instanceKey; }

// The temporary folder is the user's own.
QString instanceLockPath(const QString& instanceKey)
{
    return QDir::temp().filePath(instanceKey + QLatin1String(".lock"));
}

} // namespace core
