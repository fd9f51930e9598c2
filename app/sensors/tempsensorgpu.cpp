#include "app/sensors/tempsensorgpu.h"

#include "app/gpu/provider.h"
#include "app/sensors/smckeys.h"
#include "core/log/log.h"

namespace {

constexpr int smcKeyLength = 4;

QString displayNameOf(const GPU::Info& gpu)
{
    return TemperatureSensorGPU::namePrefix
        + QString(gpu.name).remove(QLatin1String(" (FireGL V)"));
}

// "Integrated" or "Discrete".
void logGpu(const char* kind, const QString& name, const TemperatureSensorAbstract* smcSensor)
{
    LOG_INFO("{} GPU: {}, matching SMC - {}", kind, core::log::singleLine(name),
             smcSensor != nullptr ? "yes" : "no");
}

} // namespace

TemperatureSensorGPU::TemperatureSensorGPU(const QString& key, const QString& displayName,
                                           const Source& source, std::once_flag& failureLogged)
    : TemperatureSensorAbstract(key, displayName, SensorType::gpu, QString())
    , m_source(source)
    , m_failureLogged(failureLogged)
{
}

std::vector<std::unique_ptr<TemperatureSensorGPU>> TemperatureSensorGPU::loadAvailableSensors(
    GPU::Provider* provider, TemperatureSensorAbstract* discreteSmc,
    TemperatureSensorAbstract* integratedSmc, std::once_flag& failureLogged)
{
    std::vector<std::unique_ptr<TemperatureSensorGPU>> sensors;
    if (!provider->discoverGPUs()) {
        return sensors;
    }
    const int count = provider->getCount();
    for (int i = 0; i < count; ++i) {
        const GPU::Info& gpu = *provider->getGpu(i);
        const QString name = displayNameOf(gpu);
        Source source;
        source.integrated = name.contains(QLatin1String("Intel"));
        if (source.integrated) {
            source.smcSensor = integratedSmc;
            logGpu("Integrated", name, source.smcSensor);
            if (source.smcSensor == nullptr) {
                LOG_WARN("Unable to add this GPU");
                continue;
            }
        } else {
            source.gpu = &gpu;
            source.smcSensor = gpu.noSmcMatch ? nullptr : discreteSmc;
            logGpu("Discrete", name, source.smcSensor);
        }
        QString key = QStringLiteral("%1 (%2)").arg(name, QString::number(i));
        if (source.smcSensor != nullptr) {
            key = source.smcSensor->key();
            source.smcSensor->setHidden(true);
        }
        sensors.push_back(std::make_unique<TemperatureSensorGPU>(key, name, source, failureLogged));
    }
    return sensors;
}

void TemperatureSensorGPU::UpdateValue()
{
    if (m_source.gpu != nullptr && !m_useSmc) {
        readDriver();
    } else if (m_source.smcSensor != nullptr) {
        readSmc();
    }
}

void TemperatureSensorGPU::readDriver()
{
    const double celsius = m_source.gpu->provider->getTemperature(m_source.gpu);
    if (celsius != 0.0) {
        storeValue(celsius);
        return;
    }
    std::call_once(m_failureLogged, [] { LOG_WARN("Reading of GPU temperature failed"); });
    if (m_source.smcSensor != nullptr) {
        LOG_WARN("Trying SMC instead");
        m_useSmc = true;
    }
}

void TemperatureSensorGPU::readSmc()
{
    TemperatureSensorAbstract& sensor = *m_source.smcSensor;
    const std::uint32_t readsBefore = sensor.successfulReads();
    sensor.UpdateValue();
    // What the controller couldn't read must not pass for fresh, nor hide what was
    // read before.
    if (sensor.successfulReads() != readsBefore) {
        storeValue(sensor.value());
    }
}

bool TemperatureSensorGPU::isKeyEqual(const QString& key) const
{
    return this->key().size() == smcKeyLength && key.size() == smcKeyLength
        ? isSmcKeyEqual(this->key(), key)
        : TemperatureSensorAbstract::isKeyEqual(key);
}

void TemperatureSensorGPU::detach()
{
    m_source.gpu = nullptr;
    m_source.smcSensor = nullptr;
}
