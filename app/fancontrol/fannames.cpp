#include "app/fancontrol/fannames.h"

#include <array>

#include <QFile>
#include <tinyxml2.h>

#include "app/sysinfo/sysinfo.h"
#include "core/compression/compressionutils.h"

namespace {

constexpr char ruleElement[] = "modelMatch";
constexpr std::array fanElements { "fan0", "fan1", "fan2", "fan3" };

QStringList namesOfRule(const tinyxml2::XMLElement& rule)
{
    QStringList names;
    for (const char* const element : fanElements) {
        // An absent element leaves no gap: required.
        if (const tinyxml2::XMLElement* const fan = rule.FirstChildElement(element)) {
            names.append(QString::fromUtf8(fan->GetText()));
        }
    }
    return names;
}

} // namespace

QStringList loadFanNames(const SystemInfo& systemInfo)
{
    QFile resource(QStringLiteral(":/Resources/xml/fanInfo.xml.gz"));
    if (!resource.open(QIODevice::ReadOnly)) {
        return {};
    }
    return parseFanNames(CompressionUtils::gunzip(resource.readAll()), systemInfo);
}

QStringList parseFanNames(const QByteArray& xml, const SystemInfo& systemInfo)
{
    tinyxml2::XMLDocument document;
    if (document.Parse(xml.constData(), static_cast<std::size_t>(xml.size()))
        != tinyxml2::XML_SUCCESS) {
        return {};
    }
    const tinyxml2::XMLElement* const root = document.FirstChildElement("fanInfo");
    if (root == nullptr) {
        return {};
    }
    // The first rule that matches counts, and no later one.
    for (const tinyxml2::XMLElement* rule = root->FirstChildElement(ruleElement); rule != nullptr;
         rule = rule->NextSiblingElement(ruleElement)) {
        const char* const models = rule->Attribute("models");
        if (models != nullptr && systemInfo.isModelMatch(models)) {
            return namesOfRule(*rule);
        }
    }
    return {};
}
