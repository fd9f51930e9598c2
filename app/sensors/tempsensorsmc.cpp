#include "app/sensors/tempsensorsmc.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "app/sensors/sensordatabase.h"
#include "app/sensors/smckeys.h"
#include "app/smc/service.h"
#include "core/log/log.h"

namespace {

// Keys are four bytes, whatever they are: one character for each.
QString toText(const std::string& key)
{
    return QString::fromLatin1(key.data(), static_cast<int>(key.size()));
}

bool readTemperature(SMC::Service& service, const QString& key, double& value)
{
    return service.getTemperature(key.toLatin1().constData(), value, nullptr);
}

QStringList reportedKeys(SMC::Service& service)
{
    QStringList result;
    std::vector<std::string> keys;
    if (service.getTemperatureKeys(keys)) {
        std::transform(keys.begin(), keys.end(), std::back_inserter(result), toText);
    }
    return result;
}

} // namespace

TemperatureSensorSMC::TemperatureSensorSMC(const QString& key, const QString& displayName,
                                           SensorType type, SMC::Service* service)
    : TemperatureSensorAbstract(key, displayName, type, QString())
    , m_service(service)
{
}

std::vector<std::unique_ptr<TemperatureSensorAbstract>>
TemperatureSensorSMC::loadAvailableSensors(SMC::Service* service, SensorDatabase& database)
{
    database.load();

    std::vector<std::unique_ptr<TemperatureSensorAbstract>> sensors;
    const QStringList keys = withoutSpellingTwins(reportedKeys(*service));
    for (const QString& key : keys) {
        const SensorDatabaseEntry* entry = database.find(key);
        if (entry == nullptr) {
            continue;
        }
        double ignored = 0.0;
        if (!readTemperature(*service, key, ignored)) {
            LOG_INFO("FilterSupportedTempSensors - skipping sensor {}", core::log::singleLine(key));
            continue;
        }
        sensors.push_back(
            std::make_unique<TemperatureSensorSMC>(key, entry->name, entry->type, service));
    }
    return sensors;
}

void TemperatureSensorSMC::UpdateValue()
{
    double celsius = 0.0;
    if (readTemperature(*m_service, key(), celsius)) {
        storeValue(celsius);
    }
}

bool TemperatureSensorSMC::isKeyEqual(const QString& key) const
{
    return isSmcKeyEqual(this->key(), key);
}
