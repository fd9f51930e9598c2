#include "app/sensors/tempsensorprovider.h"

#include <algorithm>
#include <string>
#include <utility>

#include <QLoggingCategory>

#include "app/sensors/tempsensoraverage.h"
#include "app/sensors/tempsensorsmc.h"
#include "app/smc/service.h"
#include "core/log/log.h"

namespace {

Q_LOGGING_CATEGORY(sensorsCategory, "brisora.sensors")

// Drives stand after everything else, whatever they are called.
QString sortName(const TemperatureSensorAbstract& sensor)
{
    return isDriveType(sensor.type()) ? QLatin1String("zzz") + sensor.displayName()
                                      : sensor.displayName();
}

QString toReportText(double number) { return QStringLiteral("%1").arg(number, 0, 'g', -1); }

} // namespace

TemperatureSensorProvider::TemperatureSensorProvider(const SystemInfo& systemInfo, QObject* parent)
    : QObject(parent)
    , m_database(systemInfo)
{
}

TemperatureSensorProvider::~TemperatureSensorProvider() = default;

void TemperatureSensorProvider::load(SMC::Service* service)
{
    LOG_INFO("TemperatureSensorProvider::load");
    m_smcSensors = TemperatureSensorSMC::loadAvailableSensors(service, m_database);
    addCpuCoreAverage();
    LOG_INFO("InitialLoadThread: number of supported SMC sensors: {}", m_smcSensors.size());
}

void TemperatureSensorProvider::unload() { m_smcSensors.clear(); }

std::vector<TemperatureSensorAbstract*> TemperatureSensorProvider::getSensors() const
{
    std::vector<TemperatureSensorAbstract*> result;
    for (const auto& sensor : m_smcSensors) {
        if (!sensor->isHidden()) {
            result.push_back(sensor.get());
        }
    }
    std::sort(result.begin(), result.end(),
              [](const TemperatureSensorAbstract* left, const TemperatureSensorAbstract* right) {
                  return sortName(*left) < sortName(*right);
              });
    return result;
}

TemperatureSensorAbstract* TemperatureSensorProvider::getSensorByKey(const QString& key) const
{
    const auto sensors = getSensors();
    const auto found = std::find_if(
        sensors.begin(), sensors.end(),
        [&key](const TemperatureSensorAbstract* sensor) { return sensor->isKeyEqual(key); });
    return found == sensors.end() ? nullptr : *found;
}

QString TemperatureSensorProvider::getSensorDisplayNameByKey(const QString& key) const
{
    const TemperatureSensorAbstract* sensor = getSensorByKey(key);
    if (sensor == nullptr) {
        qCDebug(sensorsCategory).noquote()
            << QStringLiteral("Cannot locate sensor by key %1").arg(key);
        LOG_ERR("Cannot locate sensor by key {}", core::log::singleLine(key));
        return QString();
    }
    return sensor->displayName();
}

QString TemperatureSensorProvider::getTechInfo(SMC::Service* service) const
{
    // The blocks of GPUs and drives, of which there are none.
    return QStringLiteral("SMC sensors:\n%1\nGPUs:\n%2\nDisk drives:\n%3")
        .arg(smcTechInfo(*service), QString(), QString());
}

QString TemperatureSensorProvider::smcTechInfo(SMC::Service& service) const
{
    std::vector<std::string> keys;
    if (!service.getTemperatureKeys(keys)) {
        return QString();
    }
    QString lines;
    for (const std::string& name : keys) {
        if (name.empty()) {
            continue;
        }
        double value = 0.0;
        double rawValue = 0.0;
        if (!service.getTemperature(name.c_str(), value, &rawValue)) {
            value = 0.0;
            rawValue = 0.0;
        }
        const QString key = QString::fromLatin1(name.data(), static_cast<int>(name.size()));
        const auto sensor
            = std::find_if(m_smcSensors.begin(), m_smcSensors.end(),
                           [&key](const auto& candidate) { return candidate->key() == key; });
        const bool isKnown = sensor != m_smcSensors.end();
        const QString suffix
            = isKnown && (*sensor)->isHidden() ? QStringLiteral(" [H]") : QString();
        lines += QStringLiteral("%1 (%2) - %3, %4%5\n")
                     .arg(key, isKnown ? (*sensor)->displayName() : QString(), toReportText(value),
                          toReportText(rawValue), suffix);
    }
    return lines;
}

void TemperatureSensorProvider::addCpuCoreAverage()
{
    std::vector<TemperatureSensorAbstract*> cores;
    for (const auto& sensor : m_smcSensors) {
        if (sensor->displayName().startsWith(QLatin1String("CPU Core "))) {
            LOG_INFO("Using {} sensor for CPU Core average", core::log::singleLine(sensor->key()));
            cores.push_back(sensor.get());
        }
    }
    if (!cores.empty()) {
        // It counts as a sensor of the controller everywhere.
        m_smcSensors.push_back(std::make_unique<TemperatureSensorAverage>(
            QStringLiteral("cpucoreavg"), QStringLiteral("CPU Core (average)"), QString(),
            std::move(cores)));
    }
}
