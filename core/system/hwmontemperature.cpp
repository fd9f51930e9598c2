#include "core/system/hwmontemperature.h"

#include <charconv>
#include <system_error>

std::optional<double> hwmonTemperature(std::string_view contents)
{
    constexpr double thousandths = 1000.0;
    if (contents.ends_with('\n')) {
        contents.remove_suffix(1);
    }
    const char* const end = contents.data() + contents.size();
    int number = 0;
    const auto parsed = std::from_chars(contents.data(), end, number);
    return parsed.ec == std::errc() && parsed.ptr == end ? std::optional(number / thousandths)
                                                         : std::nullopt;
}
