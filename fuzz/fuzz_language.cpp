#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "core/language/languagefile.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray input(reinterpret_cast<const char*>(data), static_cast<int>(size));
    QHash<QString, QString> strings { { QStringLiteral("a/b"), QStringLiteral("text") } };
    const bool isRead = readLanguageFile(input, strings);
    // What is there stays there, and a file that is refused changes nothing.
    if (!strings.contains(QStringLiteral("a/b")) || (!isRead && strings.size() != 1)) {
        std::abort();
    }
    for (auto it = strings.begin(); it != strings.end(); ++it) {
        if (it.key().isEmpty() || it.value().contains(QLatin1String("\\n"))) {
            std::abort();
        }
    }
    return 0;
}
