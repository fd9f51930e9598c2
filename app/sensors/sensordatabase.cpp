#include "app/sensors/sensordatabase.h"

#include <algorithm>
#include <array>
#include <utility>

#include <QFile>
#include <tinyxml2.h>

#include "app/sensors/smckeys.h"
#include "app/sysinfo/sysinfo.h"
#include "core/compression/compressionutils.h"
#include "core/log/log.h"

namespace {

SensorType typeFromWord(const QString& word)
{
    constexpr std::array<std::pair<const char*, SensorType>, 6> words { {
        { "cpu", SensorType::cpu },
        { "gpu", SensorType::gpu },
        { "odd", SensorType::odd },
        { "psu", SensorType::psu },
        { "airport", SensorType::airport },
        { "ssd", SensorType::ssd },
    } };
    const auto found = std::find_if(words.begin(), words.end(), [&word](const auto& entry) {
        return word == QLatin1String(entry.first);
    });
    return found == words.end() ? SensorType::other : found->second;
}

QString attribute(const tinyxml2::XMLElement& element, const char* name)
{
    return QString::fromUtf8(element.Attribute(name));
}

// Lays one element of a rule over what earlier rules have said.
void applyElement(const tinyxml2::XMLElement& element, std::vector<SensorDatabaseEntry>& entries)
{
    const QString key = attribute(element, "name");
    const auto obsolete
        = std::remove_if(entries.begin(), entries.end(), [&key](const SensorDatabaseEntry& entry) {
              return isSmcKeyEqual(entry.key, key);
          });
    entries.erase(obsolete, entries.end());

    if (element.Attribute("exclude") != nullptr) {
        return;
    }
    entries.push_back({ key, QString::fromUtf8(element.GetText()), attribute(element, "group"),
                        typeFromWord(attribute(element, "type")) });
}

} // namespace

SensorDatabase::SensorDatabase(const SystemInfo& systemInfo, const QString& resourcePath)
    : m_systemInfo(systemInfo)
    , m_resourcePath(resourcePath)
{
}

void SensorDatabase::load()
{
    if (!m_entries.empty()) {
        return;
    }
    QFile file(m_resourcePath);
    if (file.open(QIODevice::ReadOnly)) {
        m_entries = parse(CompressionUtils::gunzip(file.readAll()), m_systemInfo);
    }
    if (m_entries.empty()) {
        LOG_WARN("Unable to load the sensor database {}", m_resourcePath);
    }
}

const SensorDatabaseEntry* SensorDatabase::find(const QString& key) const
{
    const auto found = std::find_if(
        m_entries.begin(), m_entries.end(),
        [&key](const SensorDatabaseEntry& entry) { return isSmcKeyEqual(entry.key, key); });
    return found == m_entries.end() ? nullptr : &*found;
}

std::vector<SensorDatabaseEntry> SensorDatabase::parse(const QByteArray& xml,
                                                       const SystemInfo& systemInfo)
{
    std::vector<SensorDatabaseEntry> entries;
    tinyxml2::XMLDocument document;
    if (document.Parse(xml.constData(), static_cast<std::size_t>(xml.size()))
        != tinyxml2::XML_SUCCESS) {
        return entries;
    }
    const tinyxml2::XMLElement* root = document.FirstChildElement("smcSensors");
    if (root == nullptr) {
        return entries;
    }
    for (const auto* rule = root->FirstChildElement("modelMatch"); rule != nullptr;
         rule = rule->NextSiblingElement("modelMatch")) {
        const char* models = rule->Attribute("models");
        if (models == nullptr || !systemInfo.isModelMatch(models)) {
            continue;
        }
        for (const auto* element = rule->FirstChildElement(); element != nullptr;
             element = element->NextSiblingElement()) {
            applyElement(*element, entries);
        }
    }
    return entries;
}
