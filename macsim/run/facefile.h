#pragma once

#include <QByteArray>
#include <QString>

namespace macsim {

// Writes a file of the machine, in one step for its readers, and the folders on the
// way. False when that fails.
[[nodiscard]] bool writeFaceFile(const QString& path, const QByteArray& contents);

// Makes a symbolic link that tells the way from itself, as the kernel's do. It takes
// the place of one that is there already.
[[nodiscard]] bool linkFaceFile(const QString& path, const QString& target);

} // namespace macsim
