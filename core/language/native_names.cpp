#include "core/language/languagestrings.h"

namespace {

struct NativeName {
    const char* baseName;
    const char16_t* nativeName;
};

const NativeName nativeNames[] = {
    { "Arabic", u"العربية" },
    { "Armenian", u"Հայոց լեզու" },
    { "Azerbaijani", u"Azərbaycan dili" },
    { "Belarusian", u"Беларуская" },
    { "Portuguese_Brazilian", u"português do Brasil" },
    { "Portuguese", u"Português" },
    { "Bulgarian", u"български език" },
    { "Chinese_Simplified", u"简体中文" },
    { "Chinese_Traditional", u"繁體中文" },
    { "Czech", u"Čeština" },
    { "Croatian", u"Hrvatski jezik" },
    { "Danish", u"Dansk" },
    { "Dutch", u"Nederlands" },
    { "Estonian", u"Eesti" },
    { "French", u"Français" },
    { "Georgian", u"ქართული ენა" },
    { "German", u"Deutsch" },
    { "Greek", u"ελληνικά" },
    { "Hebrew", u"עִבְרִית" },
    { "Hungarian", u"Magyar" },
    { "Indonesian", u"Bahasa Indonesia" },
    { "Italian", u"Italiano" },
    { "Japanese", u"日本語" },
    { "Korean", u"한국말" },
    { "Latvian", u"Latviešu" },
    { "Lithuanian", u"Lietuvių" },
    { "Norwegian", u"Norsk" },
    { "Persian", u"فارسی" },
    { "Polish", u"Polski" },
    { "Romanian", u"Română" },
    { "Russian", u"Русский" },
    { "Serbian_Cyrillic", u"Српска ћирилица" },
    { "Serbian_Latin", u"Srpski" },
    { "Serbian", u"Srpski" },
    { "Slovak", u"Slovenčina" },
    { "Spanish", u"Español" },
    { "Swedish", u"Svenska" },
    { "Turkish", u"Türkçe" },
    { "Ukrainian", u"Українська" },
    { "Slovenian", u"Slovenščina" },
    { "Vietnamese", u"tiếng Việt" },
    { "Hindi", u"मानक हिंदी" },
    { "Finnish", u"Suomi" },
    { "Catalan", u"Català" },
    { "Icelandic", u"Íslenska" },
    { "Thai", u"ภาษาไทย" },
};

} // namespace

QString LanguageStrings::nativeName(const QString& baseName)
{
    for (const auto& row : nativeNames) {
        if (baseName == QLatin1String(row.baseName)) {
            return QString::fromUtf16(row.nativeName);
        }
    }
    return {};
}

bool LanguageStrings::isRightToLeft(const QString& baseName)
{
    return baseName == QLatin1String("Arabic") || baseName == QLatin1String("Hebrew")
        || baseName == QLatin1String("Persian");
}
