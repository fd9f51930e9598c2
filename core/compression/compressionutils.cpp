#include "core/compression/compressionutils.h"

#include <algorithm>
#include <array>
#include <limits>

#include <QFileInfo>
#include <zlib.h>

#include "core/log/log.h"

namespace CompressionUtils {

namespace {

constexpr std::size_t blockSize = 0x14000;

// One zlib stream, ended whatever happens.
class GzipStream {
public:
    explicit GzipStream(const QByteArray& data)
    {
        // zlib only reads from next_in, but its type says otherwise.
        m_stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data.constData()));
        m_stream.avail_in = static_cast<uInt>(data.size());
        m_isOpen = inflateInit2(&m_stream, gzipWindowBits) == Z_OK;
    }
    GzipStream(const GzipStream&) = delete;
    GzipStream& operator=(const GzipStream&) = delete;
    ~GzipStream()
    {
        if (m_isOpen) {
            inflateEnd(&m_stream);
        }
    }

    [[nodiscard]] bool isOpen() const { return m_isOpen; }

    // Unpacks into the block; length gets the number of bytes. zlib's result.
    int next(std::array<char, blockSize>& block, std::size_t& length)
    {
        m_stream.next_out = reinterpret_cast<Bytef*>(block.data());
        m_stream.avail_out = static_cast<uInt>(block.size());
        const int result = inflate(&m_stream, Z_NO_FLUSH);
        length = block.size() - m_stream.avail_out;
        return result;
    }

    // After the end of a member: whether another one follows.
    [[nodiscard]] bool startNextMember()
    {
        return m_stream.avail_in >= 2 && m_stream.next_in[0] == 0x1F && m_stream.next_in[1] == 0x8B
            && inflateReset(&m_stream) == Z_OK;
    }

private:
    // The largest window, and a gzip header instead of zlib's own.
    static constexpr int gzipWindowBits = 15 + 16;

    z_stream m_stream {};
    bool m_isOpen = false;
};

} // namespace

Kind detectKind(const QByteArray& data)
{
    if (data.startsWith("\x1F\x8B")) {
        return Kind::GzipContent;
    }
    if (data.startsWith("BZh")) {
        return Kind::Bzip2;
    }
    if (data.startsWith("pbzx")) {
        return Kind::Pbzx;
    }
    return Kind::Unknown;
}

Kind detectKindByName(const QString& fileName)
{
    const struct {
        const char* extension;
        Kind kind;
    } table[] = {
        { "gz", Kind::GzipName }, { "bz2", Kind::Bzip2 }, { "bz", Kind::Bzip2 },
        { "bzip2", Kind::Bzip2 }, { "tbz", Kind::Bzip2 }, { "tbz2", Kind::Bzip2 },
        { "xz", Kind::Xz },       { "txz", Kind::Xz },    { "pbzx", Kind::Pbzx },
    };
    const QString extension = QFileInfo(fileName).suffix();
    for (const auto& row : table) {
        if (extension.compare(QLatin1String(row.extension), Qt::CaseInsensitive) == 0) {
            return row.kind;
        }
    }
    return Kind::Unknown;
}

QByteArray gunzip(const QByteArray& data, qint64 limit)
{
    if (detectKind(data) != Kind::GzipContent) {
        return {};
    }
    GzipStream stream(data);
    if (!stream.isOpen()) {
        return {};
    }

    const qint64 room = std::min<qint64>(limit, std::numeric_limits<int>::max() / 2);
    QByteArray result;
    std::array<char, blockSize> block;
    for (;;) {
        std::size_t length = 0;
        const int status = stream.next(block, length);
        // Z_BUF_ERROR is the end of the input in the middle of a member.
        if (status != Z_OK && status != Z_STREAM_END) {
            return {};
        }
        if (static_cast<qint64>(length) > room - result.size()) {
            LOG_WARN("gunzip: more than {} bytes, the data is not used", room);
            return {};
        }
        result.append(block.data(), static_cast<int>(length));
        // What follows the last member is padding or rubbish, and not ours.
        if (status == Z_STREAM_END && !stream.startNextMember()) {
            return result;
        }
    }
}

} // namespace CompressionUtils
