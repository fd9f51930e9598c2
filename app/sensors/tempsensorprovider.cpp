#include "app/sensors/tempsensorprovider.h"

#include <algorithm>
#include <string>
#include <utility>

#include <QLoggingCategory>

#include "app/gpu/provider.h"
#include "app/sensors/tempsensoraverage.h"
#include "app/sensors/tempsensorsmc.h"
#include "app/settingskeys.h"
#include "app/smc/service.h"
#include "core/log/log.h"
#include "core/settings/qsettingscache.h"

namespace {

Q_LOGGING_CATEGORY(sensorsCategory, "brisora.sensors")

// Drives stand after everything else, whatever they are called.
QString sortName(const TemperatureSensorAbstract& sensor)
{
    return isDriveType(sensor.type()) ? QLatin1String("zzz") + sensor.displayName()
                                      : sensor.displayName();
}

template <typename Sensors>
void appendVisible(const Sensors& sensors, std::vector<TemperatureSensorAbstract*>& result)
{
    for (const auto& sensor : sensors) {
        if (!sensor->isHidden()) {
            result.push_back(sensor.get());
        }
    }
}

QString toReportText(double number) { return QStringLiteral("%1").arg(number, 0, 'g', -1); }

template <typename Sensors> QString reportLines(const Sensors& sensors, int prefixSize = 0)
{
    QString lines;
    for (const auto& sensor : sensors) {
        lines += QStringLiteral("%1 - %2\n")
                     .arg(sensor->displayName().mid(prefixSize), toReportText(sensor->value()));
    }
    return lines;
}

} // namespace

TemperatureSensorProvider::TemperatureSensorProvider(const SystemInfo& systemInfo,
                                                     QSettingsCache& settings,
                                                     DriveLoader loadDrives, QObject* parent)
    : QObject(parent)
    , m_settings(settings)
    , m_loadDrives(std::move(loadDrives))
    , m_database(systemInfo)
{
}

TemperatureSensorProvider::~TemperatureSensorProvider() = default;

void TemperatureSensorProvider::load(SMC::Service* service, GPU::Provider* gpuProvider)
{
    LOG_INFO("TemperatureSensorProvider::load");
    m_smcSensors = TemperatureSensorSMC::loadAvailableSensors(service, m_database);
    loadGpuSensors(gpuProvider);
    loadDrives();
    addCpuCoreAverage();
    LOG_INFO("InitialLoadThread: number of supported SMC sensors: {}", m_smcSensors.size());
    LOG_INFO("InitialLoadThread: number of supported DISK sensors: {}", m_diskSensors.size());
    LOG_INFO("InitialLoadThread: number of supported GPU sensors: {}", m_gpuSensors.size());
}

// What a drive tells about itself beats what the controller measures beside one,
// even beside another one.
void TemperatureSensorProvider::loadDrives()
{
    m_diskSensors = m_loadDrives(m_settings.getInt(SettingsKeys::showSmartDrives) == 1,
                                 m_settings.getInt(SettingsKeys::showNvmeDrives) == 1);
    if (m_diskSensors.empty()) {
        return;
    }
    for (const auto& sensor : m_smcSensors) {
        if (isDriveType(sensor->type())) {
            sensor->setHidden(true);
        }
    }
}

void TemperatureSensorProvider::unload(GPU::Provider* gpuProvider)
{
    m_smcSensors.clear();
    m_diskSensors.clear();
    for (auto& sensor : m_gpuSensors) {
        sensor->detach();
        m_formerGpuSensors.push_back(std::move(sensor));
    }
    m_gpuSensors.clear();
    if (gpuProvider != nullptr) {
        gpuProvider->clear();
    }
}

std::vector<TemperatureSensorAbstract*> TemperatureSensorProvider::getSensors() const
{
    std::vector<TemperatureSensorAbstract*> result;
    appendVisible(m_smcSensors, result);
    appendVisible(m_diskSensors, result);
    appendVisible(m_gpuSensors, result);
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
    return QStringLiteral("SMC sensors:\n%1\nGPUs:\n%2\nDisk drives:\n%3")
        .arg(smcTechInfo(*service),
             reportLines(m_gpuSensors, TemperatureSensorGPU::namePrefix.size()),
             reportLines(m_diskSensors));
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

// The last one that matches.
TemperatureSensorAbstract* TemperatureSensorProvider::findSmcSensor(const char* key) const
{
    const QString text = QString::fromLatin1(key);
    const auto found
        = std::find_if(m_smcSensors.rbegin(), m_smcSensors.rend(),
                       [&text](const auto& sensor) { return sensor->isKeyEqual(text); });
    return found == m_smcSensors.rend() ? nullptr : found->get();
}

void TemperatureSensorProvider::loadGpuSensors(GPU::Provider* gpuProvider)
{
    if (gpuProvider == nullptr) {
        return;
    }
    TemperatureSensorAbstract* discrete = findSmcSensor("TG0D");
    if (discrete == nullptr) {
        discrete = findSmcSensor("TGDD");
    }
    // Required, without an effect.
    static_cast<void>(m_settings.getInt(SettingsKeys::showEGpuTemp));
    m_gpuSensors = TemperatureSensorGPU::loadAvailableSensors(
        gpuProvider, discrete, findSmcSensor("TCGC"), m_gpuFailureLogged);
    connect(gpuProvider, &GPU::Provider::gpuListReloadRequired, this,
            &TemperatureSensorProvider::reloadRequired, Qt::UniqueConnection);
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
