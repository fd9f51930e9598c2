#include "macsim/model/simulatedmac.h"

#include <algorithm>
#include <utility>

#include "macsim/model/smcvalue.h"

namespace macsim {

namespace {

constexpr double longestStep = 0.25; // simulated seconds

} // namespace

const char* outcomeText(KeyOutcome outcome)
{
    switch (outcome) {
    case KeyOutcome::Ok:
        return "ok";
    case KeyOutcome::Unknown:
        return "unknown";
    case KeyOutcome::Unreadable:
        return "unreadable";
    case KeyOutcome::Failing:
        return "failing";
    case KeyOutcome::ReadOnly:
        return "read-only";
    case KeyOutcome::BadLength:
        return "bad-length";
    }
    return "";
}

SimulatedMac::SimulatedMac(MachineDescription description, const Clock& clock, Settings settings)
    : m_description(std::move(description))
    , m_clock(clock)
    , m_keys(m_description.keys)
    , m_load(std::move(settings.load))
    , m_physics(m_description, m_load.at(0.0), settings.seed)
    , m_drives(m_description.drives.begin(), m_description.drives.end())
    , m_speed(settings.speed)
    , m_advancedTo(clock.now())
    , m_targetUse(m_description.fans.size())
{
    fillMeasurements();
}

double SimulatedMac::number(const QByteArray& key, double fallback) const
{
    const KeyEntry* entry = m_keys.find(key);
    return entry == nullptr ? fallback
                            : smcvalue::decode(entry->type, entry->value).value_or(fallback);
}

bool SimulatedMac::isForced(int fan) const
{
    const auto mask = static_cast<quint32>(number("FS! ", 0.0));
    return ((mask >> fan) & 1U) != 0 || number(fanKey(fan, "Md"), 0.0) != 0.0;
}

ThermalModel::FanCommand SimulatedMac::command(int fan) const
{
    const FanDescription& description = m_description.fans.at(static_cast<std::size_t>(fan));
    ThermalModel::FanCommand result;
    result.minimum = number(fanKey(fan, "Mn"), description.minimum);
    result.maximum = number(fanKey(fan, "Mx"), description.maximum);
    result.target = number(fanKey(fan, "Tg"), description.minimum);
    result.forced = isForced(fan);
    return result;
}

void SimulatedMac::advance()
{
    const std::chrono::microseconds now = m_clock.now();
    const std::chrono::duration<double> elapsed = now - m_advancedTo;
    m_advancedTo = now;
    if (m_asleep || elapsed.count() <= 0.0) {
        return;
    }
    std::vector<ThermalModel::FanCommand> commands;
    commands.reserve(m_description.fans.size());
    for (int fan = 0; fan < static_cast<int>(m_description.fans.size()); ++fan) {
        commands.push_back(command(fan));
    }
    double remaining = elapsed.count() * m_speed;
    while (remaining > 0.0) {
        const double step = std::min(remaining, longestStep);
        m_physics.step(step, load(), commands);
        m_simulated += step;
        remaining -= step;
    }
    fillMeasurements();
}

void SimulatedMac::fill(const QByteArray& key, double number)
{
    KeyEntry* entry = m_keys.findAny(key);
    if (entry == nullptr || entry->frozen) {
        return;
    }
    const QByteArray value = smcvalue::encode(entry->type, number);
    if (value.size() == entry->value.size()) {
        entry->value = value;
    }
}

void SimulatedMac::fillMeasurements()
{
    for (int index = 0; index < static_cast<int>(m_description.fans.size()); ++index) {
        const ThermalModel::Fan& fan = m_physics.fans().at(static_cast<std::size_t>(index));
        fill(fanKey(index, "Ac"), fan.measured);
        if (!isForced(index)) {
            fill(fanKey(index, "Tg"), fan.automaticTarget);
        }
    }
    for (std::size_t index = 0; index < m_description.heatSources.size(); ++index) {
        const double temperature = m_physics.sources()[index].temperature;
        for (const HeatSource::SensorKey& sensor : m_description.heatSources[index].sensors) {
            const double shown = temperature + sensor.offset;
            const bool inverted = m_description.invertedKeys.contains(sensor.key);
            fill(sensor.key, inverted ? 100.0 - shown : shown);
        }
    }
    fill("#KEY", static_cast<double>(m_keys.size()));
}

SimulatedMac::Reading SimulatedMac::readKey(const QByteArray& key)
{
    advance();
    fill("#KEY", static_cast<double>(m_keys.size()));
    const KeyEntry* entry = m_keys.find(key);
    if (entry == nullptr) {
        return { KeyOutcome::Unknown, {} };
    }
    if (!entry->isReadable()) {
        return { KeyOutcome::Unreadable, {} };
    }
    if (entry->failing) {
        return { KeyOutcome::Failing, {} };
    }
    return { KeyOutcome::Ok, entry->value };
}

KeyOutcome SimulatedMac::checkWrite(const QByteArray& key, int length) const
{
    const KeyEntry* entry = m_keys.find(key);
    if (entry == nullptr) {
        return KeyOutcome::Unknown;
    }
    if (!entry->isWritable()) {
        return KeyOutcome::ReadOnly;
    }
    return length == entry->value.size() ? KeyOutcome::Ok : KeyOutcome::BadLength;
}

KeyOutcome SimulatedMac::writeKey(const QByteArray& key, const QByteArray& value)
{
    const KeyOutcome outcome = checkWrite(key, static_cast<int>(value.size()));
    if (outcome == KeyOutcome::Ok) {
        advance(); // the time before the write belongs to the old value
        m_keys.find(key)->value = value;
        noteTargetWrite(key);
    }
    return outcome;
}

void SimulatedMac::noteTargetWrite(const QByteArray& key)
{
    for (int index = 0; index < static_cast<int>(m_targetUse.size()); ++index) {
        if (key != fanKey(index, "Tg")) {
            continue;
        }
        const ThermalModel::FanCommand now = command(index);
        TargetUse& use = m_targetUse[static_cast<std::size_t>(index)];
        use.lowest = use.writes == 0 ? now.target : std::min(use.lowest, now.target);
        use.highest = use.writes == 0 ? now.target : std::max(use.highest, now.target);
        ++use.writes;
        if (!(now.target >= now.minimum && now.target <= now.maximum)) {
            ++use.outsideLimits;
        }
    }
}

SimulatedMac::Info SimulatedMac::keyInfo(const QByteArray& key) const
{
    const KeyEntry* entry = m_keys.find(key);
    if (entry == nullptr) {
        return {};
    }
    const auto length = static_cast<quint8>(entry->value.size());
    return { entry->claimedLength.value_or(length), entry->type, entry->attributes };
}

std::optional<QByteArray> SimulatedMac::keyAt(quint32 index) const
{
    const KeyEntry* entry = m_keys.at(index);
    return entry == nullptr ? std::nullopt : std::optional(entry->name);
}

void SimulatedMac::setLoad(const LoadProfile& load)
{
    advance();
    m_load = load;
    m_loadStart = m_simulated;
}

void SimulatedMac::setAmbient(double celsius)
{
    advance();
    m_physics.setAmbient(celsius);
}

void SimulatedMac::setAsleep(bool asleep)
{
    advance();
    m_asleep = asleep;
}

bool SimulatedMac::poke(const QByteArray& key, const QByteArray& value)
{
    advance();
    KeyEntry* entry = m_keys.find(key);
    if (entry == nullptr || entry->value.size() != value.size()) {
        return false;
    }
    entry->value = value;
    return true;
}

double SimulatedMac::load() const { return m_load.at(m_simulated - m_loadStart); }

SimulatedMac::FanState SimulatedMac::fan(int index) const
{
    const ThermalModel::FanCommand now = command(index);
    const TargetUse& use = m_targetUse.at(static_cast<std::size_t>(index));
    FanState state;
    state.actual = m_physics.fans().at(static_cast<std::size_t>(index)).measured;
    state.minimum = now.minimum;
    state.maximum = now.maximum;
    state.target = now.target;
    state.forced = now.forced;
    state.targetWrites = use.writes;
    state.targetsOutsideLimits = use.outsideLimits;
    state.lowestTarget = use.lowest;
    state.highestTarget = use.highest;
    return state;
}

const std::vector<ThermalModel::Source>& SimulatedMac::sources() const
{
    return m_physics.sources();
}

SimulatedDrive* SimulatedMac::drive(const QString& name)
{
    const auto found
        = std::find_if(m_drives.begin(), m_drives.end(), [&name](const SimulatedDrive& drive) {
              return drive.description().name == name;
          });
    return found == m_drives.end() ? nullptr : &*found;
}

double SimulatedMac::sourceTemperature(const QString& name) const
{
    const auto& heat = m_description.heatSources;
    const auto found = std::find_if(heat.begin(), heat.end(), [&name](const HeatSource& source) {
        return source.name == name;
    });
    return found == heat.end()
        ? m_physics.ambient()
        : m_physics.sources()[static_cast<std::size_t>(found - heat.begin())].temperature;
}

double SimulatedMac::temperature(const DriveDescription& drive) const
{
    return sourceTemperature(drive.source) + drive.offset;
}

std::optional<double> SimulatedMac::gpuTemperature(std::size_t index) const
{
    if (m_gpuDriversFail) {
        return std::nullopt;
    }
    const GpuDescription& gpu = m_description.gpus.at(index);
    return sourceTemperature(gpu.source) + gpu.offset;
}

quint32 SimulatedMac::forcedMask() const
{
    quint32 mask = 0;
    for (int fan = 0; fan < static_cast<int>(m_description.fans.size()); ++fan) {
        if (isForced(fan)) {
            mask |= 1U << fan;
        }
    }
    return mask;
}

} // namespace macsim
