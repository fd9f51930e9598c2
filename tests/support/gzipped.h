#pragma once

#include <QByteArray>
#include <zlib.h>

// The data as a gzip file holds it.
inline QByteArray gzipped(const QByteArray& text)
{
    z_stream stream {};
    if (deflateInit2(&stream, 9, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY) != Z_OK) {
        qFatal("zlib can't compress");
    }
    QByteArray input = text;
    QByteArray result(static_cast<int>(deflateBound(&stream, static_cast<uLong>(text.size()))), 0);
    stream.next_in = reinterpret_cast<Bytef*>(input.data());
    stream.avail_in = static_cast<uInt>(input.size());
    stream.next_out = reinterpret_cast<Bytef*>(result.data());
    stream.avail_out = static_cast<uInt>(result.size());
    const int status = deflate(&stream, Z_FINISH);
    result.truncate(static_cast<int>(stream.total_out));
    deflateEnd(&stream);
    if (status != Z_STREAM_END) {
        qFatal("zlib doesn't come to an end");
    }
    return result;
}
