#pragma once

#include <QString>

namespace core {

// Removes the emptied file or registry key of a user's settings in the native
// format; the path is QSettings::fileName(). What a QSettings that is still open
// writes afterwards may be lost.
void removeNativeSettings(const QString& path);

} // namespace core
