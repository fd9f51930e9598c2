#include "macsim/model/thermalmodel.h"

#include <algorithm>
#include <cmath>

namespace macsim {

namespace {

constexpr int warmUpSteps = 720;
constexpr double warmUpStep = 10.0; // seconds; coarse, since only the end of it counts
constexpr double noisePeriod = 1.0; // seconds
constexpr double noiseDeviation = 3.0; // RPM
constexpr double noiseLimit = 9.0; // RPM
constexpr double standstill = 20.0; // RPM below which a fan counts as stopped

double shareAt(const std::vector<CurvePoint>& curve, double celsius)
{
    const auto next = std::upper_bound(
        curve.begin(), curve.end(), celsius,
        [](double wanted, const CurvePoint& point) { return wanted < point.celsius; });
    if (next == curve.begin()) {
        return curve.front().share;
    }
    if (next == curve.end()) {
        return curve.back().share;
    }
    const CurvePoint& before = *std::prev(next);
    const double part = (celsius - before.celsius) / (next->celsius - before.celsius);
    return before.share + part * (next->share - before.share);
}

// How much of the way to its goal a value goes that approaches it exponentially.
double approach(double seconds, double timeConstant)
{
    return 1.0 - std::exp(-seconds / timeConstant);
}

} // namespace

ThermalModel::ThermalModel(const MachineDescription& machine, double load, quint32 seed)
    : m_machine(machine)
    , m_ambient(machine.ambient)
    , m_fans(machine.fans.size())
    , m_sources(machine.heatSources.size(), { machine.ambient, machine.ambient })
    , m_random(seed)
{
    for (const HeatSource& source : machine.heatSources) {
        m_neighbours.push_back(sourceIndex(source.neighbour));
    }
    std::vector<FanCommand> commands;
    for (std::size_t index = 0; index < m_fans.size(); ++index) {
        const FanDescription& fan = machine.fans[index];
        commands.push_back({ fan.minimum, fan.maximum, fan.minimum, false });
        m_fans[index].speed = fan.minimum;
    }
    for (int count = 0; count < warmUpSteps; ++count) {
        step(warmUpStep, load, commands);
    }
    for (Source& source : m_sources) {
        source.highest = source.temperature;
    }
}

int ThermalModel::sourceIndex(const QString& name) const
{
    const auto& sources = m_machine.heatSources;
    const auto found
        = std::find_if(sources.begin(), sources.end(),
                       [&name](const HeatSource& source) { return source.name == name; });
    return found == sources.end() ? -1 : static_cast<int>(found - sources.begin());
}

double ThermalModel::automaticTarget(const FanDescription& fan, const FanCommand& command) const
{
    double hottest = m_ambient;
    for (const QString& name : fan.sources) {
        const int index = sourceIndex(name);
        if (index >= 0) {
            hottest = std::max(hottest, m_sources[static_cast<std::size_t>(index)].temperature);
        }
    }
    if (fan.parksBelow && hottest < *fan.parksBelow) {
        return 0.0;
    }
    const double span = std::max(0.0, command.maximum - command.minimum);
    return command.minimum + shareAt(fan.curve, hottest) * span;
}

void ThermalModel::stepFans(double seconds, const std::vector<FanCommand>& commands)
{
    for (std::size_t index = 0; index < m_fans.size(); ++index) {
        const FanDescription& description = m_machine.fans[index];
        const FanCommand& command = commands.at(index);
        Fan& fan = m_fans[index];
        fan.automaticTarget = automaticTarget(description, command);
        const double goal = command.forced
            ? std::max(command.minimum, std::min(command.target, command.maximum))
            : fan.automaticTarget;
        fan.speed += (goal - fan.speed) * approach(seconds, description.timeConstant);
    }
}

void ThermalModel::stepSources(double seconds, double load)
{
    const std::vector<Source> before = m_sources;
    for (std::size_t index = 0; index < m_sources.size(); ++index) {
        const HeatSource& source = m_machine.heatSources[index];
        double air = 0.0;
        for (const int fan : source.fans) {
            const auto number = static_cast<std::size_t>(fan);
            air += m_fans[number].speed / m_machine.fans[number].maximum;
        }
        if (!source.fans.empty()) {
            air /= static_cast<double>(source.fans.size());
        }
        double surroundings = m_ambient;
        if (m_neighbours[index] >= 0) {
            const Source& neighbour = before[static_cast<std::size_t>(m_neighbours[index])];
            surroundings += source.neighbourShare * (neighbour.temperature - m_ambient);
        }
        const double conductance = source.loss + source.airLoss * air;
        const double power = source.idlePower + load * (source.fullPower - source.idlePower);
        const double goal = surroundings + power / conductance;
        Source& now = m_sources[index];
        now.temperature
            += (goal - now.temperature) * approach(seconds, source.capacity / conductance);
        now.highest = std::max(now.highest, now.temperature);
    }
}

void ThermalModel::measureFans(double seconds)
{
    m_untilNoise -= seconds;
    const bool wavers = m_untilNoise <= 0.0;
    if (wavers) {
        m_untilNoise = noisePeriod;
    }
    std::normal_distribution<double> noise(0.0, noiseDeviation);
    for (Fan& fan : m_fans) {
        if (fan.speed < standstill) {
            fan.measured = 0.0;
        } else if (wavers) {
            fan.measured = fan.speed + std::clamp(noise(m_random), -noiseLimit, noiseLimit);
        }
    }
}

void ThermalModel::step(double seconds, double load, const std::vector<FanCommand>& commands)
{
    stepFans(seconds, commands);
    stepSources(seconds, load);
    measureFans(seconds);
}

} // namespace macsim
