#include "core/system_path.h"

namespace core {

QString systemPath(const QString& absolutePath)
{
    return qEnvironmentVariable("BRISORA_SYSROOT") + absolutePath;
}

} // namespace core
