#include "core/language/languagefile.h"

#include <tinyxml2.h>

namespace {

QString textOf(const tinyxml2::XMLElement& element)
{
    QByteArray text;
    for (const auto* node = element.FirstChild(); node != nullptr; node = node->NextSibling()) {
        if (node->ToText() != nullptr) {
            text += node->Value();
        }
    }
    return QString::fromUtf8(text).replace(QLatin1String("\\n"), QLatin1String("\n"));
}

// The parser refuses elements that are nested too deeply, so the recursion ends.
void walk(const tinyxml2::XMLElement& parent, const QString& prefix,
          QHash<QString, QString>& strings)
{
    for (const auto* element = parent.FirstChildElement(); element != nullptr;
         element = element->NextSiblingElement()) {
        const QString key = prefix + QString::fromUtf8(element->Name());
        if (element->FirstChildElement() != nullptr) {
            walk(*element, key + QLatin1Char('/'), strings);
        } else {
            strings.insert(key, textOf(*element));
        }
    }
}

} // namespace

bool readLanguageFile(const QByteArray& data, QHash<QString, QString>& strings)
{
    tinyxml2::XMLDocument document;
    if (document.Parse(data.constData(), static_cast<std::size_t>(data.size()))
            != tinyxml2::XML_SUCCESS
        || document.RootElement() == nullptr) {
        return false;
    }
    walk(*document.RootElement(), QString(), strings);
    return true;
}
