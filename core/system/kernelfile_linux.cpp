#include "core/system/kernelfile.h"

#include <algorithm>

#include <fcntl.h>
#include <unistd.h>

std::string_view readKernelFile(const QByteArray& path, std::span<char> buffer)
{
    const int descriptor = ::open(path.constData(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) {
        return {};
    }
    const ssize_t count = ::read(descriptor, buffer.data(), buffer.size());
    ::close(descriptor);
    return { buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0)) };
}
