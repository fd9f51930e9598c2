#include "app/sysinfo/sysinfo.h"

#include <algorithm>
#include <array>
#include <utility>

#include <QRegularExpression>

#include "app/sysinfo/machine_identity.h"
#include "app/sysinfo/smbios.h"
#include "core/log/log.h"

namespace {

// In this order, so that the longer of two names that begin alike is met first.
constexpr std::array<std::pair<const char*, ModelFamily>, 9> familyPrefixes { {
    { "Macmini", ModelFamily::Macmini },
    { "MacPro", ModelFamily::MacPro },
    { "MacBookPro", ModelFamily::MacBookPro },
    { "MacBookAir", ModelFamily::MacBookAir },
    { "MacBook", ModelFamily::MacBook },
    { "iMacPro", ModelFamily::iMacPro },
    { "iMac", ModelFamily::iMac },
    { "Xserve", ModelFamily::Xserve },
    { "ADP", ModelFamily::ADP },
} };

void logManufacturerAndModel(const ManufacturerAndModel& found)
{
    LOG_INFO("Manufacturer: {}", core::log::singleLine(found.manufacturer));
    LOG_INFO("Product Name: {}", core::log::singleLine(found.model));
}

// The second source. Whether it has told a manufacturer.
bool readFromRegistry(MachineIdentity& identity, ManufacturerAndModel& found)
{
    if (!identity.hasRegistry()) {
        return false;
    }
    LOG_INFO("readFromRegistry");
    const auto values = identity.registryValues();
    if (!values) {
        LOG_WARN("Unable to open registry key");
        return false;
    }
    found = *values;
    logManufacturerAndModel(found);
    return !found.manufacturer.isEmpty();
}

// The third source. Whether it has told a manufacturer.
bool readFromBIOS(MachineIdentity& identity, const WmiSystemData& wmiData,
                  ManufacturerAndModel& found)
{
    LOG_INFO("readFromBIOS");
    const QByteArray table = identity.firmwareTable();
    const SMBIOS smbios(table.isEmpty() ? wmiData.smbiosData : table);
    const SMBIOS::System& system = smbios.system();
    if (!system.manufacturer || !system.product) {
        LOG_WARN("Unable to read BIOS system info");
        return false;
    }
    found = { *system.manufacturer, *system.product };
    logManufacturerAndModel(found);
    return !found.manufacturer.isEmpty();
}

// The model identifier; empty on foreign hardware.
QString platform_getMachineName(MachineIdentity& identity, const WmiSystemData& wmiData)
{
    LOG_INFO("platform_getMachineName");
    ManufacturerAndModel found { wmiData.manufacturer, wmiData.model };
    if ((found.manufacturer.isEmpty() || found.model.isEmpty())
        && !readFromRegistry(identity, found)) {
        // What was found so far stands when this fails too.
        static_cast<void>(readFromBIOS(identity, wmiData, found));
    }
    if (!found.manufacturer.contains(QLatin1String("Apple"))) {
        LOG_WARN("Manufacturer string doesn't contain Apple ('{}')",
                 core::log::singleLine(found.manufacturer));
        return QString();
    }
    return found.model;
}

QString tidyProcessorName(const QString& brand)
{
    static const QRegularExpression blanks(QStringLiteral("\\s{2,}"));
    return brand.trimmed().replace(blanks, QStringLiteral(" "));
}

} // namespace

bool SystemInfo::parseModelName(const QString& name, ModelFamily& family, std::uint16_t& number)
{
    if (name.isEmpty()) {
        return false;
    }
    const auto prefix
        = std::find_if(familyPrefixes.begin(), familyPrefixes.end(), [&name](const auto& entry) {
              return name.startsWith(QLatin1String(entry.first));
          });
    if (prefix != familyPrefixes.end()) {
        family = prefix->second;
    }

    static const QRegularExpression noDigit(QStringLiteral("[^0-9]"));
    number = QString(name).remove(noDigit).toUShort();
    return family != ModelFamily::Undefined && number > 0;
}

bool SystemInfo::isModelMatch(const char* models) const
{
    const QString text = QString::fromUtf8(models);
    if (text == QLatin1String("all")) {
        return true;
    }
    const auto matches = [this](const QString& element) {
        if (!element.contains(QLatin1Char('+'))) {
            return element == m_machineName;
        }
        ModelFamily family = ModelFamily::Undefined;
        std::uint16_t number = 0;
        return parseModelName(element, family, number) && family == m_family
            && m_modelNumber >= number;
    };
    const QStringList elements = text.split(QLatin1Char(';'));
    return std::any_of(elements.begin(), elements.end(), matches);
}

bool SystemInfo::needsMmioDriver() const
{
    switch (m_family) {
    case ModelFamily::iMacPro:
        return true;
    case ModelFamily::MacBookPro:
        return m_modelNumber >= 151;
    case ModelFamily::MacBookAir:
    case ModelFamily::Macmini:
        return m_modelNumber >= 81;
    case ModelFamily::MacPro:
        return m_modelNumber >= 71;
    case ModelFamily::iMac:
        return m_modelNumber >= 201;
    default:
        return false;
    }
}

bool SystemInfo::isPassive() const
{
    if (m_family == ModelFamily::MacBook) {
        return m_modelNumber == 81 || m_modelNumber == 91 || m_modelNumber == 101;
    }
    return m_family == ModelFamily::MacBookAir && m_modelNumber >= 101;
}

bool SystemInfo::isEGpuCapable() const
{
    switch (m_family) {
    case ModelFamily::iMac:
        return m_modelNumber >= 121;
    case ModelFamily::MacBookPro:
        return m_modelNumber >= 81;
    case ModelFamily::Macmini:
        return m_modelNumber >= 51;
    case ModelFamily::MacPro:
        return m_modelNumber >= 61;
    case ModelFamily::iMacPro:
        return true;
    default:
        return false;
    }
}

bool SystemInfo::isLogoutSensitiveIMac() const
{
    constexpr std::array<std::uint16_t, 6> single { 132, 142, 151, 171, 183, 192 };
    return m_family == ModelFamily::iMac
        && ((m_modelNumber >= 101 && m_modelNumber <= 122)
            || std::find(single.begin(), single.end(), m_modelNumber) != single.end());
}

SystemInfo::SystemInfo(MachineIdentity& identity)
    : m_wmiSystemData(identity.managementData())
{
    m_machineName = platform_getMachineName(identity, m_wmiSystemData);
    m_osName = identity.operatingSystemName();
    // Of a name that is no Mac's, the family stays undefined.
    static_cast<void>(parseModelName(m_machineName, m_family, m_modelNumber));

    if (const auto processor = identity.processor()) {
        m_cpuName = tidyProcessorName(processor->brand);
        m_coreCount
            = processor->coreCount ? *processor->coreCount : identity.operatingSystemCoreCount();
    }
}
