#include "macsim/run/gpurecords.h"

#include <algorithm>
#include <cmath>

#include "macsim/portrecord.h"

namespace macsim {

GpuRecords::GpuRecords(SimulatedMac& mac)
    : m_mac(mac)
{
    const auto& gpus = mac.description().gpus;
    for (std::size_t index = 0; index < gpus.size(); ++index) {
        if (gpus[index].isOf(GpuDescription::nvidia)) {
            m_gpus.push_back(index);
        }
    }
}

quint8 GpuRecords::answer(quint8 operation, quint16 gpu, quint8 value)
{
    if (operation == portrecord::gpuCount) {
        return static_cast<quint8>(m_gpus.size());
    }
    if (gpu >= m_gpus.size()) {
        return 0;
    }
    const std::size_t index = m_gpus[gpu];
    switch (operation) {
    case portrecord::gpuName: {
        const QByteArray name = m_mac.description().gpus.at(index).name.toLatin1();
        return value < name.size() ? static_cast<quint8>(name.at(value)) : quint8 { 0 };
    }
    case portrecord::gpuTemperature:
        return temperature(index);
    default:
        return 0;
    }
}

quint8 GpuRecords::temperature(std::size_t index)
{
    m_mac.advance();
    const double celsius = m_mac.gpuTemperature(index).value_or(0.0);
    return static_cast<quint8>(std::lround(std::clamp(celsius, 0.0, 255.0)));
}

} // namespace macsim
