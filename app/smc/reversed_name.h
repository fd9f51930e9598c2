#pragma once

#include <algorithm>
#include <string_view>

#include <QString>

namespace SMC {

// A name that is kept in the program with its characters in reverse order, turned
// round to be used.
[[nodiscard]] inline QString turnedRound(std::wstring_view reversedName)
{
    QString name
        = QString::fromWCharArray(reversedName.data(), static_cast<int>(reversedName.size()));
    std::reverse(name.begin(), name.end());
    return name;
}

} // namespace SMC
