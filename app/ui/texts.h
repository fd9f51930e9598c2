#pragma once

#include <QString>

#include "core/language/languagestrings.h"

// The text of the interface with this key, such as "MainWindow/buttonAbout".
[[nodiscard]] inline QString uiText(const char* key)
{
    return LanguageStrings::text(QLatin1String(key));
}
