#include "app/sensors/tempsensornvme.h"

#include <array>
#include <utility>

#include "app/sensors/drives/nvmedrives.h"
#include "core/system/hwmontemperature.h"

namespace {

constexpr double implausible = 150.0; // degrees Celsius

} // namespace

TempSensorNvme::TempSensorNvme(const NvmeDrive& drive, std::shared_ptr<DriveCalls> calls)
    : TempSensorDisk(drive.identity, SensorType::nvme)
    , m_calls(std::move(calls))
    , m_temperatureFile(drive.temperatureFile)
{
}

void TempSensorNvme::UpdateValue()
{
    std::array<char, 16> buffer {};
    const std::string_view text = m_calls->readFile(m_temperatureFile, buffer);
    const auto celsius = hwmonTemperature(text);
    // What fills the buffer may have been cut. A drive that can't tell counts from
    // absolute zero, or tells nonsense.
    if (celsius && text.size() < buffer.size() && *celsius > 0.0 && *celsius < implausible) {
        storeValue(*celsius);
    }
}
