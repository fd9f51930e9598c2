#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "core/compression/compressionutils.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr int limit = 1024 * 1024;
    const QByteArray input(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const QByteArray result = CompressionUtils::gunzip(input, limit);
    const bool isGzip = CompressionUtils::detectKind(input) == CompressionUtils::Kind::GzipContent;
    if (result.size() > limit || (!isGzip && !result.isEmpty())) {
        std::abort();
    }
    return 0;
}
