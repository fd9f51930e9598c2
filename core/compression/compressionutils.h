#pragma once

#include <QByteArray>
#include <QString>

// Unpacking of compressed data. All functions may be called from any thread.
namespace CompressionUtils {

enum class Kind {
    GzipContent = 0,
    GzipName = 1,
    Bzip2 = 2,
    Bzip2Compress = 3, // writing only, never detected
    Xz = 4, // detected by name only
    Pbzx = 5,
    None = 6, // a plain copy, never detected
    Unknown = 7,
};

// The kind as the first four bytes tell it.
[[nodiscard]] Kind detectKind(const QByteArray& data);

// The kind as the extension of a file's name tells it, in any case of letters.
[[nodiscard]] Kind detectKindByName(const QString& fileName);

// The unpacked gzip data; all members of a file with several. What follows the
// last member and is no gzip is ignored. Empty when the data is damaged, cut
// short, or no gzip. Data that unpacks to more than limit bytes (and 1 GiB at
// most) gives an empty result and a log line.
[[nodiscard]] QByteArray gunzip(const QByteArray& data, qint64 limit = qint64(256) * 1024 * 1024);

} // namespace CompressionUtils
