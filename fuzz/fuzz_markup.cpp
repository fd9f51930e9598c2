#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "core/language/markup.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString text
        = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const QString html = markupToHtml(text);
    // Nothing of the markup of line feeds is left, and without marks nothing
    // changes.
    const bool hasMarks = text.contains(QLatin1Char('\n')) || text.contains(QLatin1Char('%'))
        || text.contains(QLatin1String("](")) || text.contains(QLatin1String("**"));
    if (html.contains(QLatin1Char('\n')) || (!hasMarks && html != text)) {
        std::abort();
    }
    return 0;
}
